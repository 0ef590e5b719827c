#pragma once

#include "ui/kit/ChartAxis.h"
#include "ui/kit/ChartContent.h"
#include "ui/kit/ChartProjection.h"

#include <QFont>
#include <QRect>

class QFontMetrics;

namespace zorel::ui::kit {

/// Of the marks on the axis of steps, in logical pixels.
inline constexpr int chartTickLength = 4;

/// Taken once, because finding a font with digits of one width means to measure them.
struct ChartFonts
{
    QFont label;   ///< of ticks and figures
    QFont title;   ///< of axes and legend
    QFont heading; ///< of the crosshair's figures

    /// From the application's font.
    static ChartFonts current();
};

/// Where the parts of a chart lie, in logical pixels, and what its axes are marked with.
struct ChartLayout
{
    ChartFonts fonts;
    QRect header;     ///< legend, title of the axis of values, and in the window the tools
    QRect plot;       ///< the lines; empty where there is no room for them
    QRect stepLabels; ///< below the plot
    QRect stepTitle;
    QRect note; ///< what cannot be drawn; empty without such a text
    std::vector<ChartTick> steps;
    std::vector<ChartTick> values;
    ChartProjection projection; ///< into the plot
    QString omission;
};

/// `headerHeight` at the top is left for the header, if that has no need of more.
ChartLayout layoutChart(const ChartContent &content, QRect area, int headerHeight, const ChartFonts &fonts,
                        const QLocale &locale);

/// Where a label of the axis of steps is written; `metrics` are those of the labels' font.
QRect stepLabelPlace(const ChartLayout &layout, const ChartTick &tick, const QFontMetrics &metrics);

} // namespace zorel::ui::kit
