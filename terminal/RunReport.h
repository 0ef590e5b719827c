#pragma once

#include "app/settings/ZorelSettings.h"
#include "terminal/TerminalOptions.h"
#include "terminal/TerminalRun.h"

#include <QString>
#include <QStringList>

#include <deque>

namespace zorel::terminal {

/// What is trained, from what, and how to stop it: shown before a run.
QString introduction(const app::settings::ZorelSettings &settings);

/// How an archived, stopped or failed run ended and what to do next. `scriptsRoot` is where the sidecar's
/// scripts lie.
QString archiveReport(const backend::protocol::ArchivedModel &archive, const QString &scriptsRoot,
                      app::settings::ModelFamily family);
/// `options` are those that the run was started with.
QString stopReport(const backend::protocol::TrainStatusPayload &lastTrained, const TerminalOptions &options);
QString setUpHint();

/// The sidecar's last lines on standard error in an activity log, without their prefix, at most `most`.
QStringList lastErrorOutput(const std::deque<QString> &logLines, qsizetype most);

/// The process's exit status.
int exitStatus(TerminalRun::Outcome outcome);
inline constexpr int failureExitStatus = 1;
inline constexpr int usageExitStatus = 2;

} // namespace zorel::terminal
