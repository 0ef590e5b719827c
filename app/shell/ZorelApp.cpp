#include "app/shell/ZorelApp.h"

#include "app/folders/LibraryReadme.h"
#include "app/presentation/ApplicationName.h"
#include "app/settings/ZorelSettings.h"
#include "library/ModelLibraryStore.h"
#include "platform/KeepAwake.h"
#include "platform/UserDefaults.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

namespace zorel::app::shell {

using backend::bridge::BackendController;
using folders::FolderAccessChecker;
using settings::ZorelSettings;

namespace {

/// A paused run computes nothing; the system may sleep.
bool isComputing(const QString &state)
{
    static constexpr std::array states{QLatin1String("starting"), QLatin1String("preparing"),
                                       QLatin1String("running"), QLatin1String("stopping")};
    return std::ranges::find(states, state) != states.end();
}

} // namespace

ZorelApp::Surroundings ZorelApp::Surroundings::system()
{
    return {
        platform::mainInformationDictionary(),
        []() -> ZorelSettings & { return ZorelSettings::shared(); },
        []() -> platform::UserDefaults & { return platform::standardUserDefaults(); },
        BackendController::Surroundings::system(),
        AppDelegate::Surroundings::system(),
        folders::probeAccess,
        platform::Workspace::system(),
        [activity = std::make_shared<platform::KeepAwake>()](const std::optional<QString> &reason) {
            if (reason) {
                activity->hold(*reason);
            } else {
                activity->release();
            }
        },
        [] { return updater::UpdateChecker::Surroundings::system(platform::mainInformationDictionary()); },
        &QCoreApplication::quit,
    };
}

ZorelApp::ZorelApp(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
    , m_displayName(presentation::displayName(m_surroundings.information))
    , m_appDelegate(m_surroundings.delegate)
{
    // Queued: the notice of the wait goes first.
    connect(&m_appDelegate, &AppDelegate::terminationAllowed, this, &ZorelApp::quit, Qt::QueuedConnection);
}

ZorelApp::~ZorelApp() = default;

BackendController &ZorelApp::backend()
{
    if (!m_backend) {
        m_backend = std::make_unique<BackendController>(settings(), m_surroundings.backend);
        connect(m_backend.get(), &BackendController::statusChanged, this, &ZorelApp::followRun);
        connect(m_backend.get(), &BackendController::readyChanged, this, &ZorelApp::followRun);
        connect(m_backend.get(), &BackendController::backendExited, this, &ZorelApp::followRun);
    }
    return *m_backend;
}

ZorelSettings &ZorelApp::settings()
{
    if (!m_settings) {
        m_settings = &m_surroundings.settings();
    }
    return *m_settings;
}

library::ModelLibraryStore &ZorelApp::library()
{
    if (!m_library) {
        m_library = std::make_unique<library::ModelLibraryStore>();
    }
    return *m_library;
}

updater::UpdateChecker &ZorelApp::updater()
{
    if (!m_updater) {
        m_updater = std::make_unique<updater::UpdateChecker>(m_surroundings.updater());
        connect(m_updater.get(), &updater::UpdateChecker::quitRequested, this, &ZorelApp::quit);
    }
    return *m_updater;
}

FolderAccessChecker &ZorelApp::access()
{
    if (!m_access) {
        FolderAccessChecker::Surroundings surroundings;
        surroundings.probe = m_surroundings.probeAccess;
        surroundings.openUrl = m_surroundings.workspace.openUrl;
#ifndef Q_OS_MACOS // which has privacy settings, and says by itself when it cannot show them
        surroundings.showFolder = m_surroundings.workspace.reveal;
#endif
        m_access = std::make_unique<FolderAccessChecker>(settings(), std::move(surroundings));
    }
    return *m_access;
}

platform::UserDefaults &ZorelApp::defaults()
{
    return m_surroundings.defaults();
}

QString ZorelApp::version() const
{
    return presentation::version(m_surroundings.information);
}

void ZorelApp::setShowAbout(bool show)
{
    if (std::exchange(m_showAbout, show) != show) {
        Q_EMIT showAboutChanged();
    }
}

void ZorelApp::openSettings()
{
    Q_EMIT settingsRequested();
}

void ZorelApp::reveal(folders::ConfiguredFolder folder)
{
    m_surroundings.workspace.reveal(settings().expanded(folders::path(settings(), folder)));
}

void ZorelApp::revealLibraryRoot()
{
    m_surroundings.workspace.reveal(settings().libraryRoot());
}

void ZorelApp::quit()
{
    m_surroundings.quit();
}

void ZorelApp::contentAppeared()
{
    if (std::exchange(m_hasStarted, true)) {
        return;
    }
    m_appDelegate.setBackend(&backend());
    backend().setLibraryStore(&library());
    settings().ensureFoldersExist();
    folders::installLibraryReadme(settings().libraryRoot());
    access().refresh();
    backend().launch();
    updater().startSchedule();
    Q_EMIT started();
}

void ZorelApp::followRun()
{
    const bool isLive = m_backend->isRunning() && isComputing(m_backend->status().state);
    if (std::exchange(m_isRunLive, isLive) != isLive) {
        m_surroundings.keepAwake(isLive ? std::optional(QStringLiteral("A model is being trained."))
                                        : std::nullopt);
    }
}

} // namespace zorel::app::shell
