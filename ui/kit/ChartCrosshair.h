#pragma once

#include "ui/kit/ChartContent.h"
#include "ui/kit/ChartProjection.h"

#include <QPointF>

#include <variant>

namespace zorel::ui::kit {

/// The point that a chart gives the figures of: the one nearest to the pointer, whatever lies there, or one
/// that was chosen by keyboard and stays chosen.
class ChartCrosshair
{
public:
    /// `position` in the plot.
    void follow(QPointF position) { m_target = position; }
    void choose(ChartMark mark) { m_target = mark; }
    void hide() { m_target = std::monostate(); }
    /// The pointer is gone; what was chosen by keyboard stays.
    void leave();

    bool isHidden() const { return std::holds_alternative<std::monostate>(m_target); }
    bool isChosen() const { return std::holds_alternative<ChartMark>(m_target); }
    bool isFollowing() const { return std::holds_alternative<QPointF>(m_target); }

    /// A chosen point that was dropped gives way to the oldest one that is left; one that is gone otherwise
    /// to none.
    std::optional<ChartMark> mark(const ChartContent &content, const ChartProjection &projection) const;

private:
    std::variant<std::monostate, QPointF, ChartMark> m_target;
};

} // namespace zorel::ui::kit
