#include "app/shell/MainWindow.h"

#include "app/shell/AboutSheet.h"
#include "app/shell/AboutView.h"
#include "app/shell/MenuCommand.h"
#include "app/shell/QuitNotice.h"
#include "app/shell/ScreenRoom.h"
#include "app/shell/SettingsView.h"
#include "app/shell/TitleBarAppNameButton.h"
#include "app/shell/WindowTitleBarConfigurator.h"
#include "app/shell/ZorelApp.h"
#include "ui/dashboard/MainView.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/ScrollPage.h"
#include "ui/library/ModelLibraryView.h"
#include "ui/update/UpdatePresenter.h"
#include "ui/update/UpdatesBlock.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

namespace zorel::app::shell {

namespace {

/// The keyboard starts in the content and not in the toolbar.
void focusFirst(const QWidget &content)
{
    for (QWidget *next = content.nextInFocusChain(); content.isAncestorOf(next);
         next = next->nextInFocusChain()) {
        if (next->focusPolicy() & Qt::TabFocus) {
            next->setFocus();
            return;
        }
    }
}

} // namespace

MainWindow::MainWindow(ZorelApp &app)
    : m_app(app)
{
    setUnifiedTitleAndToolBarOnMac(true);
    fillMenuBar(*menuBar(), menuCommands(app));
    addToolBar();
    addContent();
    fitScreen();

    connect(&app, &ZorelApp::showAboutChanged, this, &MainWindow::presentAbout);
    connect(&app, &ZorelApp::settingsRequested, this, &MainWindow::showSettings);
    connect(&app.appDelegate(), &AppDelegate::waitingBegan, this, &MainWindow::showQuitNotice);
    connect(&app.appDelegate(), &AppDelegate::terminationAllowed, this, [this] { delete m_quitNotice; });
    connect(&app.backend(), &backend::bridge::BackendController::showModelLibraryChanged, this,
            &MainWindow::presentLibrary);
    connect(&app, &ZorelApp::started, this, [this] {
        m_updates =
            std::make_unique<ui::update::UpdatePresenter>(m_app.updater(), m_app.workspace().openUrl, *this);
    });
}

MainWindow::~MainWindow() = default;

void MainWindow::addToolBar()
{
    auto *toolBar = new QToolBar(QStringLiteral("Toolbar"));
    toolBar->setMovable(false);
    toolBar->setFloatable(false);
    toolBar->setContextMenuPolicy(Qt::PreventContextMenu);
    // The name stands above the edge of the panels.
    auto *indent = new QWidget;
    indent->setFixedWidth(ui::kit::spacing::one);
    toolBar->addWidget(indent);
    toolBar->addWidget(new TitleBarAppNameButton(m_app.displayName(), [this] { m_app.setShowAbout(true); }));
    QMainWindow::addToolBar(toolBar);
}

void MainWindow::addContent()
{
    auto *content =
        new ui::dashboard::MainView({m_app.backend(), m_app.settings(), m_app.access(), m_app.defaults()},
                                    {m_app.workspace().reveal, [this] {
                                         m_app.openSettings();
                                     }});
    new WindowTitleBarConfigurator(m_app.displayName(), content);
    setCentralWidget(content);
    focusFirst(*content);
}

void MainWindow::fitScreen()
{
    const QSize room = screenRoom(*screen());
    setMinimumSize(minimumSizeHint().boundedTo(room));
    resize(sizeHint().boundedTo(room));
}

bool MainWindow::event(QEvent *event)
{
    if (event->type() == QEvent::Paint && !m_hasAppeared) {
        m_hasAppeared = true;
        // When this paint has reached the screen.
        QTimer::singleShot(0, this, &MainWindow::contentAppeared);
    }
    return QMainWindow::event(event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_app.appDelegate().applicationShouldTerminate() == AppDelegate::TerminateReply::now) {
        if (m_settings) {
            m_settings->close();
        }
        event->accept();
        return;
    }
    event->ignore();
    if (m_quitNotice) {
        m_quitNotice->remind();
    }
}

void MainWindow::presentAbout()
{
    if (!m_app.showAbout()) {
        if (m_about) {
            m_about->close();
        }
        return;
    }
    m_about = new AboutSheet(m_app.displayName(), m_app.version(), m_app.updater(), this);
    m_about->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_about, &QDialog::finished, &m_app, [this] { m_app.setShowAbout(false); });
    m_about->open();
}

void MainWindow::presentLibrary()
{
    if (!m_app.backend().showModelLibrary()) {
        if (m_library) {
            m_library->close();
        }
        return;
    }
    m_library = new ui::library::ModelLibraryView(m_app.library(), m_app.settings(),
                                                  {m_app.workspace().reveal}, this);
    m_library->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_library, &QDialog::finished, &m_app, [this] { m_app.backend().setShowModelLibrary(false); });
    m_library->open();
}

void MainWindow::showSettings()
{
    if (!m_settings) {
        auto *about = new ui::kit::ScrollPage;
        about->content()->addWidget(new AboutView(AboutView::Mode::embedded, m_app.displayName(),
                                                  m_app.version(),
                                                  new ui::update::UpdatesBlock(m_app.updater())));
        m_settings = new SettingsView(m_app.settings(), m_app.backend(), m_app.access(),
                                      m_app.workspace().reveal, about, this);
        m_settings->resize(m_settings->size().boundedTo(screenRoom(*screen())));
    }
    m_settings->show();
    m_settings->raise();
    m_settings->activateWindow();
}

void MainWindow::showQuitNotice()
{
    m_quitNotice = new QuitNotice(this);
    connect(m_quitNotice, &QuitNotice::quitNowRequested, &m_app.appDelegate(), &AppDelegate::stopWaiting);
    m_quitNotice->show();
}

} // namespace zorel::app::shell
