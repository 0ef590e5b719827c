#include "ui/library/RunListView.h"

namespace zorel::ui::library {

namespace {

/// The next one from here on; invalid when there is none.
QModelIndex firstEnabled(QModelIndex index, int step)
{
    while (index.isValid() && !index.flags().testFlag(Qt::ItemIsEnabled)) {
        index = index.siblingAtRow(index.row() + step);
    }
    return index;
}

} // namespace

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

// QListView itself passes over them with the arrow keys alone.
QModelIndex RunListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex reached = QListView::moveCursor(action, modifiers);
    const int step = action == MovePageUp ? -1 : 1;
    const QModelIndex run = firstEnabled(reached, step);
    return run.isValid() ? run : firstEnabled(reached, -step);
}

} // namespace zorel::ui::library
