#include "backend/bridge/BackendController.h"

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/LineReader.h"
#include "backend/bridge/RunningSidecar.h"
#include "backend/protocol/CommandEncoder.h"
#include "backend/protocol/Commands.h"
#include "backend/protocol/Utf8Text.h"
#include "library/ArchivedRunCount.h"
#include "library/RunLibrary.h"
#include "platform/Bundle.h"
#include "platform/StandardFolders.h"

#include <QFile>
#include <QTimer>

#include <algorithm>
#include <system_error>
#include <utility>

namespace zorel::backend::bridge {

namespace {

/// What the sidecar is asked for before it has told its own default.
constexpr std::int64_t initialMaxSteps = 50'000;

/// The first `length` UTF-16 units, or one less where that would cut a character in two.
QString startOf(const QString &text, qsizetype length)
{
    return text.left(text.at(length - 1).isHighSurrogate() ? length - 1 : length);
}

/// Of this process. A program must not write into its own bundle, whose signature covers every file, so
/// Python keeps the bytecode of scripts from there among the user's caches.
platform::Environment systemEnvironment()
{
    platform::Environment environment = platform::currentEnvironment();
    const QByteArray key = "PYTHONPYCACHEPREFIX";
    if (platform::mainBundle() && !environment.contains(key)) {
        const QString caches = platform::StandardFolders::current().caches;
        environment.insert(key, QFile::encodeName(caches + QLatin1String("/com.talvex.zorel/Python")));
    }
    return environment;
}

} // namespace

BackendController::Surroundings BackendController::Surroundings::system()
{
    return {
        [] { return SidecarHost::system(); },
        &systemEnvironment,
        [](std::chrono::milliseconds delay, QObject *context, std::function<void()> action) {
            QTimer::singleShot(delay, context, std::move(action));
        },
    };
}

BackendController::BackendController(app::settings::ZorelSettings &settings, Surroundings surroundings)
    : m_settings(settings)
    , m_surroundings(std::move(surroundings))
    , m_status(protocol::TrainStatusPayload::idle(initialMaxSteps))
    , m_desiredMaxSteps(initialMaxSteps)
{}

BackendController::~BackendController() = default;

// Launching and ending

void BackendController::launch()
{
    if (m_sidecar && !m_sidecar->isRunning()) {
        handleExit(m_sidecar->exitStatus());
    }
    if (m_sidecar) {
        return;
    }
    try {
        const SidecarLocator located = SidecarLocator::locate(m_surroundings.host());
        m_python = located.python;
        m_scriptsRoot = located.scriptsRoot;
    } catch (const LocateError &error) {
        const QString text = QStringLiteral("failed to locate Python sidecar: ") + error.description();
        setFatalError(text);
        appendLog(QStringLiteral("× ") + text);
        return;
    }
    appendLog(QStringLiteral("sidecar root → ") + m_scriptsRoot);
    appendLog(QStringLiteral("starting Python backend (%1)").arg(m_python));
    m_settings.ensureFoldersExist();

    try {
        startSidecar();
    } catch (const platform::LaunchError &error) {
        setFatalError(QStringLiteral("failed to launch Python backend: ") + QString::fromUtf8(error.what()));
    } catch (const std::system_error &exhausted) {
        setFatalError(QStringLiteral("failed to launch Python backend: ") +
                      QString::fromStdString(exhausted.code().message()));
    }
}

void BackendController::startSidecar()
{
    const platform::ChildProgram program{
        m_python,
        {QStringLiteral("-u"), QStringLiteral("-m"), QStringLiteral("src.app_backend")},
        m_scriptsRoot,
        childEnvironment(),
    };
    const RunningSidecar::Handlers handlers{
        [this](const Line &line) { handleOutputLine(line); },
        [this](const Line &line) {
            appendLog(QStringLiteral("[py stderr] ") + protocol::toQString(line.text));
        },
    };
    auto sidecar = std::make_unique<RunningSidecar>(program, handlers);
    connect(sidecar.get(), &RunningSidecar::sendFailed, this, &BackendController::reportSendFailure);
    connect(sidecar.get(), &RunningSidecar::exited, this, &BackendController::handleExit);
    if (m_lastSidecar) {
        m_lastSidecar->retire();
    }
    m_sidecar = sidecar.release();
    m_sidecar->setParent(this);
    m_lastSidecar = m_sidecar;
}

platform::Environment BackendController::childEnvironment() const
{
    platform::Environment environment = m_surroundings.environment();
    const QByteArray home = environment.value("HOME");
    const QByteArray path = environment.value("PATH", "/usr/bin:/bin");
    environment.insert("PATH", home + "/Library/Python/3.9/bin:" + path);
    environment.insert("PYTHONUNBUFFERED", "1");
    const QMap<QString, QString> folders = m_settings.sidecarEnvironment();
    for (const auto &[name, folder] : folders.asKeyValueRange()) {
        environment.insert(name.toLatin1(), QFile::encodeName(folder));
    }
    return environment;
}

bool BackendController::isRunning() const
{
    return m_sidecar && m_sidecar->isRunning();
}

void BackendController::handleExit(int status)
{
    // A listener may launch the next child, so nothing of this one is touched after the first announcement.
    // Its readers live on: a grandchild may still speak.
    const bool wasReady = std::exchange(m_ready, false);
    RunningSidecar *ended = std::exchange(m_sidecar, nullptr);
    ended->disconnect(this);
    ended->closeInput();
    appendLog(QStringLiteral("backend exited (code %1)").arg(status));
    if (wasReady) {
        Q_EMIT readyChanged();
    }
    Q_EMIT backendExited(status);
}

void BackendController::shutdown()
{
    sendCommand(QStringLiteral("stop"));
    sendCommand(QStringLiteral("quit"));
}

void BackendController::killSidecar()
{
    if (m_sidecar) {
        m_sidecar->kill();
    }
}

// Commands

void BackendController::send(const QJsonObject &command)
{
    const QJsonValue name = command.value(QLatin1String("cmd"));
    if (!isRunning() || !m_sidecar->takesInput()) {
        appendLog(QStringLiteral("× send(%1) skipped — Python backend is not running")
                      .arg(name.toString(QStringLiteral("?"))));
        return;
    }
    if (const std::optional<QString> failure =
            m_sidecar->send(name.toString(), protocol::encodeCommand(command))) {
        reportSendFailure(*failure);
    }
}

void BackendController::reportSendFailure(const QString &reason)
{
    appendLog(QStringLiteral("× send failed: ") + reason);
}

void BackendController::sendCommand(const QString &name)
{
    send(protocol::simpleCommand(name));
}

void BackendController::startTraining(bool resume)
{
    if (!isRunning()) {
        appendLog(QStringLiteral("× Python backend is not running — relaunching…"));
        launch();
        appendLog(QStringLiteral("× wait for “backend ready” in Recent activity, then press Start again"));
        return;
    }
    if (!m_ready) {
        appendLog(QStringLiteral("× Python backend is still starting — wait for “backend ready” in the log"));
        return;
    }
    m_liveNeurons.reset();
    Q_EMIT liveNeuronsChanged();
    m_finalNeurons.reset();
    Q_EMIT finalNeuronsChanged();
    setSelectedNeuron(std::nullopt);
    const QMap<QString, QString> profile = m_settings.trainingProfilePayload();
    send(protocol::startCommand(m_desiredMaxSteps, resume, m_settings.modelIdentityPayload(),
                                profile.value(QStringLiteral("model_family")),
                                profile.value(QStringLiteral("training_capability"))));
}

void BackendController::setMaxSteps(std::int64_t steps)
{
    setDesiredMaxSteps(std::clamp(steps, protocol::minimumMaxSteps, protocol::maximumMaxSteps));
    send(protocol::setMaxStepsCommand(m_desiredMaxSteps));
}

void BackendController::sendPaths()
{
    send(protocol::setPathsCommand(m_settings.expanded(m_settings.trainingDataPath()),
                                   m_settings.expanded(m_settings.finishedModelsPath()),
                                   m_settings.expanded(m_settings.modelRootPath())));
    const QString finishedModels = m_settings.expanded(m_settings.finishedModelsPath());
    setArchivedCount(library::countArchivedRuns(finishedModels));
    if (m_libraryStore) {
        m_libraryStore->scan(finishedModels);
    }
}

void BackendController::sendModelIdentity()
{
    send(protocol::setModelIdentityCommand(m_settings.modelIdentityPayload()));
}

void BackendController::sendTrainingProfile()
{
    send(protocol::setTrainingProfileCommand(m_settings.trainingProfilePayload()));
}

// Published state

void BackendController::appendLog(const QString &line)
{
    m_logLines.push_back(line.size() > maximumLogLineLength ? startOf(line, maximumLogLineLength) : line);
    if (m_logLines.size() > maximumLogLines) {
        m_logLines.pop_front();
    }
    Q_EMIT logLineAppended(m_logLines.back());
}

void BackendController::setLibraryStore(library::RunLibrary *store)
{
    m_libraryStore = store;
}

void BackendController::setStatus(protocol::TrainStatusPayload status)
{
    m_status = std::move(status);
    Q_EMIT statusChanged();
}

void BackendController::setFatalError(const std::optional<QString> &error)
{
    if (std::exchange(m_fatalError, error) != error) {
        Q_EMIT fatalErrorChanged();
    }
}

void BackendController::setSelectedNeuron(const std::optional<protocol::NeuronSelection> &selection)
{
    if (m_selectedNeuron != selection) {
        m_selectedNeuron = selection;
        Q_EMIT selectedNeuronChanged();
    }
}

void BackendController::setRecentArchive(const std::optional<protocol::ArchivedModel> &archive)
{
    if (std::exchange(m_recentArchive, archive) != archive) {
        Q_EMIT recentArchiveChanged();
    }
}

void BackendController::setArchivedCount(std::int64_t count)
{
    if (std::exchange(m_archivedCount, count) != count) {
        Q_EMIT archivedCountChanged();
    }
}

void BackendController::setDesiredMaxSteps(std::int64_t steps)
{
    if (std::exchange(m_desiredMaxSteps, steps) != steps) {
        Q_EMIT desiredMaxStepsChanged();
    }
}

void BackendController::setShowModelLibrary(bool show)
{
    if (std::exchange(m_showModelLibrary, show) != show) {
        Q_EMIT showModelLibraryChanged();
    }
}

} // namespace zorel::backend::bridge
