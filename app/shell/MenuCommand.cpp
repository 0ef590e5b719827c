#include "app/shell/MenuCommand.h"

#include "app/shell/ZorelApp.h"
#include "backend/bridge/BackendController.h"

#include <QMenu>
#include <QMenuBar>

namespace zorel::app::shell {

using folders::ConfiguredFolder;
using Place = MenuCommand::Place;

namespace {

enum class CheckState { idle, checking };

QString checkForUpdatesTitle(CheckState state)
{
    return state == CheckState::checking ? QStringLiteral("Checking for Updates…")
                                         : QStringLiteral("Check for Updates…");
}

/// The checker is made at start-up, after the menus.
void followCheck(ZorelApp &app, QAction &action)
{
    QObject::connect(&app, &ZorelApp::started, &action, [&app, &action] {
        QObject::connect(&app.updater(), &updater::UpdateChecker::isCheckingChanged, &action,
                         [&app, &action] {
                             action.setText(checkForUpdatesTitle(
                                 app.updater().isChecking() ? CheckState::checking : CheckState::idle));
                         });
    });
}

std::vector<MenuCommand> applicationCommands(ZorelApp &app)
{
    const QString menu = app.displayName();
    return {
        {menu,
         QStringLiteral("About ") + menu,
         {},
         [&app] { app.setShowAbout(true); },
         Place::next,
         QAction::AboutRole},
        {menu,
         checkForUpdatesTitle(CheckState::idle),
         {},
         [&app] { app.updater().checkForUpdates(); },
         Place::afterDivider,
         QAction::ApplicationSpecificRole,
         [&app](QAction &action) {
             followCheck(app, action);
         }},
        {menu, QStringLiteral("Settings…"), QKeySequence(Qt::CTRL | Qt::Key_Comma),
         [&app] { app.openSettings(); }, Place::afterDivider, QAction::PreferencesRole},
        {menu, QStringLiteral("Quit ") + menu, QKeySequence(Qt::CTRL | Qt::Key_Q), [&app] { app.quit(); },
         Place::afterDivider, QAction::QuitRole},
    };
}

std::vector<MenuCommand> trainingCommands(ZorelApp &app)
{
    const QString menu = QStringLiteral("Training");
    return {
        {menu, QStringLiteral("Start"), QKeySequence(Qt::CTRL | Qt::Key_R),
         [&app] {
             app.backend().startTraining(false);
         }},
        {menu, QStringLiteral("Pause / Resume"), QKeySequence(Qt::CTRL | Qt::Key_Space),
         [&app] {
             app.backend().sendCommand(QStringLiteral("toggle_pause"));
         }},
        {menu, QStringLiteral("Stop"), QKeySequence(Qt::CTRL | Qt::Key_Period),
         [&app] {
             app.backend().sendCommand(QStringLiteral("stop"));
         }},
        {menu, QStringLiteral("Resume from latest checkpoint"),
         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R), [&app] { app.backend().startTraining(true); },
         Place::afterDivider},
    };
}

std::vector<MenuCommand> libraryCommands(ZorelApp &app)
{
    const QString menu = QStringLiteral("Library");
    const auto reveal = [&app](ConfiguredFolder folder) {
        return [&app, folder] {
            app.reveal(folder);
        };
    };
    return {
        {menu, QStringLiteral("Browse Trained Models…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B),
         [&app] {
             app.backend().setShowModelLibrary(true);
         }},
        {menu, QStringLiteral("Reveal Training Data in Finder"),
         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T), reveal(ConfiguredFolder::trainingData),
         Place::afterDivider},
        {menu, QStringLiteral("Reveal Finished Models in Finder"),
         QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M), reveal(ConfiguredFolder::finishedModels)},
        {menu, QStringLiteral("Reveal Zorel Library Folder"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_L),
         [&app] {
             app.revealLibraryRoot();
         }},
    };
}

/// An ampersand in a menu marks a letter; one in a name is an ampersand.
QString menuText(const QString &text)
{
    return QString(text).replace(QLatin1Char('&'), QLatin1String("&&"));
}

/// Marks the first letter that opens no other menu, for the Alt key. `taken` is kept up to date.
QString markedTitle(const QString &title, QString &taken)
{
    for (qsizetype index = 0; index < title.size(); ++index) {
        const QChar letter = title.at(index).toLower();
        if (letter.isLetterOrNumber() && !taken.contains(letter)) {
            taken.append(letter);
            return menuText(title.first(index)) + QLatin1Char('&') + menuText(title.sliced(index));
        }
    }
    return menuText(title);
}

} // namespace

std::vector<MenuCommand> menuCommands(ZorelApp &app)
{
    std::vector<MenuCommand> commands = applicationCommands(app);
    for (auto &&group : {trainingCommands(app), libraryCommands(app)}) {
        commands.insert(commands.end(), group.begin(), group.end());
    }
    return commands;
}

void fillMenuBar(QMenuBar &menuBar, const std::vector<MenuCommand> &commands)
{
    QMenu *menu = nullptr;
    QString title;
    QString marked;
    for (const MenuCommand &command : commands) {
        if (!menu || title != command.menu) {
            title = command.menu;
            menu = menuBar.addMenu(markedTitle(title, marked));
        }
        if (command.place == Place::afterDivider) {
            menu->addSeparator();
        }
        QAction *action = menu->addAction(menuText(command.title));
        action->setShortcut(command.shortcut);
        action->setShortcutContext(Qt::ApplicationShortcut);
        action->setMenuRole(command.role);
        QObject::connect(action, &QAction::triggered, menu, command.action);
        if (command.follow) {
            command.follow(*action);
        }
    }
}

} // namespace zorel::app::shell
