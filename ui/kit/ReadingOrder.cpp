#include "ui/kit/ReadingOrder.h"

#include <QGridLayout>
#include <QLayout>
#include <QScrollArea>
#include <QSet>
#include <QVariant>
#include <QWidget>

#include <algorithm>
#include <tuple>
#include <vector>

namespace zorel::ui::kit {

namespace {

constexpr const char *guestProperty = "zorelReadHere";

/// Grids are filled in any order, but read row by row.
std::vector<QLayoutItem *> itemsOf(QLayout *layout)
{
    std::vector<std::tuple<int, int, QLayoutItem *>> placed;
    const auto *grid = qobject_cast<QGridLayout *>(layout);
    for (int index = 0; index < layout->count(); ++index) {
        int row = 0;
        int column = index;
        if (grid) {
            int rows = 0;
            int columns = 0;
            grid->getItemPosition(index, &row, &column, &rows, &columns);
        }
        placed.emplace_back(row, column, layout->itemAt(index));
    }
    std::stable_sort(placed.begin(), placed.end(), [](const auto &first, const auto &second) {
        return std::tie(std::get<0>(first), std::get<1>(first)) <
               std::tie(std::get<0>(second), std::get<1>(second));
    });
    std::vector<QLayoutItem *> items;
    items.reserve(placed.size());
    for (const auto &place : placed) {
        items.push_back(std::get<QLayoutItem *>(place));
    }
    return items;
}

class Reader
{
public:
    void read(QWidget *widget)
    {
        if (m_seen.contains(widget)) {
            return;
        }
        m_seen.insert(widget);
        // A part that hands the focus on, such as the field inside a spin box, is no stop of its own.
        if ((widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy()) {
            m_stops.append(widget);
        }
        readChildren(widget);
        if (auto *guest = widget->property(guestProperty).value<QWidget *>()) {
            read(guest);
        }
    }

    void readChildren(const QWidget *widget)
    {
        if (widget->layout()) {
            readLayout(widget->layout());
        }
        if (const auto *area = qobject_cast<const QScrollArea *>(widget); area && area->widget()) {
            read(area->widget());
        }
        for (QObject *child : widget->children()) {
            auto *part = qobject_cast<QWidget *>(child);
            if (part && !part->isWindow()) {
                read(part);
            }
        }
    }

    QList<QWidget *> stops() const { return m_stops; }

private:
    void readLayout(QLayout *layout)
    {
        for (QLayoutItem *item : itemsOf(layout)) {
            if (QWidget *widget = item->widget()) {
                read(widget);
            } else if (QLayout *inner = item->layout()) {
                readLayout(inner);
            }
        }
    }

    QSet<const QWidget *> m_seen;
    QList<QWidget *> m_stops;
};

} // namespace

QList<QWidget *> readingOrder(const QWidget *root)
{
    Reader reader;
    reader.readChildren(root);
    return reader.stops();
}

void setReadingPlace(QWidget *widget, QWidget *place)
{
    place->setProperty(guestProperty, QVariant::fromValue(widget));
}

void applyReadingOrder(const QWidget *root)
{
    const QList<QWidget *> stops = readingOrder(root);
    for (qsizetype index = 1; index < stops.size(); ++index) {
        if (stops[index - 1]->nextInFocusChain() != stops[index]) {
            QWidget::setTabOrder(stops[index - 1], stops[index]);
        }
    }
}

} // namespace zorel::ui::kit
