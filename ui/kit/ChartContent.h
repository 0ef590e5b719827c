#pragma once

#include "ui/kit/ChartSeries.h"
#include "ui/kit/ChartView.h"

#include <optional>
#include <vector>

namespace zorel::ui::kit {

/// Which point of which series; see ChartTrack about ordinals.
struct ChartMark
{
    int series = 0;
    std::uint64_t ordinal = 0;

    bool operator==(const ChartMark &) const = default;
};

/// All that a chart shows, apart from how it looks.
struct ChartContent
{
    QString title;
    QString stepTitle;
    QString valueTitle;
    QString legendKey;
    std::vector<ChartSeries> series;
    ChartScaleKind scale = ChartScaleKind::Linear;
    double smoothing = 0;
    ChartView view;

    /// Whether no series has a point, be it one that cannot be drawn.
    bool isEmpty() const;
    std::size_t pointCount() const;
    /// From the smallest step to the largest; a single step gets half a step on both sides.
    ChartRange allSteps() const;
    /// What the axis of values shows: the zoom's range, else room for the values of the steps shown.
    ChartRange shownValues() const;
    /// What a series is called on its own: its name, without one the title of the axis of values.
    QString nameOf(int number) const;

    /// Of the finite values, those that have no place on the logarithmic scale.
    std::size_t notPositiveCount() const;
    std::size_t notFiniteCount() const;

    const ChartPoint &at(ChartMark mark) const;
    bool holds(ChartMark mark) const;
};

} // namespace zorel::ui::kit
