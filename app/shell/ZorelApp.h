#pragma once

#include "app/folders/ConfiguredFolder.h"
#include "app/folders/FolderAccessChecker.h"
#include "app/shell/AppDelegate.h"
#include "backend/bridge/BackendController.h"
#include "platform/InformationDictionary.h"
#include "platform/Workspace.h"
#include "updater/UpdateChecker.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace zorel::app::settings {
class ZorelSettings;
}
namespace zorel::library {
class ModelLibraryStore;
}
namespace zorel::platform {
class KeepAwake;
class UserDefaults;
} // namespace zorel::platform

namespace zorel::app::shell {

/// The application: the objects that live as long as it does, each made when it is first asked for, and what
/// its commands do with them. Main thread only.
class ZorelApp : public QObject
{
    Q_OBJECT

public:
    struct Surroundings
    {
        platform::InformationDictionary information;
        std::function<settings::ZorelSettings &()> settings;
        std::function<platform::UserDefaults &()> defaults;
        backend::bridge::BackendController::Surroundings backend;
        AppDelegate::Surroundings delegate;
        std::function<bool(const QString &folder)> probeAccess;
        platform::Workspace workspace;
        /// Keeps the system awake from a reason on, until there is none.
        std::function<void(const std::optional<QString> &reason)> keepAwake;
        std::function<updater::UpdateChecker::Surroundings()> updater;
        /// Ends the application's event loop once every window has agreed.
        std::function<void()> quit;

        /// This bundle, this user, this system.
        static Surroundings system();
    };

    explicit ZorelApp(Surroundings surroundings = Surroundings::system());
    ~ZorelApp() override;

    AppDelegate &appDelegate() { return m_appDelegate; }
    backend::bridge::BackendController &backend();
    settings::ZorelSettings &settings();
    library::ModelLibraryStore &library();
    updater::UpdateChecker &updater();
    folders::FolderAccessChecker &access();

    /// What is kept beside the settings.
    platform::UserDefaults &defaults();
    const platform::Workspace &workspace() const { return m_surroundings.workspace; }

    const QString &displayName() const { return m_displayName; }
    QString version() const;

    bool showAbout() const { return m_showAbout; }
    void setShowAbout(bool show);
    void openSettings();
    /// Shows the folder in the file manager; does not create it.
    void reveal(folders::ConfiguredFolder folder);
    void revealLibraryRoot();
    /// Asks every window, and then the delegate, whether the application may end.
    void quit();

    /// The start-up sequence, to be called when the main window's content has appeared. Without effect from
    /// the second call on. Blocks while interpreters are probed.
    void contentAppeared();

Q_SIGNALS:
    void showAboutChanged();
    void settingsRequested();
    /// The start-up sequence is over.
    void started();

private:
    void followRun();

    Surroundings m_surroundings;
    QString m_displayName;

    AppDelegate m_appDelegate;
    std::unique_ptr<backend::bridge::BackendController> m_backend;
    settings::ZorelSettings *m_settings = nullptr;
    std::unique_ptr<library::ModelLibraryStore> m_library;
    std::unique_ptr<updater::UpdateChecker> m_updater;
    std::unique_ptr<folders::FolderAccessChecker> m_access;
    bool m_showAbout = false;

    bool m_hasStarted = false;
    bool m_isRunLive = false;
};

} // namespace zorel::app::shell
