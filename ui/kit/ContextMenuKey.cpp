#include "ui/kit/ContextMenuKey.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QWidget>

namespace zorel::ui::kit {

bool ContextMenuKey::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    const auto *key = static_cast<QKeyEvent *>(event);
    auto *widget = qobject_cast<QWidget *>(watched);
    if (key->key() != Qt::Key_F10 || key->modifiers() != Qt::ShiftModifier || !widget ||
        QApplication::activePopupWidget()) {
        return false;
    }
    // As the toolkit does for the menu key.
    const QPoint place = widget->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent request(QContextMenuEvent::Keyboard, place, widget->mapToGlobal(place));
    QCoreApplication::sendEvent(widget, &request);
    return true;
}

} // namespace zorel::ui::kit
