#include "ui/kit/FlowLayout.h"

#include "ui/kit/Metrics.h"

#include <algorithm>

namespace zorel::ui::kit {

FlowLayout::FlowLayout(QWidget *parent)
    : ItemLayout(parent)
    , m_horizontalGap(spacing::one)
    , m_verticalGap(spacing::one)
{}

void FlowLayout::setGaps(int horizontal, int vertical)
{
    m_horizontalGap = horizontal;
    m_verticalGap = vertical;
    invalidate();
}

int FlowLayout::arrange(const QRect &area, Pass pass) const
{
    std::vector<QLayoutItem *> line;
    int top = area.top();
    int used = 0;
    int lineHeight = 0;
    const auto finishLine = [&] {
        if (pass == Pass::Place) {
            placeLine(area, top, lineHeight, line);
        }
        top += lineHeight;
        line.clear();
        used = 0;
        lineHeight = 0;
    };
    for (QLayoutItem *item : items()) {
        if (item->isEmpty()) {
            continue;
        }
        const QSize size = sizeIn(item, area.width());
        if (!line.empty() && used + m_horizontalGap + size.width() > area.width()) {
            finishLine();
            top += m_verticalGap;
        }
        used += size.width() + (line.empty() ? 0 : m_horizontalGap);
        lineHeight = std::max(lineHeight, size.height());
        line.push_back(item);
    }
    finishLine();
    return top - area.top();
}

void FlowLayout::placeLine(const QRect &area, int top, int height,
                           const std::vector<QLayoutItem *> &line) const
{
    int left = area.left();
    for (QLayoutItem *item : line) {
        const QSize size = sizeIn(item, area.width());
        place(item, area, QRect(QPoint(left, top + (height - size.height()) / 2), size));
        left += size.width() + m_horizontalGap;
    }
}

QSize FlowLayout::sizeIn(const QLayoutItem *item, int room)
{
    const int width = std::min(item->sizeHint().width(), room);
    return {width, heightOf(item, width)};
}

QSize FlowLayout::sizeHint() const
{
    int width = 0;
    int height = 0;
    for (const QLayoutItem *item : items()) {
        if (!item->isEmpty()) {
            width += item->sizeHint().width() + (width > 0 ? m_horizontalGap : 0);
            height = std::max(height, item->sizeHint().height());
        }
    }
    return QSize(width, height).grownBy(contentsMargins());
}

} // namespace zorel::ui::kit
