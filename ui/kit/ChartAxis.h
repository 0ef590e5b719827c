#pragma once

#include "ui/kit/ChartPoint.h"

#include <QLocale>
#include <QString>

#include <vector>

namespace zorel::ui::kit {

struct ChartTick
{
    double value = 0;
    QString text;
};

/// Round values (1, 2 or 5 times a power of ten) between the ends of an axis of steps: whole numbers,
/// grouped, above a million in millions or billions where that loses no digit. At most `most` of them, at
/// least 2.
std::vector<ChartTick> stepTicks(ChartRange range, int most, const QLocale &locale);

/// The same for an axis of values; on a logarithmic one powers of ten and, where there is room, some or all
/// digits between them, over a short range values at even distances. With a decimal point in every language,
/// as the figures of a run.
std::vector<ChartTick> valueTicks(ChartRange range, ChartScaleKind kind, int most);

} // namespace zorel::ui::kit
