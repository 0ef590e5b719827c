#pragma once

#include <QObject>

namespace zorel::ui::kit {

/// Shift+F10 in place of the menu key, which many keyboards do not have. For an application to install as its
/// event filter.
class ContextMenuKey : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace zorel::ui::kit
