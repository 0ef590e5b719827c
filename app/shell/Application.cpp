#include "app/shell/Application.h"

#include "app/shell/MainWindow.h"
#include "app/shell/ZorelApp.h"
#include "platform/Bundle.h"
#include "platform/ColorScheme.h"
#include "platform/Environment.h"
#include "platform/StandardFolders.h"
#include "ui/kit/ContextMenuKey.h"
#include "ui/kit/KitStyle.h"

#include <QApplication>
#include <QIcon>
#include <QSessionManager>

namespace zorel::app::shell {

namespace {

/// A logout that lets applications talk to the user waits for the sidecar. Where it does not, and where a
/// session is merely saved, nothing is done: the end of this process ends the training with a checkpoint.
void handleLogout(AppDelegate &delegate, QSessionManager &manager)
{
    if (manager.allowsInteraction()) {
        delegate.terminateForLogout();
        manager.release();
    }
}

/// For desktops that know no bundles and show each window's own icon.
QIcon bundleIcon()
{
    const auto &bundle = platform::mainBundle();
    return bundle ? QIcon(bundle->resources + QLatin1String("/AppIcon.png")) : QIcon();
}

} // namespace

int runApplication(int argc, char **argv)
{
    ZorelApp app;
    app.appDelegate().applicationWillFinishLaunching();
    QApplication application(argc, argv);
    ui::kit::installKitStyle(platform::prefersDarkWindows(platform::currentEnvironment(),
                                                          platform::StandardFolders::current().home));
    ui::kit::ContextMenuKey contextMenuKey;
    application.installEventFilter(&contextMenuKey);
    QApplication::setApplicationDisplayName(app.displayName());
    QApplication::setDesktopFileName(QStringLiteral("com.talvex.zorel"));
    QApplication::setQuitOnLastWindowClosed(
        app.appDelegate().applicationShouldTerminateAfterLastWindowClosed());
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &app,
        [&app](QSessionManager &manager) { handleLogout(app.appDelegate(), manager); }, Qt::DirectConnection);

    MainWindow window(app);
    QObject::connect(&window, &MainWindow::contentAppeared, &app, [&app] {
        // Decoding it and handing it over would hold up the first paint.
        QApplication::setWindowIcon(bundleIcon());
        app.contentAppeared();
    });
    window.show();
    const int status = QApplication::exec();
    app.updater().finishTermination();
    return status;
}

} // namespace zorel::app::shell
