#include "ui/kit/ChartLayout.h"

#include "ui/kit/ChartText.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Typography.h"

#include <QFontMetrics>

#include <algorithm>
#include <limits>

namespace zorel::ui::kit {

namespace {

constexpr int stepTickGap = 48;

/// Denser in a low chart, where few would be none.
int valueTickCount(int height)
{
    constexpr int closest = 22;
    constexpr int further = 56;
    return std::min(height / closest, 3 + height / further);
}

int widestOf(const std::vector<ChartTick> &ticks, const QFontMetrics &metrics)
{
    int widest = 0;
    for (const ChartTick &tick : ticks) {
        widest = std::max(widest, metrics.horizontalAdvance(tick.text));
    }
    return widest;
}

/// Ticks with room between them, as far as fewer of them have more of it.
std::vector<ChartTick> roomyStepTicks(ChartRange steps, int width, const QFontMetrics &metrics,
                                      const QLocale &locale)
{
    std::vector<ChartTick> ticks;
    for (int most = std::max(2, width / (8 * gridUnit)); most >= 2; --most) {
        ticks = stepTicks(steps, most, locale);
        const int each = widestOf(ticks, metrics) + stepTickGap;
        if (ticks.size() < 2) {
            break;
        }
        const ChartScale scale(steps);
        const double apart = (scale.fraction(ticks[1].value) - scale.fraction(ticks[0].value)) * width;
        if (apart >= each) {
            break;
        }
    }
    return ticks;
}

/// Leaves out what would run into the label before it: two labels of nineteen digits may be wider than the
/// plot.
void keepLabelsApart(ChartLayout &layout, const QFontMetrics &metrics)
{
    int end = std::numeric_limits<int>::min() / 2;
    std::erase_if(layout.steps, [&](const ChartTick &tick) {
        const QRect label = stepLabelPlace(layout, tick, metrics);
        if (label.left() < end + spacing::one) {
            return true;
        }
        end = label.right() + 1;
        return false;
    });
}

} // namespace

ChartFonts ChartFonts::current()
{
    return {tabularFont(TextRole::Caption2), textFont(TextRole::Caption2, Weight::Medium),
            tabularFont(TextRole::Caption2, Weight::Semibold)};
}

ChartLayout layoutChart(const ChartContent &content, QRect area, int headerHeight, const ChartFonts &fonts,
                        const QLocale &locale)
{
    const QFontMetrics labels(fonts.label);
    const QFontMetrics titles(fonts.title);
    ChartLayout layout;
    layout.fonts = fonts;
    layout.omission = chartOmissionText(content, locale);

    int bottom = area.bottom() + 1;
    const auto takeBottom = [&area, &bottom](int height) {
        bottom -= height;
        return QRect(area.left(), bottom, area.width(), height);
    };
    if (!layout.omission.isEmpty()) {
        layout.note = takeBottom(labels.height() + spacing::half);
    }
    layout.stepTitle = takeBottom(content.stepTitle.isEmpty() ? 0 : titles.height() + 2);
    layout.stepLabels = takeBottom(labels.height() + spacing::half);
    const int top = area.top() + std::max(headerHeight, titles.height()) + spacing::one;
    layout.header = QRect(area.left(), area.top(), area.width(), top - area.top() - spacing::one);

    const ChartRange steps = content.view.steps();
    const ChartRange values = content.shownValues();
    const int height = std::max(0, bottom - top);
    layout.values = valueTicks(values, content.scale, valueTickCount(height));
    // In whole units of the grid, so that the plot does not move with every digit.
    const int labelWidth = widestOf(layout.values, labels) + spacing::one;
    const int left = area.left() + (labelWidth + gridUnit - 1) / gridUnit * gridUnit;
    // Room for the dot at the end of a line, and for half of a label below it.
    const int right = area.right() + 1 - spacing::two - spacing::half;
    layout.plot = QRect(left, top, std::max(0, right - left), height);
    layout.steps = roomyStepTicks(steps, layout.plot.width(), labels, locale);
    layout.projection = {ChartScale(steps), ChartScale(values, content.scale), layout.plot.size()};
    keepLabelsApart(layout, labels);
    return layout;
}

QRect stepLabelPlace(const ChartLayout &layout, const ChartTick &tick, const QFontMetrics &metrics)
{
    const QRect &row = layout.stepLabels;
    const int middle = layout.plot.left() + qRound(layout.projection.x(tick.value));
    const int width = metrics.horizontalAdvance(tick.text) + 2;
    // The outermost labels stay whole.
    const int left =
        std::clamp(middle - width / 2, row.left(), std::max(row.left(), row.right() + 1 - width));
    return {left, row.top() + chartTickLength + 1, width, metrics.height()};
}

} // namespace zorel::ui::kit
