#include "ui/library/RunListView.h"

#include <QMouseEvent>

namespace zorel::ui::library {

// QAbstractItemView would make the first row the current one, so its part is left out.
void RunListView::focusInEvent(QFocusEvent *event)
{
    if (currentIndex().isValid()) {
        QListView::focusInEvent(event);
        return;
    }
    QAbstractScrollArea::focusInEvent(event); // NOLINT(bugprone-parent-virtual-call)
    viewport()->update();
}

// For the second press of a double click Qt asks for no menu.
void RunListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::RightButton) {
        Q_EMIT customContextMenuRequested(event->position().toPoint());
        return;
    }
    QListView::mouseDoubleClickEvent(event);
}

} // namespace zorel::ui::library
