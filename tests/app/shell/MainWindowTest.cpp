#include "app/shell/MainWindow.h"

#include "app/shell/AboutSheet.h"
#include "app/shell/AboutView.h"
#include "app/shell/QuitNotice.h"
#include "app/shell/ScreenRoom.h"
#include "app/shell/SettingsView.h"
#include "app/shell/TitleBarAppNameButton.h"
#include "library/ModelLibraryStore.h"
#include "tests/app/shell/AppStage.h"
#include "ui/dashboard/MainView.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/TextLabel.h"
#include "ui/library/ModelLibraryView.h"

#include <QMenuBar>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>

using namespace zorel;
using app::shell::AboutSheet;
using app::shell::MainWindow;
using app::shell::QuitNotice;
using app::shell::SettingsView;
using tests::AppStage;

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theWindowHoldsDashboardMenusAndToolbar();
    void theNameIsSeenWhole();
    void theWindowIsNamedAfterTheApplication();
    void theContentAppearsOnceAfterTheFirstPaint();
    void theWindowIsNoSmallerThanItsContent();
    void withoutNamesInTheBundleTheProgramHasItsOwn();
    void theNameInTheToolbarShowsAbout();
    void closingAboutClearsTheFlag();
    void theLibraryIsASheetThatClearsItsFlag();
    void settingsHaveOneWindow();
    void settingsHaveTheAboutContentWithoutAButtonToClose();
    void settingsGoWithTheMainWindow();
    void closingQuitsWhenNothingIsToBeSaved();
    void closingDuringARunWaitsAndSaysSo();
    void theNoticeCannotBeClosed();
    void quitNowEndsTheWait();
    void theWindowClosesWhenTheSidecarHasExited();

private:
    std::unique_ptr<AppStage> m_stage;
    std::unique_ptr<MainWindow> m_window;
};

void MainWindowTest::init()
{
    m_stage = std::make_unique<AppStage>();
    m_window = std::make_unique<MainWindow>(m_stage->app());
}

void MainWindowTest::cleanup()
{
    m_window.reset();
    m_stage.reset();
}

void MainWindowTest::theWindowHoldsDashboardMenusAndToolbar()
{
    QVERIFY(qobject_cast<ui::dashboard::MainView *>(m_window->centralWidget()));
    QCOMPARE(m_window->menuBar()->actions().size(), 3);
    const auto *toolBar = m_window->findChild<QToolBar *>();
    QVERIFY(toolBar);
    QVERIFY(!toolBar->isMovable());
    QVERIFY(toolBar->findChild<app::shell::TitleBarAppNameButton *>());
}

void MainWindowTest::theNameIsSeenWhole()
{
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    const auto *name = m_window->findChild<app::shell::TitleBarAppNameButton *>();
    QCOMPARE(name->size(), name->sizeHint());
    const QWidget *toolBar = m_window->findChild<QToolBar *>();
    QVERIFY(toolBar->rect().contains({name->mapTo(toolBar, QPoint(0, 0)), name->size()}));
}

void MainWindowTest::theWindowIsNamedAfterTheApplication()
{
    m_window->show();
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Talvex LLM Trainer"));
}

void MainWindowTest::theContentAppearsOnceAfterTheFirstPaint()
{
    QSignalSpy appeared(m_window.get(), &MainWindow::contentAppeared);
    QCoreApplication::processEvents();
    QCOMPARE(appeared.count(), 0);
    m_window->show();
    QTRY_COMPARE(appeared.count(), 1);
    m_window->repaint();
    m_window->hide();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->repaint();
    QCoreApplication::processEvents();
    QCOMPARE(appeared.count(), 1);
}

void MainWindowTest::theWindowIsNoSmallerThanItsContent()
{
    const QSize smallest = m_window->minimumSizeHint().boundedTo(app::shell::screenRoom(*m_window->screen()));
    m_window->resize(1, 1);
    m_window->show();
    QCOMPARE(m_window->size(), smallest);
    QVERIFY(m_window->centralWidget()->width() >=
            std::min(m_window->centralWidget()->minimumSizeHint().width(), smallest.width()));
}

void MainWindowTest::withoutNamesInTheBundleTheProgramHasItsOwn()
{
    QVERIFY(m_stage->information.isEmpty());
    const QString name = QStringLiteral("Talvex LLM Trainer");
    m_window->show();
    QCOMPARE(m_window->findChild<app::shell::TitleBarAppNameButton *>()->text(), name);
    m_stage->app().setShowAbout(true);
    const auto labels = m_window->findChild<AboutSheet *>()
                            ->findChild<app::shell::AboutView *>()
                            ->findChildren<ui::kit::TextLabel *>();
    QCOMPARE(labels.first()->text(), name);
}

void MainWindowTest::theNameInTheToolbarShowsAbout()
{
    m_window->show();
    m_window->findChild<app::shell::TitleBarAppNameButton *>()->click();
    QVERIFY(m_stage->app().showAbout());
    const auto *sheet = m_window->findChild<AboutSheet *>();
    QVERIFY(sheet && sheet->isVisible());
    QCOMPARE(sheet->windowModality(), Qt::WindowModal);
}

void MainWindowTest::closingAboutClearsTheFlag()
{
    m_window->show();
    m_stage->app().setShowAbout(true);
    m_window->findChild<AboutSheet *>()->findChild<ui::kit::ActionButton *>()->click();
    QVERIFY(!m_stage->app().showAbout());
    QTRY_VERIFY(!m_window->findChild<AboutSheet *>());

    m_stage->app().setShowAbout(true);
    QTest::keyClick(m_window->findChild<AboutSheet *>(), Qt::Key_Escape);
    QVERIFY(!m_stage->app().showAbout());
    QTRY_VERIFY(!m_window->findChild<AboutSheet *>());

    // Whoever clears the flag closes the sheet.
    m_stage->app().setShowAbout(true);
    m_stage->app().setShowAbout(false);
    QTRY_VERIFY(!m_window->findChild<AboutSheet *>());
}

void MainWindowTest::theLibraryIsASheetThatClearsItsFlag()
{
    m_window->show();
    m_stage->app().backend().setShowModelLibrary(true);
    auto *sheet = m_window->findChild<ui::library::ModelLibraryView *>();
    QVERIFY(sheet && sheet->isVisible());
    QTRY_COMPARE(m_stage->app().library().lastScanPath(),
                 m_stage->home() + QStringLiteral("/Documents/Zorel/Finished models"));
    sheet->reject();
    QVERIFY(!m_stage->app().backend().showModelLibrary());
    m_stage->app().backend().setShowModelLibrary(true);
    m_stage->app().backend().setShowModelLibrary(false);
    QTRY_VERIFY(!m_window->findChild<ui::library::ModelLibraryView *>());
}

void MainWindowTest::settingsHaveOneWindow()
{
    m_window->show();
    m_stage->app().openSettings();
    m_stage->app().openSettings();
    const QList<SettingsView *> windows = m_window->findChildren<SettingsView *>();
    QCOMPARE(windows.size(), 1);
    QVERIFY(windows.front()->isVisible());
    QVERIFY(windows.front()->isWindow());
    windows.front()->close();
    m_stage->app().openSettings();
    QVERIFY(windows.front()->isVisible());
}

void MainWindowTest::settingsHaveTheAboutContentWithoutAButtonToClose()
{
    m_stage->app().openSettings();
    const auto *tabs = m_window->findChild<SettingsView *>()->findChild<QTabWidget *>();
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->tabText(2), QStringLiteral("About"));
    const auto buttons = tabs->widget(2)->findChildren<ui::kit::ActionButton *>();
    QCOMPARE(buttons.size(), 1);
    QCOMPARE(buttons.first()->title(), QStringLiteral("Check for Updates"));
}

void MainWindowTest::settingsGoWithTheMainWindow()
{
    m_window->show();
    m_stage->app().openSettings();
    m_window->close();
    QVERIFY(!m_window->findChild<SettingsView *>()->isVisible());
}

void MainWindowTest::closingQuitsWhenNothingIsToBeSaved()
{
    m_window->show();
    QVERIFY(m_window->close());
    QVERIFY(!m_window->isVisible());
    QVERIFY(QGuiApplication::quitOnLastWindowClosed());
}

void MainWindowTest::closingDuringARunWaitsAndSaysSo()
{
    m_window->show();
    m_stage->startWithState(QStringLiteral("running"));
    QVERIFY(!m_window->close());
    QVERIFY(m_window->isVisible());
    const auto *notice = m_window->findChild<QuitNotice *>();
    QVERIFY(notice && notice->isVisible());
    // Once more: still one notice, still one "stop".
    QVERIFY(!m_window->close());
    QCOMPARE(m_window->findChildren<QuitNotice *>().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(m_stage->commands(), QStringLiteral("stop quit"), 30'000);
}

void MainWindowTest::theNoticeCannotBeClosed()
{
    m_window->show();
    m_stage->startWithState(QStringLiteral("paused"));
    m_window->close();
    auto *notice = m_window->findChild<QuitNotice *>();
    QTest::keyClick(notice, Qt::Key_Escape);
    QVERIFY(!notice->close());
    QVERIFY(notice->isVisible());
    QVERIFY(m_stage->app().appDelegate().isWaiting());
}

void MainWindowTest::quitNowEndsTheWait()
{
    m_window->show();
    m_stage->startWithState(QStringLiteral("running"));
    m_window->close();
    m_window->findChild<QuitNotice *>()->findChild<ui::kit::ActionButton *>()->click();
    QTRY_COMPARE(m_stage->quits, 1);
    QVERIFY(!m_window->findChild<QuitNotice *>());
    QVERIFY(m_window->close());
}

void MainWindowTest::theWindowClosesWhenTheSidecarHasExited()
{
    m_window->show();
    m_stage->startWithState(QStringLiteral("running"));
    m_window->close();
    m_stage->letSidecarExit();
    QTRY_VERIFY_WITH_TIMEOUT(!m_stage->app().backend().isRunning(), 30'000);
    m_stage->pass(std::chrono::milliseconds(250));
    QVERIFY(!m_window->findChild<QuitNotice *>());
    QTRY_COMPARE(m_stage->quits, 1);
    QVERIFY(m_window->close());
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
