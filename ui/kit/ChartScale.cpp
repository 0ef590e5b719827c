#include "ui/kit/ChartScale.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zorel::ui::kit {

namespace {

constexpr double greatest = std::numeric_limits<double>::max();
/// The smallest number whose reciprocal is still a number.
constexpr double smallest = std::numeric_limits<double>::min();

/// Half of the value, because the distance between two of the largest numbers is no number; or its logarithm.
double flat(double value, ChartScaleKind kind)
{
    return kind == ChartScaleKind::Linear ? value / 2 : std::log(std::max(value, smallest));
}

double unflat(double value, ChartScaleKind kind)
{
    return kind == ChartScaleKind::Linear ? std::clamp(value, -greatest / 2, greatest / 2) * 2
                                          : std::clamp(std::exp(value), smallest, greatest);
}

ChartRange withLength(ChartRange range, ChartScaleKind kind)
{
    if (kind == ChartScaleKind::Logarithmic) {
        range.low = std::max(range.low, smallest);
        range.high = std::max(range.high, smallest);
    }
    // Two neighbouring numbers are no range either: nothing could be told apart between them.
    constexpr double leastShare = 1e-12;
    const double half = std::max(std::abs(range.low), std::abs(range.high)) * leastShare;
    const double least = std::max(half, smallest);
    if (range.high / 2 - range.low / 2 >= least / 2) {
        return range;
    }
    const double floor = kind == ChartScaleKind::Linear ? -greatest : smallest;
    return {std::clamp(range.low - least, floor, greatest), std::clamp(range.high + least, floor, greatest)};
}

} // namespace

ChartScale::ChartScale(ChartRange range, ChartScaleKind kind)
    : m_kind(kind)
    , m_range(withLength(range, kind))
    , m_low(flat(m_range.low, kind))
{
    const double length = flat(m_range.high, kind) - m_low;
    m_factor = length > 0 ? std::min(1 / length, greatest) : 1;
}

double ChartScale::fraction(double value) const
{
    constexpr double furthest = 1e6;
    const double fraction = (flat(value, m_kind) - m_low) * m_factor;
    return std::isnan(fraction) ? 0 : std::clamp(fraction, -furthest, furthest);
}

double ChartScale::value(double fraction) const
{
    return unflat(m_low + fraction / m_factor, m_kind);
}

ChartRange roomAround(ChartRange data, ChartScaleKind kind)
{
    constexpr double share = 0.05;
    if (kind == ChartScaleKind::Logarithmic) {
        const double low = flat(data.low, kind);
        const double high = flat(data.high, kind);
        const double room = high > low ? (high - low) * share : 2 * share;
        return {unflat(low - room, kind), unflat(high + room, kind)};
    }
    const double length = data.high / 2 - data.low / 2;
    double room = length * share * 2;
    if (!(length > 0)) {
        room = data.low == 0 ? 1 : std::abs(data.low) * share;
    }
    const double low = std::clamp(data.low - room, -greatest, greatest);
    return {data.low >= 0 ? std::max(low, 0.0) : low, std::clamp(data.high + room, -greatest, greatest)};
}

} // namespace zorel::ui::kit
