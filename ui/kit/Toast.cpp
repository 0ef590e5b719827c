#include "ui/kit/Toast.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace zorel::ui::kit {

Toast::Toast(QWidget *parentWindow)
    : QWidget(parentWindow)
    , m_content(new QHBoxLayout(this))
{
    hide();
    setAccessibleRole(this, QAccessible::AlertMessage);
    m_content->setContentsMargins(spacing::two, 12, spacing::two, 12);
    m_content->setSpacing(12);
    parentWindow->installEventFilter(this);
}

void Toast::keepClearOf(QWidget *widget)
{
    m_kept = widget;
    // When one of those around it moves, so does it.
    for (QWidget *part = widget; part != nullptr && part != parentWidget(); part = part->parentWidget()) {
        part->installEventFilter(this);
    }
    place();
}

void Toast::showToast()
{
    // What has changed while it was hidden.
    layout()->activate();
    place();
    show();
    raise();
    nameItself();
    announce(this);
}

void Toast::nameItself()
{
    if (!accessibleName().isEmpty() && accessibleName() != m_ownName) {
        return;
    }
    QStringList names;
    const QList<QWidget *> shown = findChildren<QWidget *>();
    for (const QWidget *widget : shown) {
        const bool isText =
            !widget->accessibleName().isEmpty() && !qobject_cast<const QAbstractButton *>(widget);
        if (isText && widget->isVisibleTo(this)) {
            names.append(widget->accessibleName());
        }
    }
    m_ownName = names.join(QStringLiteral(". "));
    setSpokenName(this, m_ownName);
}

void Toast::hideToast()
{
    hide();
}

void Toast::place()
{
    const QSize room = parentWidget()->size() - QSize(2 * spacing::two, 2 * spacing::two);
    const int width = std::min(sizeHint().width(), std::max(room.width(), 0));
    const int height =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    QRect area((parentWidget()->width() - width) / 2, parentWidget()->height() - height - spacing::three,
               width, height);
    if (m_kept && m_kept->isVisible()) {
        const QRect kept(m_kept->mapTo(parentWidget(), QPoint(0, 0)), m_kept->size());
        const int above = kept.top() - spacing::two - height;
        if (area.intersects(kept) && above >= spacing::two) {
            area.moveTop(above);
        }
    }
    setGeometry(area);
}

bool Toast::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Show:
    case QEvent::Hide:
        if (watched == parentWidget()) {
            break;
        }
        [[fallthrough]];
    case QEvent::Resize:
        place();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

bool Toast::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest) {
        place();
    }
    return QWidget::event(event);
}

void Toast::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintPanel(painter, rect(), cornerRadius, color(ColorRole::ControlBackground, palette()),
               color(ColorRole::ControlBorder, palette()));
}

} // namespace zorel::ui::kit
