#pragma once

#include <QJsonObject>
#include <QMap>
#include <QString>

#include <cstdint>

namespace zorel::backend::protocol {

/// Lowest and highest step count that the sidecar is ever asked for.
inline constexpr std::int64_t minimumMaxSteps = 1;
inline constexpr std::int64_t maximumMaxSteps = 10'000'000;

/// A command that has no key but "cmd": "toggle_pause", "stop", "quit".
QJsonObject simpleCommand(const QString &name);

/// The paths are expected with "~" already expanded.
QJsonObject setPathsCommand(const QString &trainingData, const QString &finishedModels,
                            const QString &modelRoot);

/// Leaves out the entries whose value is empty; an all-empty identity is sent as an empty object.
QJsonObject setModelIdentityCommand(const QMap<QString, QString> &identity);

QJsonObject setTrainingProfileCommand(const QMap<QString, QString> &profile);

/// Clamps `steps` to minimumMaxSteps ... maximumMaxSteps.
QJsonObject setMaxStepsCommand(std::int64_t steps);

QJsonObject startCommand(std::int64_t maxSteps, bool resume, const QMap<QString, QString> &identity,
                         const QString &modelFamily, const QString &trainingCapability);

} // namespace zorel::backend::protocol
