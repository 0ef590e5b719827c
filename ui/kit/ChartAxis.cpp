#include "ui/kit/ChartAxis.h"

#include "ui/kit/ChartScale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace zorel::ui::kit {

namespace {

/// `digit` times ten to the `exponent`.
struct Round
{
    int digit = 1;
    int exponent = 0;

    /// Divides by a power of ten where it can: three times 0.1 is not 0.3.
    double times(double count) const
    {
        return exponent < 0 ? count * digit / std::pow(10.0, -exponent)
                            : count * digit * std::pow(10.0, exponent);
    }
};

Round roundDistance(ChartRange range, int most)
{
    const double least = range.high / most - range.low / most;
    if (!(least > 0) || !std::isfinite(least)) {
        return {};
    }
    const int exponent = static_cast<int>(std::floor(std::log10(least)));
    for (const int digit : {1, 2, 5}) {
        // The little more keeps a distance that fits exactly.
        if (digit * std::pow(10.0, exponent) >= least * (1 - 1e-9)) {
            return {digit, exponent};
        }
    }
    return {1, exponent + 1};
}

double leastGap(const std::vector<ChartTick> &ticks, const ChartScale &scale)
{
    double least = 1;
    for (std::size_t i = 1; i < ticks.size(); ++i) {
        least = std::min(least, scale.fraction(ticks[i].value) - scale.fraction(ticks[i - 1].value));
    }
    return least;
}

/// Leaves out what would stand too close to its neighbour.
void keepApart(std::vector<ChartTick> &ticks, const ChartScale &scale, double least)
{
    double before = -1;
    std::erase_if(ticks, [&](const ChartTick &tick) {
        const double at = scale.fraction(tick.value);
        if (at - before < least) {
            return true;
        }
        before = at;
        return false;
    });
}

/// Every multiple of the distance in the range.
std::vector<double> multiples(ChartRange range, Round distance)
{
    constexpr double slack = 1e-9;
    constexpr int safety = 1000;
    std::vector<double> values;
    const double one = distance.times(1);
    const double last = std::floor(range.high / one + slack);
    for (double count = std::ceil(range.low / one - slack); count <= last; ++count) {
        const double value = distance.times(count) + 0.0; // no "-0"
        // Beyond 2^53 a number may have no neighbour at that distance.
        if (values.size() == safety || (!values.empty() && value <= values.back())) {
            break;
        }
        values.push_back(value);
    }
    return values;
}

int exponentOf(double value)
{
    // Through the decimal digits, because the logarithm of 1000 may come out as 2.9999.
    const QByteArray digits = QByteArray::number(std::abs(value), 'e', 12);
    return digits.mid(digits.indexOf('e') + 1).toInt();
}

/// The value with its last digit at ten to the `last`.
QString valueText(double value, int last)
{
    constexpr int firstLarge = 6;
    constexpr int lastSmall = -4;
    const int exponent = exponentOf(value);
    if (value == 0 || (exponent < firstLarge && exponent > lastSmall)) {
        return QString::number(value, 'f', std::max(0, -last));
    }
    const double mantissa = value / std::pow(10.0, exponent);
    return QString::number(mantissa, 'f', std::max(0, exponent - last)) + QLatin1Char('e') +
           QString::number(exponent);
}

std::vector<ChartTick> evenTicks(ChartRange range, int most)
{
    const Round distance = roundDistance(range, most);
    std::vector<ChartTick> ticks;
    for (const double value : multiples(range, distance)) {
        ticks.push_back({value, valueText(value, distance.exponent)});
    }
    return ticks;
}

/// The given digits times the powers of ten in the range; of the powers each `every`-th.
std::vector<ChartTick> powerTicks(ChartRange range, std::span<const int> digits, int every)
{
    std::vector<ChartTick> ticks;
    const int last = exponentOf(range.high);
    for (int exponent = exponentOf(range.low); exponent <= last; exponent += every) {
        for (const int digit : digits) {
            const double value = Round{digit, exponent}.times(1);
            if (value >= range.low && value <= range.high) {
                ticks.push_back({value, valueText(value, exponent)});
            }
        }
    }
    return ticks;
}

/// As many ticks as stand far enough apart.
std::vector<ChartTick> logarithmicTicks(ChartRange range, int most)
{
    constexpr std::size_t fewest = 2;
    constexpr double nearlyEven = 3;
    const ChartScale scale(range, ChartScaleKind::Logarithmic);
    const double least = 0.7 / most;
    if (range.high / range.low >= nearlyEven) {
        static constexpr std::array<int, 9> all{1, 2, 3, 4, 5, 6, 7, 8, 9};
        static constexpr std::array<int, 4> four{1, 2, 3, 5};
        static constexpr std::array<int, 3> three{1, 2, 5};
        static constexpr std::array<int, 2> two{1, 3};
        static constexpr std::array<int, 1> one{1};
        for (const std::span<const int> digits :
             {std::span<const int>(all), std::span<const int>(four), std::span<const int>(three),
              std::span<const int>(two), std::span<const int>(one)}) {
            std::vector<ChartTick> ticks = powerTicks(range, digits, 1);
            if (ticks.size() >= fewest && leastGap(ticks, scale) >= least) {
                return ticks;
            }
        }
        const int powers = exponentOf(range.high) - exponentOf(range.low);
        if (powers > most) {
            // The first power may lie below the range.
            const double first = Round{1, exponentOf(range.low) + 1}.times(1);
            return powerTicks({first, range.high}, one, (powers + most - 1) / most);
        }
    }
    std::vector<ChartTick> ticks = evenTicks(range, most);
    keepApart(ticks, scale, least);
    return ticks;
}

QString stepText(double value, double largest, int last, const QLocale &locale)
{
    struct Unit
    {
        int exponent;
        const char *sign;
    };
    constexpr int mostDecimals = 3;
    // Below ten millions all digits are read more easily.
    constexpr double firstShortened = 1e7;
    for (const Unit unit : {Unit{12, "T"}, Unit{9, "B"}, Unit{6, "M"}}) {
        const int decimals = std::max(0, unit.exponent - last);
        if (largest >= std::max(firstShortened, std::pow(10.0, unit.exponent)) && decimals <= mostDecimals) {
            return value == 0 ? locale.toString(0)
                              : locale.toString(value / std::pow(10.0, unit.exponent), 'f', decimals) +
                                    QLatin1String(unit.sign);
        }
    }
    return locale.toString(value, 'f', 0);
}

} // namespace

std::vector<ChartTick> stepTicks(ChartRange range, int most, const QLocale &locale)
{
    Round distance = roundDistance(range, std::max(2, most));
    if (distance.exponent < 0) {
        distance = {};
    }
    const double largest = std::max(std::abs(range.low), std::abs(range.high));
    std::vector<ChartTick> ticks;
    for (const double value : multiples(range, distance)) {
        ticks.push_back({value, stepText(value, largest, distance.exponent, locale)});
    }
    return ticks;
}

std::vector<ChartTick> valueTicks(ChartRange range, ChartScaleKind kind, int most)
{
    most = std::max(2, most);
    if (kind == ChartScaleKind::Linear) {
        return evenTicks(range, most);
    }
    return logarithmicTicks(range, most);
}

} // namespace zorel::ui::kit
