#pragma once

#include "ui/kit/ChartSmoothing.h"
#include "ui/kit/ChartTrack.h"

#include <QString>

namespace zorel::ui::kit {

/// A named line of a chart: its points and, when wanted, their smoothed values. Everything that is asked
/// about it stays up to date with each appended point.
class ChartSeries
{
public:
    explicit ChartSeries(QString name);

    const QString &name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /// O(1) amortised. Where there is a capacity, the oldest points make room.
    void append(ChartPoint point);
    void assign(std::span<const ChartPoint> points);
    /// O(1) amortised over the points dropped. What was smoothed stays as it was.
    void dropOldest(std::size_t count);
    void clear();

    /// At most so many points are kept, the newest ones; 0 keeps all.
    void setCapacity(std::size_t capacity);
    std::size_t capacity() const { return m_capacity; }

    void setScale(ChartScaleKind scale);
    /// See ChartSmoothing; 0 is none.
    void setSmoothing(double weight);

    const ChartTrack &raw() const { return m_raw; }
    /// How many of the points have a value that is no number or endless.
    std::size_t notFiniteCount() const { return m_notFinite; }
    /// Null without smoothing; else it has the ordinals of raw().
    const ChartTrack *smoothed() const { return m_smoothed ? &*m_smoothed : nullptr; }

private:
    void smoothAgain();
    void keepCapacity();

    QString m_name;
    std::size_t m_capacity = 0;
    std::size_t m_notFinite = 0;
    ChartTrack m_raw;
    ChartSmoothing m_smoothing;
    std::optional<ChartTrack> m_smoothed;
};

} // namespace zorel::ui::kit
