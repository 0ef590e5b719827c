#include "ui/kit/ChartTrace.h"

#include "ui/kit/LineRaster.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zorel::ui::kit {

namespace {

/// The steps that fall into one column of the raster. All that lies to the left of the plot is one column,
/// and all to the right.
class ColumnSteps
{
public:
    explicit ColumnSteps(const ChartProjection &projection)
        : m_low(projection.steps.range().low)
        , m_count(std::ceil(projection.size.width() * LineRaster::partsPerPixel))
        , m_width((projection.steps.range().high - m_low) / m_count)
    {}

    void moveTo(double step)
    {
        const double column = std::clamp(std::floor((step - m_low) / m_width), -1.0, m_count);
        m_column = column;
        const double endless = std::numeric_limits<double>::infinity();
        // Whatever rounding does, the step is inside.
        m_from = column < 0 ? -endless : std::min(m_low + column * m_width, step);
        m_to = column >= m_count ? endless
                                 : std::max(m_low + (column + 1) * m_width, std::nextafter(step, endless));
    }

    bool holds(double step) const { return step >= m_from && step < m_to; }
    bool holds(double first, double last) const { return first >= m_from && last < m_to; }
    /// Whether these cannot lie in one column, wherever it is.
    bool isTooLong(double first, double last) const
    {
        return last - first > m_width && first >= m_low && last < m_low + m_count * m_width;
    }
    /// -1 to the left of the plot, the number of columns to the right of it.
    double column() const { return m_column; }
    bool isSeen() const { return m_column >= 0 && m_column < m_count; }

private:
    double m_low;
    double m_count;
    double m_width;
    double m_from = 0;
    double m_to = 0;
    double m_column = -1;
};

/// Takes a track's walk and draws what it needs of it.
template <typename Pen>
class Tracer
{
public:
    /// Blocks up to this level are drawn by their extremes alone, even where they span several columns.
    Tracer(const ChartTrack &track, const ChartProjection &projection, int coarseLevel, Pen &pen)
        : m_track(track)
        , m_projection(projection)
        , m_coarseLevel(coarseLevel)
        , m_pen(pen)
        , m_steps(projection)
    {}

    void trace()
    {
        m_track.walk([this](const ChartPyramid::Block &block, int level,
                            std::uint64_t ordinal) { return takeBlock(block, level, ordinal); },
                     [this](std::uint64_t first, std::uint64_t end) { takePoints(first, end); });
        interrupt();
    }

private:
    /// Of a run of points that follow each other in one column.
    struct Column
    {
        const ChartPoint *first = nullptr; ///< null while there is none
        const ChartPoint *last = nullptr;
        double lowest = 0;
        double highest = 0;
        double number = -1;
        bool isSeen = false;

        bool holds(double value) const { return value >= lowest && value <= highest; }
    };

    bool takeBlock(const ChartPyramid::Block &block, int level, std::uint64_t ordinal)
    {
        if (!findColumn(static_cast<double>(block.firstStep), static_cast<double>(block.lastStep))) {
            if (level > m_coarseLevel) {
                return false;
            }
            takeCoarsely(block, level, ordinal);
            return true;
        }
        const std::uint64_t last = ordinal + ChartPyramid::pointsPerBlock(level) - 1;
        if (block.startsWithGap || goesBackTo(m_track.at(ordinal))) {
            interrupt();
        }
        m_previous = &m_track.at(last);
        if (block.hasValues) {
            extend(m_track.at(block.startsWithGap ? ordinal + block.lowestAt : ordinal),
                   m_track.at(block.endsWithGap ? ordinal + block.lowestAt : last), block.lowest,
                   block.highest);
        }
        if (block.endsWithGap) {
            interrupt();
        }
        return true;
    }

    void takeCoarsely(const ChartPyramid::Block &block, int level, std::uint64_t ordinal)
    {
        takePoint(ordinal);
        if (block.hasValues) {
            takePoint(ordinal + std::min(block.lowestAt, block.highestAt));
            takePoint(ordinal + std::max(block.lowestAt, block.highestAt));
        }
        takePoint(ordinal + ChartPyramid::pointsPerBlock(level) - 1);
    }

    void takePoint(std::uint64_t ordinal) { takePoints(ordinal, ordinal + 1); }

    void takePoints(std::uint64_t firstOrdinal, std::uint64_t endOrdinal)
    {
        const ChartPoint *point = &m_track.at(firstOrdinal);
        const ChartPoint *const end = point + (endOrdinal - firstOrdinal);
        const ChartScaleKind scale = m_track.pyramid().scale();
        while (point != end) {
            if (!ChartPyramid::canDraw(scale, point->value)) {
                interrupt();
                ++point;
                continue;
            }
            if (goesBackTo(*point)) {
                interrupt();
            }
            const auto step = static_cast<double>(point->step);
            findColumn(step, step);
            const ChartPoint *const first = point;
            double lowest = point->value;
            double highest = point->value;
            for (++point; point != end && m_steps.holds(static_cast<double>(point->step)) &&
                          ChartPyramid::canDraw(scale, point->value);
                 ++point) {
                lowest = std::min(lowest, point->value);
                highest = std::max(highest, point->value);
            }
            m_previous = point - 1;
            extend(*first, *m_previous, lowest, highest);
        }
    }

    /// Another run begins there: a line to it would tell of losses that never were.
    bool goesBackTo(const ChartPoint &point) const
    {
        return m_previous != nullptr && point.step < m_previous->step;
    }

    /// Whether all the steps lie in one column; that is the current one then.
    bool findColumn(double firstStep, double lastStep)
    {
        if (m_steps.holds(firstStep, lastStep)) {
            return true;
        }
        if (m_steps.isTooLong(firstStep, lastStep)) {
            return false;
        }
        ColumnSteps other = m_steps;
        other.moveTo(firstStep);
        if (!other.holds(firstStep, lastStep)) {
            return false;
        }
        drawColumn();
        m_steps = other;
        return true;
    }

    void extend(const ChartPoint &first, const ChartPoint &last, double lowest, double highest)
    {
        if (m_column.first == nullptr) {
            m_column = {&first, nullptr, lowest, highest, m_steps.column(), m_steps.isSeen()};
        }
        m_column.last = &last;
        m_column.lowest = std::min(m_column.lowest, lowest);
        m_column.highest = std::max(m_column.highest, highest);
    }

    void drawColumn()
    {
        if (m_column.first == nullptr) {
            return;
        }
        const Column column = std::exchange(m_column, {});
        if (overlapsDrawn(column)) {
            drawBeside(column);
        } else {
            endDrawn();
            drawFrom(column);
        }
        m_drawn = column;
    }

    /// Whether the line from the last point of the column drawn before to the first one of this is hidden by
    /// the two columns.
    bool overlapsDrawn(const Column &column) const
    {
        return m_drawn.first != nullptr && m_drawn.isSeen && column.isSeen &&
               column.number == m_drawn.number + 1 && m_drawn.holds(column.first->value) &&
               column.holds(m_drawn.last->value);
    }

    /// Goes over where both columns are covered, which needs the positions of their extremes alone.
    void drawBeside(const Column &column)
    {
        const double lowestY = m_projection.y(column.lowest);
        const double commonY = column.lowest < m_drawn.lowest ? m_drawnLowestY : lowestY;
        const double x = m_projection.x(static_cast<double>(column.first->step));
        m_pen.lineTo(m_drawnX, commonY);
        m_pen.lineTo(x, commonY);
        m_pen.lineTo(x, lowestY);
        m_pen.lineTo(x, m_projection.y(column.highest));
        m_drawnLowestY = lowestY;
        m_drawnX = x;
    }

    void drawFrom(const Column &column)
    {
        m_drawnX = m_projection.x(static_cast<double>(column.first->step));
        const double y = m_projection.y(column.first->value);
        if (m_isLineBegun) {
            m_pen.lineTo(m_drawnX, y);
        } else {
            m_pen.moveTo(m_drawnX, y);
        }
        m_isLineBegun = true;
        m_drawnLowestY = y;
        if (column.isSeen && column.lowest != column.highest) {
            m_drawnLowestY = m_projection.y(column.lowest);
            m_pen.lineTo(m_drawnX, m_drawnLowestY);
            m_pen.lineTo(m_drawnX, m_projection.y(column.highest));
        }
    }

    /// The line goes on from the last point.
    void endDrawn()
    {
        if (m_drawn.last != m_drawn.first) {
            m_pen.lineTo(m_projection.x(static_cast<double>(m_drawn.last->step)),
                         m_projection.y(m_drawn.last->value));
        }
    }

    void interrupt()
    {
        drawColumn();
        endDrawn();
        m_drawn = {};
        m_isLineBegun = false;
    }

    const ChartTrack &m_track;
    const ChartProjection &m_projection;
    int m_coarseLevel;
    Pen &m_pen;
    ColumnSteps m_steps;
    Column m_column;
    Column m_drawn; ///< the one before, of which only the end may still have to be drawn
    const ChartPoint *m_previous = nullptr; ///< the last one that was taken
    double m_drawnX = 0;
    double m_drawnLowestY = 0;
    bool m_isLineBegun = false;
};

/// Adds up how many columns a line would cross.
struct CrossingCounter
{
    void moveTo(double x, double) { at = x; }
    void lineTo(double x, double)
    {
        const double from = std::clamp(std::min(at, x), 0.0, width);
        const double to = std::clamp(std::max(at, x), 0.0, width);
        crossed += to - from;
        at = x;
    }

    double width = 0;
    double at = 0;
    double crossed = 0;
};

/// Steps that go to and fro a hundred thousand times would draw as many lines across the plot. So that this
/// takes no longer than a frame either, such a list is drawn in parts, each by its extremes.
int coarseLevelFor(const ChartTrack &track, const ChartProjection &projection)
{
    constexpr std::size_t mostTurns = 64;
    constexpr double mostCrossings = 128;
    if (track.turnCount() <= mostTurns) {
        return -1;
    }
    int level = -1;
    for (; level < ChartPyramid::levelCount - 1; ++level) {
        CrossingCounter counter{projection.size.width()};
        Tracer(track, projection, level, counter).trace();
        if (counter.crossed <= mostCrossings * projection.size.width()) {
            break;
        }
    }
    return level;
}

} // namespace

void traceLine(const ChartTrack &track, const ChartProjection &projection, LineRaster &raster)
{
    if (!projection.size.isEmpty()) {
        Tracer(track, projection, coarseLevelFor(track, projection), raster).trace();
    }
    raster.finish();
}

} // namespace zorel::ui::kit
