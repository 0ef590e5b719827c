#include "terminal/PlainRenderer.h"

#include "app/presentation/Figures.h"
#include "app/presentation/StatusText.h"

#include <QStringList>

namespace zorel::terminal {

using namespace app::presentation;

PlainRenderer::PlainRenderer(MessageWriter &output, MessageWriter &errors, Clock clock)
    : m_output(output)
    , m_errors(errors)
    , m_clock(std::move(clock))
{}

void PlainRenderer::showProgress(const RunProgress &progress)
{
    const QString state = stateText(progress);
    const std::chrono::milliseconds now = m_clock();
    const bool further = progress.fraction() != m_writtenFraction && now - m_writtenAt >= interval;
    // The last digits of a sum of shares are not to decide.
    const bool muchFurther = progress.fraction() - m_writtenFraction > share - 1e-9;
    if (state == m_writtenState && !further && !muchFurther) {
        return;
    }
    m_writtenState = state;
    m_writtenFraction = progress.fraction();
    m_writtenAt = now;
    m_output.write(progressLine(progress));
}

QString progressLine(const RunProgress &progress)
{
    const auto &status = progress.status;
    const QString state = stateText(progress);
    QStringList parts;
    if (progress.phase == TerminalRun::Phase::training && progress.isPreparing()) {
        parts << QStringLiteral("%1%").arg(progress.percent())
              << preparationDetail(status.prepDetail, progress.family);
        if (status.prepElapsedS > 0) {
            parts << durationText(status.prepElapsedS) + QStringLiteral(" elapsed");
        }
        if (status.prepEtaS > 0) {
            parts << durationText(status.prepEtaS) + QStringLiteral(" left");
        }
    } else if (progress.phase == TerminalRun::Phase::training && progress.hasSteps()) {
        parts << QStringLiteral("step %1 of %2 (%3%)")
                     .arg(groupedText(status.step), groupedText(status.maxSteps))
                     .arg(progress.percent())
              << QStringLiteral("loss ") + lossText(status.loss);
        if (status.valLoss) {
            parts << QStringLiteral("validation ") + lossText(*status.valLoss);
        }
        parts << throughputText(status.tokensPerSec) + u' ' + throughputLabel(progress.family).toLower()
              << durationText(status.elapsedS) + QStringLiteral(" elapsed");
        if (progress.remainingS) {
            parts << durationText(*progress.remainingS) + QStringLiteral(" left");
        }
    }
    return parts.isEmpty() ? state : state + QStringLiteral(": ") + parts.join(QStringLiteral(", "));
}

} // namespace zorel::terminal
