#pragma once

#include "ui/kit/LineRaster.h"

class QPalette;

namespace zorel::ui::kit {

/// How a series is told apart: by its colour, and without colours by its pattern.
struct ChartSeriesLook
{
    QColor color;
    LinePattern pattern = LinePattern::Solid;
};

inline constexpr int chartColorCount = 6;

/// For the light or the dark palette. Neighbouring series differ in brightness as well as in hue, so that the
/// colour-blind tell them apart; every colour has a contrast of at least 3:1 on a card. Numbers beyond the
/// last colour start again, with another pattern.
ChartSeriesLook chartSeriesLook(int number, const QPalette &palette);

} // namespace zorel::ui::kit
