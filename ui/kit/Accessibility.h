#pragma once

#include <QAccessible>

class QWidget;

namespace zorel::ui::kit {

/// How assistive technology sees a widget that no stock class stands for; its name is the widget's accessible
/// name. A widget that is a QAbstractButton can be pressed through it.
void setAccessibleRole(QWidget *widget, QAccessible::Role role);

enum class Disclosure { Collapsed, Expanded };
/// Makes assistive technology tell that the widget opens and closes something, and whether that is open.
void setDisclosure(QWidget *widget, Disclosure disclosure);

/// Changes the accessible name and tells those who listen, unless it is the same.
void setSpokenName(QWidget *widget, const QString &name);

/// Reads the widget's accessible name out as a notice.
void announce(QWidget *widget);

} // namespace zorel::ui::kit
