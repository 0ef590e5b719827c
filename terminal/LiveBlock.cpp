#include "terminal/LiveBlock.h"

#include "app/presentation/Figures.h"
#include "app/presentation/StatusText.h"
#include "terminal/TextWidth.h"

#include <algorithm>

namespace zorel::terminal {

using namespace app::presentation;

namespace {

constexpr int narrowestBar = 8;
constexpr int widestBar = 40;

/// A figure and how gladly it is left out where there is no room: the highest goes first.
struct Figure
{
    QString text;
    int expendable = 0;
};

QString fitted(QList<Figure> figures, const TerminalStyle &style, int columns)
{
    while (true) {
        QStringList texts;
        for (const Figure &figure : figures) {
            texts << figure.text;
        }
        const QString joined = style.shown(texts.join(style.separator()));
        if (textWidth(joined) <= columns || figures.size() <= 1) {
            return elided(joined, columns, style.ellipsis());
        }
        figures.erase(std::ranges::max_element(figures, {}, &Figure::expendable));
    }
}

BlockLine plainLine(const QString &text)
{
    return {text, textWidth(text)};
}

BlockLine barLine(const QString &label, double fraction, const QString &counts, const TerminalStyle &style,
                  int columns)
{
    const int room = columns - textWidth(label) - textWidth(counts) - 4;
    if (room >= narrowestBar) {
        const QString gap(2, u' ');
        const int width = std::min(room, widestBar);
        return {label + gap + style.bar(fraction, width) + gap + counts,
                textWidth(label) + textWidth(counts) + 4 + width};
    }
    const QString both = label + u' ' + counts;
    return plainLine(elided(textWidth(both) <= columns ? both : counts, columns, style.ellipsis()));
}

QList<Figure> preparationFigures(const RunProgress &progress)
{
    const auto &status = progress.status;
    QList<Figure> figures{{preparationDetail(withoutControls(status.prepDetail), progress.family), 0}};
    if (status.prepElapsedS > 0) {
        figures.append({durationText(status.prepElapsedS) + QStringLiteral(" elapsed"), 2});
    }
    if (status.prepEtaS > 0) {
        figures.append({durationText(status.prepEtaS) + QStringLiteral(" left"), 1});
    }
    return figures;
}

QList<Figure> trainingFigures(const RunProgress &progress)
{
    const auto &status = progress.status;
    QList<Figure> figures{{QStringLiteral("loss ") + lossText(status.loss), 0}};
    if (status.valLoss) {
        figures.append({QStringLiteral("validation ") + lossText(*status.valLoss), 4});
    }
    figures.append(
        {throughputText(status.tokensPerSec) + u' ' + throughputLabel(progress.family).toLower(), 2});
    figures.append({durationText(status.elapsedS) + QStringLiteral(" elapsed"), 3});
    if (progress.remainingS) {
        figures.append({durationText(*progress.remainingS) + QStringLiteral(" left"), 1});
    }
    return figures;
}

} // namespace

QList<BlockLine> liveBlock(const RunProgress &progress, const TerminalStyle &style, int columns)
{
    const int room = std::max(1, columns - 1);
    const QString label = style.shown(withoutControls(stateText(progress)));
    if (progress.phase == TerminalRun::Phase::training && progress.isPreparing()) {
        const QString percent = QStringLiteral("%1%").arg(progress.percent(), 3);
        return {barLine(label, progress.fraction(), percent, style, room),
                plainLine(fitted(preparationFigures(progress), style, room))};
    }
    if (progress.hasSteps()) {
        const QString counts =
            QStringLiteral("%1%  %2 / %3")
                .arg(progress.percent(), 3)
                .arg(groupedText(progress.status.step), groupedText(progress.status.maxSteps));
        return {barLine(label, progress.fraction(), counts, style, room),
                plainLine(fitted(trainingFigures(progress), style, room))};
    }
    return {plainLine(elided(label, room, style.ellipsis()))};
}

} // namespace zorel::terminal
