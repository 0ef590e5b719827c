#include "ui/kit/LineRaster.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zorel::ui::kit {

namespace {

constexpr float nowhere = std::numeric_limits<float>::infinity();
constexpr double dotRadius = 2.2; ///< in line widths

/// The upper half of a disc, column by column.
std::vector<float> discReach(double radius)
{
    constexpr double part = 1.0 / LineRaster::partsPerPixel;
    std::vector<float> reach{static_cast<float>(radius)};
    // Half a column less than the distance, because a column's line already fills its width.
    for (double away = 1.5 * part; away < radius; away += part) {
        reach.push_back(static_cast<float>(std::sqrt(radius * radius - away * away)));
    }
    return reach;
}

/// `share` of 256 of each of the four bytes, rounded.
quint32 scaled(quint32 pixel, quint32 share)
{
    constexpr quint32 half = 0x00800080U;
    return (((pixel & 0x00ff00ffU) * share + half) >> 8 & 0x00ff00ffU) |
           (((pixel >> 8 & 0x00ff00ffU) * share + half) & 0xff00ff00U);
}

} // namespace

LineRaster::LineRaster(QImage &image, QRect area)
    : m_image(image)
    , m_area(area & image.rect())
{
    const auto rows = static_cast<std::size_t>(std::max(0, m_area.height())) + 2;
    m_coverage.assign(rows, 0);
    m_whole.assign(rows, 0);
}

void LineRaster::setPen(const QColor &color, double width, LinePattern pattern)
{
    flush();
    m_color = qPremultiply(color.rgba());
    m_pattern = pattern;
    m_unit = std::max(width, 1.0);
    m_lineReach = discReach(width / 2);
    m_dotReach = discReach(width * dotRadius);
    m_margin = static_cast<int>(m_dotReach.size()) + partsPerPixel;
    m_columnCount = m_area.width() * partsPerPixel + 2 * m_margin;
    for (std::vector<float> *tops : {&m_tops, &m_wideTops}) {
        tops->assign(static_cast<std::size_t>(m_columnCount), nowhere);
    }
    for (std::vector<float> *bottoms : {&m_bottoms, &m_wideBottoms}) {
        bottoms->assign(static_cast<std::size_t>(m_columnCount), -nowhere);
    }
    m_firstColumn = m_columnCount;
    m_lastColumn = -1;
}

void LineRaster::moveTo(double x, double y)
{
    flush();
    m_isDrawing = true;
    m_isDot = true;
    m_x = x * partsPerPixel;
    m_y = y;
}

void LineRaster::lineTo(double x, double y)
{
    x *= partsPerPixel;
    const int direction = x > m_x ? 1 : x < m_x ? -1 : 0;
    if (direction != 0 && m_direction != 0 && direction != m_direction) {
        flush();
    }
    if (direction != 0) {
        m_direction = direction;
    }
    if (direction != 0 || y != m_y) {
        m_isDot = false;
    }
    addSegment(m_x, m_y, x, y);
    m_x = x;
    m_y = y;
}

void LineRaster::finish()
{
    flush();
    m_isDrawing = false;
}

void LineRaster::include(int column, double top, double bottom)
{
    // Far outside is all the same, and small numbers keep their precision.
    constexpr double beyond = 256;
    const double height = m_area.height();
    const auto at = static_cast<std::size_t>(column);
    m_tops[at] = std::min(m_tops[at], static_cast<float>(std::clamp(top, -beyond, height + beyond)));
    m_bottoms[at] = std::max(m_bottoms[at], static_cast<float>(std::clamp(bottom, -beyond, height + beyond)));
}

void LineRaster::addSegment(double x0, double y0, double x1, double y1)
{
    if (x1 < x0) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const double left = x0 + m_margin;
    const double right = x1 + m_margin;
    if (right < 0 || left >= m_columnCount) {
        return;
    }
    const int first = static_cast<int>(std::max(0.0, left));
    const int last = static_cast<int>(std::min(m_columnCount - 1.0, right));
    m_firstColumn = std::min(m_firstColumn, first);
    m_lastColumn = std::max(m_lastColumn, last);
    if (first == last) {
        // Within one column, or cut off at an edge where nobody sees how it goes on.
        include(first, std::min(y0, y1), std::max(y0, y1));
        return;
    }
    const double slope = (y1 - y0) / (right - left);
    double y = first > left ? y0 + slope * (first - left) : y0;
    for (int column = first; column <= last; ++column) {
        const double next = column + 1 < right ? y0 + slope * (column + 1 - left) : y1;
        include(column, std::min(y, next), std::max(y, next));
        y = next;
    }
}

void LineRaster::flush()
{
    if (m_isDrawing && m_isDot && m_direction == 0) {
        addSegment(m_x, m_y, m_x, m_y);
    }
    if (m_firstColumn <= m_lastColumn) {
        spread(m_isDot ? m_dotReach : m_lineReach);
        const int firstX = std::max(0, m_firstColumn - m_margin) / partsPerPixel;
        const int lastX = std::min(m_area.width() - 1, (m_lastColumn - m_margin) / partsPerPixel);
        for (int x = firstX; x <= lastX; ++x) {
            paintPixelColumn(x);
        }
        const auto from = m_firstColumn;
        const auto to = m_lastColumn + 1;
        for (std::vector<float> *tops : {&m_tops, &m_wideTops}) {
            std::fill(tops->begin() + from, tops->begin() + to, nowhere);
        }
        for (std::vector<float> *bottoms : {&m_bottoms, &m_wideBottoms}) {
            std::fill(bottoms->begin() + from, bottoms->begin() + to, -nowhere);
        }
    }
    m_firstColumn = m_columnCount;
    m_lastColumn = -1;
    m_direction = 0;
    m_isDot = false;
}

/// Grows what was collected by the pen, a disc. Afterwards the first and last column tell of the grown one.
void LineRaster::spread(const std::vector<float> &reach)
{
    const int width = static_cast<int>(reach.size()) - 1;
    const int first = std::max(0, m_firstColumn - width);
    const int last = std::min(m_columnCount - 1, m_lastColumn + width);
    for (int away = -width; away <= width; ++away) {
        const float up = reach[static_cast<std::size_t>(std::abs(away))];
        const int from = std::max(first, m_firstColumn + away);
        const int to = std::min(last, m_lastColumn + away);
        const float *tops = m_tops.data() - away;
        const float *bottoms = m_bottoms.data() - away;
        for (int column = from; column <= to; ++column) {
            m_wideTops[static_cast<std::size_t>(column)] =
                std::min(m_wideTops[static_cast<std::size_t>(column)], tops[column] - up);
            m_wideBottoms[static_cast<std::size_t>(column)] =
                std::max(m_wideBottoms[static_cast<std::size_t>(column)], bottoms[column] + up);
        }
    }
    m_firstColumn = first;
    m_lastColumn = last;
}

void LineRaster::paintPixelColumn(int x)
{
    const auto height = static_cast<float>(m_area.height());
    float top = nowhere;
    float bottom = -nowhere;
    const auto first = static_cast<std::size_t>(x) * partsPerPixel + static_cast<std::size_t>(m_margin);
    for (std::size_t column = first; column < first + partsPerPixel; ++column) {
        const float from = std::max(m_wideTops[column], 0.0F);
        const float to = std::min(m_wideBottoms[column], height);
        if (from < to) {
            cover(from, to);
            top = std::min(top, from);
            bottom = std::max(bottom, to);
        }
    }
    if (top < bottom) {
        blendColumn(x, static_cast<int>(top), std::min(static_cast<int>(bottom), m_area.height() - 1));
    }
}

void LineRaster::cover(float top, float bottom)
{
    const auto first = static_cast<std::size_t>(top);
    const auto last = static_cast<std::size_t>(bottom);
    if (first == last) {
        m_coverage[first] += bottom - top;
        return;
    }
    m_coverage[first] += static_cast<float>(first + 1) - top;
    m_coverage[last] += bottom - static_cast<float>(last);
    m_whole[first + 1] += 1;
    m_whole[last] -= 1;
}

void LineRaster::blendColumn(int x, int firstRow, int lastRow)
{
    const double share = 256.0 * opacityAt(x) / partsPerPixel;
    const qsizetype stride = m_image.bytesPerLine();
    uchar *pixel = m_image.bits() + (m_area.top() + firstRow) * stride +
                   (m_area.left() + x) * qsizetype{sizeof(quint32)};
    float whole = 0;
    for (int row = firstRow; row <= lastRow; ++row, pixel += stride) {
        const auto at = static_cast<std::size_t>(row);
        whole += m_whole[at];
        const float covered = (m_coverage[at] + whole) * static_cast<float>(share);
        const auto amount = static_cast<quint32>(std::lround(covered));
        m_coverage[at] = 0;
        m_whole[at] = 0;
        auto &destination = *reinterpret_cast<quint32 *>(pixel);
        const quint32 source = scaled(m_color, std::min(amount, 256U));
        const quint32 alpha = source >> 24;
        destination = source + scaled(destination, 256 - alpha - (alpha >> 7));
    }
    // What covers nothing of the row after the last one is noted there all the same.
    m_coverage[static_cast<std::size_t>(lastRow) + 1] = 0;
    m_whole[static_cast<std::size_t>(lastRow) + 1] = 0;
}

double LineRaster::opacityAt(int x) const
{
    constexpr double faint = 0.3;
    const double at = x / m_unit;
    switch (m_pattern) {
    case LinePattern::Solid:
        return 1;
    case LinePattern::Dashed:
        return std::fmod(at, 9) < 6 ? 1 : faint;
    case LinePattern::Dotted:
        return std::fmod(at, 4) < 2 ? 1 : faint;
    case LinePattern::DashDotted: {
        const double within = std::fmod(at, 13);
        return within < 6 || (within >= 8.5 && within < 10.5) ? 1 : faint;
    }
    }
    return 1;
}

} // namespace zorel::ui::kit
