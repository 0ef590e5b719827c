#pragma once

#include <QList>

class QWidget;

namespace zorel::ui::kit {

/// What the Tab key stops at below this widget, in the order in which it is read: as the layouts hold it, not
/// as it was made.
QList<QWidget *> readingOrder(const QWidget *root);

/// Has `widget`, which lies over others and in no layout, read where `place` stands. It must live as long as
/// `place`.
void setReadingPlace(QWidget *widget, QWidget *place);

/// Makes the Tab key follow the reading order. Pages, columns and sheets of the kit do that themselves; what
/// builds windows of its own calls it when the window is complete.
void applyReadingOrder(const QWidget *root);

} // namespace zorel::ui::kit
