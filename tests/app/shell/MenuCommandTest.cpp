#include "app/shell/MenuCommand.h"

#include "app/settings/ZorelSettings.h"
#include "tests/app/shell/AppStage.h"

#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>

using namespace zorel;
using app::shell::MenuCommand;
using app::shell::menuCommands;
using tests::AppStage;

namespace {

const MenuCommand &command(const std::vector<MenuCommand> &commands, const QString &title)
{
    const auto found = std::ranges::find(commands, title, &MenuCommand::title);
    if (found == commands.end()) {
        qFatal("no command %s", qPrintable(title));
    }
    return *found;
}

} // namespace

class MenuCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_stage = std::make_unique<AppStage>(); }
    void cleanup() { m_stage.reset(); }

    void everyCommandStandsInItsMenuWithItsShortcut();
    void noTwoCommandsShareAShortcut();
    void theFirstMenuIsNamedAfterTheBundle();
    void trainingCommandsReachTheSidecar();
    void browsingShowsTheLibrary();
    void revealCommandsShowTheFolders();
    void nothingIsCreatedToBeRevealed();
    void aboutSettingsAndQuitReachTheApplication();
    void checkingForUpdatesIsToldInTheMenu();
    void menusAreMadeOfTheCommands();
    void anAmpersandInTheNameStays();

private:
    void trigger(const QString &title);

    std::unique_ptr<AppStage> m_stage;
};

void MenuCommandTest::trigger(const QString &title)
{
    const std::vector<MenuCommand> commands = menuCommands(m_stage->app());
    command(commands, title).action();
}

void MenuCommandTest::everyCommandStandsInItsMenuWithItsShortcut()
{
    QStringList lines;
    for (const MenuCommand &entry : menuCommands(m_stage->app())) {
        lines.append(
            entry.menu + QStringLiteral(" | ") + entry.title + QStringLiteral(" | ") +
            entry.shortcut.toString(QKeySequence::PortableText) +
            (entry.place == MenuCommand::Place::afterDivider ? QStringLiteral(" | divider") : QString()));
    }
    const QStringList expected{
        QStringLiteral("Talvex LLM Trainer | About Talvex LLM Trainer | "),
        QStringLiteral("Talvex LLM Trainer | Check for Updates… |  | divider"),
        QStringLiteral("Talvex LLM Trainer | Settings… | Ctrl+, | divider"),
        QStringLiteral("Talvex LLM Trainer | Quit Talvex LLM Trainer | Ctrl+Q | divider"),
        QStringLiteral("Training | Start | Ctrl+R"),
        QStringLiteral("Training | Pause / Resume | Ctrl+Space"),
        QStringLiteral("Training | Stop | Ctrl+."),
        QStringLiteral("Training | Resume from latest checkpoint | Ctrl+Shift+R | divider"),
        QStringLiteral("Library | Browse Trained Models… | Ctrl+Shift+B"),
        QStringLiteral("Library | Reveal Training Data in Finder | Ctrl+Shift+T | divider"),
        QStringLiteral("Library | Reveal Finished Models in Finder | Ctrl+Shift+M"),
        QStringLiteral("Library | Reveal Zorel Library Folder | Ctrl+Shift+L"),
    };
    QCOMPARE(lines, expected);
}

void MenuCommandTest::noTwoCommandsShareAShortcut()
{
    QStringList shortcuts;
    for (const MenuCommand &entry : menuCommands(m_stage->app())) {
        if (!entry.shortcut.isEmpty()) {
            QVERIFY2(!shortcuts.contains(entry.shortcut.toString()), qPrintable(entry.title));
            shortcuts.append(entry.shortcut.toString());
        }
    }
}

void MenuCommandTest::theFirstMenuIsNamedAfterTheBundle()
{
    m_stage->information.insert(QStringLiteral("CFBundleDisplayName"), QStringLiteral("Trainer"));
    QCOMPARE(menuCommands(m_stage->app()).front().menu, QStringLiteral("Trainer"));
    QCOMPARE(menuCommands(m_stage->app()).front().title, QStringLiteral("About Trainer"));
}

void MenuCommandTest::trainingCommandsReachTheSidecar()
{
    m_stage->startWithState(QStringLiteral("running"));
    for (const char *title : {"Start", "Pause / Resume", "Stop", "Resume from latest checkpoint"}) {
        trigger(QString::fromLatin1(title));
    }
    QTRY_COMPARE_WITH_TIMEOUT(m_stage->commands(), QStringLiteral("start toggle_pause stop start-resumed"),
                              30'000);
}

void MenuCommandTest::browsingShowsTheLibrary()
{
    trigger(QStringLiteral("Browse Trained Models…"));
    QVERIFY(m_stage->app().backend().showModelLibrary());
}

void MenuCommandTest::revealCommandsShowTheFolders()
{
    m_stage->app().settings().setTrainingDataPath(QStringLiteral("~/my corpora"));
    trigger(QStringLiteral("Reveal Training Data in Finder"));
    trigger(QStringLiteral("Reveal Finished Models in Finder"));
    trigger(QStringLiteral("Reveal Zorel Library Folder"));
    const QStringList expected{m_stage->home() + QStringLiteral("/my corpora"),
                               m_stage->home() + QStringLiteral("/Documents/Zorel/Finished models"),
                               m_stage->home() + QStringLiteral("/Documents/Zorel")};
    QCOMPARE(m_stage->revealed, expected);
}

void MenuCommandTest::nothingIsCreatedToBeRevealed()
{
    trigger(QStringLiteral("Reveal Training Data in Finder"));
    QVERIFY(!QFile::exists(m_stage->home() + QStringLiteral("/Documents")));
}

void MenuCommandTest::aboutSettingsAndQuitReachTheApplication()
{
    QSignalSpy settings(&m_stage->app(), &app::shell::ZorelApp::settingsRequested);
    trigger(QStringLiteral("About Talvex LLM Trainer"));
    QVERIFY(m_stage->app().showAbout());
    trigger(QStringLiteral("Settings…"));
    QCOMPARE(settings.count(), 1);
    trigger(QStringLiteral("Quit Talvex LLM Trainer"));
    QCOMPARE(m_stage->quits, 1);
}

void MenuCommandTest::checkingForUpdatesIsToldInTheMenu()
{
    QMenuBar bar;
    app::shell::fillMenuBar(bar, menuCommands(m_stage->app()));
    QAction *check = bar.actions().at(0)->menu()->actions().at(2);
    QCOMPARE(check->text(), QStringLiteral("Check for Updates…"));
    m_stage->app().contentAppeared();
    QStringList titles;
    connect(&m_stage->app().updater(), &updater::UpdateChecker::isCheckingChanged, check,
            [&] { titles << check->text(); });
    QSignalSpy alerts(&m_stage->app().updater(), &updater::UpdateChecker::alertRequested);
    // Without a client the check fails at once.
    check->trigger();
    QCOMPARE(titles,
             (QStringList{QStringLiteral("Checking for Updates…"), QStringLiteral("Check for Updates…")}));
    QCOMPARE(alerts.count(), 1);
}

void MenuCommandTest::menusAreMadeOfTheCommands()
{
    QMenuBar bar;
    app::shell::fillMenuBar(bar, menuCommands(m_stage->app()));
    QStringList menus;
    for (const QAction *menu : bar.actions()) {
        menus.append(menu->text());
    }
    QCOMPARE(menus, QStringList({QStringLiteral("&Talvex LLM Trainer"), QStringLiteral("T&raining"),
                                 QStringLiteral("&Library")}));
    const QList<QAction *> actions = bar.actions().at(1)->menu()->actions();
    QCOMPARE(actions.size(), 5);
    QVERIFY(actions.at(3)->isSeparator());
    QCOMPARE(actions.at(1)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Space));
    QCOMPARE(actions.at(1)->shortcutContext(), Qt::ApplicationShortcut);
    QCOMPARE(bar.actions().at(0)->menu()->actions().at(0)->menuRole(), QAction::AboutRole);
    bar.actions().at(0)->menu()->actions().at(0)->trigger();
    QVERIFY(m_stage->app().showAbout());
}

void MenuCommandTest::anAmpersandInTheNameStays()
{
    m_stage->information.insert(QStringLiteral("CFBundleName"), QStringLiteral("Train & Go"));
    QMenuBar bar;
    app::shell::fillMenuBar(bar, menuCommands(m_stage->app()));
    QCOMPARE(bar.actions().at(0)->text(), QStringLiteral("&Train && Go"));
    QCOMPARE(bar.actions().at(0)->menu()->actions().at(0)->text(), QStringLiteral("About Train && Go"));
}

QTEST_MAIN(MenuCommandTest)
#include "MenuCommandTest.moc"
