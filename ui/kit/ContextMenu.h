#pragma once

#include <QMenu>

namespace zorel::ui::kit {

/// A menu that stays open however soon after another press of the same button it was opened.
class ContextMenu : public QMenu
{
    Q_OBJECT

public:
    using QMenu::QMenu;

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;
};

} // namespace zorel::ui::kit
