#pragma once

#include "ui/kit/ChartContent.h"

#include <QLocale>

namespace zorel::ui::kit {

// What a chart says in words.

/// Grouped, every digit.
QString chartStepText(std::int64_t step, const QLocale &locale);

/// With four decimals after a point, as the figures of a run are given, whatever the language; numbers from a
/// thousand million on in scientific notation with as many.
QString chartValueText(double value);

/// A point in words: "Step 1,200, Loss 2.5312", with the series' name where there are several.
QString chartMarkText(const ChartContent &content, ChartMark mark, const QLocale &locale);

/// What cannot be drawn and why; empty when everything is.
QString chartOmissionText(const ChartContent &content, const QLocale &locale);

/// The whole chart for those who hear it: titles of the axes, legend, and of each series the number of
/// points, the first, last and lowest value.
QString chartSummary(const ChartContent &content, const QLocale &locale);

} // namespace zorel::ui::kit
