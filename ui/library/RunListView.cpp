#include "ui/library/RunListView.h"

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

} // namespace zorel::ui::library
