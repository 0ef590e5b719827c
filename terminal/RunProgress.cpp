#include "terminal/RunProgress.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace zorel::terminal {

bool RunProgress::hasSteps() const
{
    return !isPreparing() && status.step > 0;
}

double RunProgress::fraction() const
{
    const double share = isPreparing()
                             ? status.prepProgress
                             : double(status.step) / double(std::max<std::int64_t>(1, status.maxSteps));
    return std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0.0;
}

int RunProgress::percent() const
{
    return int(fraction() * 100);
}

QString stateText(const RunProgress &progress)
{
    static const QHash<QString, QString> texts{
        {QStringLiteral("idle"), QStringLiteral("Starting Python backend…")},
        {QStringLiteral("starting"), QStringLiteral("Warming up")},
        {QStringLiteral("preparing"), QStringLiteral("Preparing data")},
        {QStringLiteral("running"), QStringLiteral("Training")},
        {QStringLiteral("paused"), QStringLiteral("Paused")},
        {QStringLiteral("stopping"), QStringLiteral("Stopping")},
        {QStringLiteral("done"), QStringLiteral("Finishing")},
        {QStringLiteral("error"), QStringLiteral("Failed")},
    };
    switch (progress.phase) {
    case TerminalRun::Phase::notStarted:
    case TerminalRun::Phase::waitingForBackend:
        return QStringLiteral("Starting Python backend…");
    case TerminalRun::Phase::training:
        return texts.value(progress.status.state, progress.status.state);
    case TerminalRun::Phase::ending:
    case TerminalRun::Phase::ended:
        break;
    }
    return progress.status.state == QLatin1String("stopping") ? QStringLiteral("Stopping")
                                                              : QStringLiteral("Finishing");
}

} // namespace zorel::terminal
