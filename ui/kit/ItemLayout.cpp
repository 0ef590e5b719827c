#include "ui/kit/ItemLayout.h"

#include <QStyle>
#include <QWidget>

namespace zorel::ui::kit {

ItemLayout::ItemLayout(QWidget *parent)
    : QLayout(parent)
{
    setContentsMargins(0, 0, 0, 0);
}

ItemLayout::~ItemLayout()
{
    qDeleteAll(m_items);
}

void ItemLayout::addItem(QLayoutItem *item)
{
    m_items.push_back(item);
    invalidate();
}

int ItemLayout::count() const
{
    return static_cast<int>(m_items.size());
}

QLayoutItem *ItemLayout::itemAt(int index) const
{
    return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem *ItemLayout::takeAt(int index)
{
    QLayoutItem *item = itemAt(index);
    if (item) {
        m_items.erase(m_items.begin() + index);
        invalidate();
    }
    return item;
}

int ItemLayout::heightForWidth(int width) const
{
    const QMargins margins = contentsMargins();
    const QRect area = QRect(0, 0, width, 0).marginsRemoved(margins);
    return arrange(area, Pass::Measure) + margins.top() + margins.bottom();
}

QSize ItemLayout::minimumSize() const
{
    QSize smallest;
    for (const QLayoutItem *item : m_items) {
        if (!item->isEmpty()) {
            smallest = smallest.expandedTo(item->minimumSize());
        }
    }
    return smallest.grownBy(contentsMargins());
}

void ItemLayout::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    arrange(rect.marginsRemoved(contentsMargins()), Pass::Place);
}

int ItemLayout::heightOf(const QLayoutItem *item, int width)
{
    return item->hasHeightForWidth() ? item->heightForWidth(width) : item->sizeHint().height();
}

void ItemLayout::place(QLayoutItem *item, const QRect &area, const QRect &place) const
{
    const Qt::LayoutDirection direction =
        parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    item->setGeometry(QStyle::visualRect(direction, area, place));
}

} // namespace zorel::ui::kit
