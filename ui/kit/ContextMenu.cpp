#include "ui/kit/ContextMenu.h"

#include <QMouseEvent>

namespace zorel::ui::kit {

// Qt opens the menu at the second press of a double click and then hands the double click to the menu. QMenu
// takes that for a press, and one at its own corner, where the pointer is, for one beside it, which closes
// it.
void ContextMenu::mouseDoubleClickEvent(QMouseEvent *event)
{
    event->accept();
}

} // namespace zorel::ui::kit
