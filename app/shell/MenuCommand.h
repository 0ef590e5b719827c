#pragma once

#include <QAction>
#include <QKeySequence>
#include <QString>

#include <functional>
#include <vector>

class QMenuBar;

namespace zorel::app::shell {

class ZorelApp;

/// One command of the menu bar. On macOS the key `Qt::CTRL` stands for is Command.
struct MenuCommand
{
    enum class Place {
        next,
        afterDivider,
    };

    QString menu; ///< title of the menu that holds it
    QString title;
    QKeySequence shortcut;
    std::function<void()> action;
    Place place = Place::next;
    /// Where macOS puts it whatever the menu.
    QAction::MenuRole role = QAction::NoRole;
    /// Keeps the title in step with what changes it; called once with the menu's action.
    std::function<void(QAction &)> follow = {};
};

/// Every command of the menu bar, menu by menu in the order of display. They act on `app`, which must outlive
/// them.
std::vector<MenuCommand> menuCommands(ZorelApp &app);

/// Makes a menu of each run of commands with the same menu title, with a letter that opens it. The shortcuts
/// work in every window of the application.
void fillMenuBar(QMenuBar &menuBar, const std::vector<MenuCommand> &commands);

} // namespace zorel::app::shell
