#include "backend/protocol/Commands.h"

#include <algorithm>

namespace zorel::backend::protocol {

namespace {

QJsonObject nonEmptyEntries(const QMap<QString, QString> &entries)
{
    QJsonObject object;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (!entry.value().isEmpty()) {
            object.insert(entry.key(), entry.value());
        }
    }
    return object;
}

QJsonObject allEntries(const QMap<QString, QString> &entries)
{
    QJsonObject object;
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        object.insert(entry.key(), entry.value());
    }
    return object;
}

} // namespace

QJsonObject simpleCommand(const QString &name)
{
    return {{QStringLiteral("cmd"), name}};
}

QJsonObject setPathsCommand(const QString &trainingData, const QString &finishedModels,
                            const QString &modelRoot)
{
    return {{QStringLiteral("cmd"), QStringLiteral("set_paths")},
            {QStringLiteral("training_data"), trainingData},
            {QStringLiteral("finished_models"), finishedModels},
            {QStringLiteral("model_root"), modelRoot}};
}

QJsonObject setModelIdentityCommand(const QMap<QString, QString> &identity)
{
    return {{QStringLiteral("cmd"), QStringLiteral("set_model_identity")},
            {QStringLiteral("identity"), nonEmptyEntries(identity)}};
}

QJsonObject setTrainingProfileCommand(const QMap<QString, QString> &profile)
{
    return {{QStringLiteral("cmd"), QStringLiteral("set_training_profile")},
            {QStringLiteral("profile"), allEntries(profile)}};
}

QJsonObject setMaxStepsCommand(std::int64_t steps)
{
    return {{QStringLiteral("cmd"), QStringLiteral("set_max_steps")},
            {QStringLiteral("n"), static_cast<qint64>(std::clamp(steps, minimumMaxSteps, maximumMaxSteps))}};
}

QJsonObject startCommand(std::int64_t maxSteps, bool resume, const QMap<QString, QString> &identity,
                         const QString &modelFamily, const QString &trainingCapability)
{
    return {{QStringLiteral("cmd"), QStringLiteral("start")},
            {QStringLiteral("max_steps"), static_cast<qint64>(maxSteps)},
            {QStringLiteral("resume"), resume},
            {QStringLiteral("model_identity"), nonEmptyEntries(identity)},
            {QStringLiteral("model_family"), modelFamily},
            {QStringLiteral("training_capability"), trainingCapability}};
}

} // namespace zorel::backend::protocol
