#include "ui/kit/ChartColors.h"

#include "ui/kit/Colors.h"

#include <array>

namespace zorel::ui::kit {

namespace {

// Blue, orange, green, rose, brown or gold, grey: the hues that the common kinds of colour-blindness keep
// apart best.
constexpr std::array<QRgb, chartColorCount> onLight{0xff0054ae, 0xffc85200, 0xff009c6f,
                                                    0xff8b1577, 0xff4f3002, 0xff383c40};
constexpr std::array<QRgb, chartColorCount> onDark{0xff5cb3ff, 0xffff9f40, 0xff6dffb5,
                                                   0xffc678ad, 0xff969255, 0xffd8d9dc};
constexpr std::array patterns{LinePattern::Solid, LinePattern::Dashed, LinePattern::Dotted,
                              LinePattern::DashDotted};

} // namespace

ChartSeriesLook chartSeriesLook(int number, const QPalette &palette)
{
    const auto position = static_cast<std::size_t>(number);
    const auto &colors = isDark(palette) ? onDark : onLight;
    // One turn of the patterns is shorter than one of the colours; no pair of both comes twice within twelve.
    return {QColor::fromRgb(colors[position % colors.size()]), patterns[position % patterns.size()]};
}

} // namespace zorel::ui::kit
