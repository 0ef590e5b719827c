#pragma once

#include "backend/bridge/SidecarLocator.h"
#include "backend/protocol/BackendEvent.h"
#include "backend/protocol/EventDecoder.h"
#include "backend/protocol/LossPoint.h"
#include "backend/protocol/NeuronSelection.h"
#include "platform/ChildProcess.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace zorel::app::settings {
class ZorelSettings;
}

namespace zorel::library {
class RunLibrary;
}

namespace zorel::backend::bridge {

class RunningSidecar;
struct Line;

/// Owns the training sidecar: finds, launches and drives it, and turns its output into the live training
/// state that the screens and the terminal show. Reports nothing by exception; failures become log lines and
/// `fatalError`. Main thread only.
class BackendController : public QObject
{
    Q_OBJECT

public:
    static constexpr std::size_t maximumLossPoints = 4000;
    static constexpr std::size_t maximumLogLines = 2000;
    /// A longer log line is cut here (UTF-16 units), so that the log's memory stays bounded.
    static constexpr qsizetype maximumLogLineLength = qsizetype{1} << 16;

    /// What the controller needs from outside. `runAfter` calls the function on the main thread when the time
    /// has passed.
    struct Surroundings
    {
        std::function<SidecarHost()> host;
        std::function<platform::Environment()> environment;
        std::function<void(std::chrono::milliseconds, QObject *context, std::function<void()>)> runAfter;

        /// This process's environment and event loop.
        static Surroundings system();
    };

    /// `settings` must outlive the controller.
    explicit BackendController(app::settings::ZorelSettings &settings,
                               Surroundings surroundings = Surroundings::system());
    /// Closes the child's standard input, which tells it that the application is gone; does not wait for it.
    ~BackendController() override;

    const protocol::TrainStatusPayload &status() const { return m_status; }
    /// True between a "ready" event and the child's exit.
    bool ready() const { return m_ready; }
    /// At most maximumLossPoints, oldest first.
    const std::deque<protocol::LossPoint> &lossHistory() const { return m_lossHistory; }
    const std::optional<protocol::NeuronSnapshotPayload> &liveNeurons() const { return m_liveNeurons; }
    const std::optional<protocol::NeuronSnapshotPayload> &finalNeurons() const { return m_finalNeurons; }
    const std::optional<protocol::NeuronSelection> &selectedNeuron() const { return m_selectedNeuron; }
    /// At most maximumLogLines, oldest first.
    const std::deque<QString> &logLines() const { return m_logLines; }
    const std::optional<QString> &fatalError() const { return m_fatalError; }
    /// The run archived last, for 12 seconds.
    const std::optional<protocol::ArchivedModel> &recentArchive() const { return m_recentArchive; }
    /// The runs in Finished models as they were counted last: after "ready", an archive or a change of
    /// folders.
    std::int64_t archivedCount() const { return m_archivedCount; }
    /// What the next "start" asks for; follows the sidecar's own figure while a run goes on.
    std::int64_t desiredMaxSteps() const { return m_desiredMaxSteps; }
    bool showModelLibrary() const { return m_showModelLibrary; }
    /// Interpreter and scripts of the last successful search; empty before.
    const QString &python() const { return m_python; }
    const QString &scriptsRoot() const { return m_scriptsRoot; }

    void setSelectedNeuron(const std::optional<protocol::NeuronSelection> &selection);
    void setShowModelLibrary(bool show);
    /// A weak link; null clears it.
    void setLibraryStore(library::RunLibrary *store);

    /// Starts the sidecar unless there is one. Blocks while interpreters are probed.
    void launch();
    bool isRunning() const;
    /// Sends a command without waiting for the child to read it. What cannot be sent is a line in the log.
    void send(const QJsonObject &command);
    /// Forgets snapshots and selection, and starts or resumes. Without a child this launches one and does not
    /// train; before "ready" it does nothing. The log says so in both cases.
    void startTraining(bool resume);
    /// Clamped to protocol::minimumMaxSteps ... maximumMaxSteps; also during a run.
    void setMaxSteps(std::int64_t steps);
    /// Sends the configured folders, recounts the archived runs and has the library rescanned.
    void sendPaths();
    void sendModelIdentity();
    void sendTrainingProfile();
    /// Sends a command without further keys.
    void sendCommand(const QString &name);
    /// Asks the sidecar to stop and then to quit; does not wait.
    void shutdown();
    /// Kills the sidecar with signal 9. For a user who will not wait; nothing is saved.
    void killSidecar();
    void appendLog(const QString &line);
    /// Applies one decoded event.
    void apply(protocol::BackendEvent event);

Q_SIGNALS:
    void statusChanged();
    void readyChanged();
    /// The history grew by one point; with more than maximumLossPoints the oldest was dropped.
    void lossPointAppended(const zorel::backend::protocol::LossPoint &point);
    void liveNeuronsChanged();
    void finalNeuronsChanged();
    void selectedNeuronChanged();
    void logLineAppended(const QString &line);
    void fatalErrorChanged();
    void recentArchiveChanged();
    void archivedCountChanged();
    void desiredMaxStepsChanged();
    void showModelLibraryChanged();
    /// An "error" event of the sidecar arrived; it has been logged.
    void backendErrorReported(const QString &message);
    /// A "done" event of the sidecar arrived; it has been logged.
    void backendDone();
    /// The child ended and all that it wrote has been applied.
    void backendExited(int status);
    /// Every trimmed, non-empty line of standard output as it came, before it is applied.
    void eventLineReceived(const QByteArray &line);

private:
    void handleOutputLine(const Line &line);
    void handleExit(int status);
    void startSidecar();
    platform::Environment childEnvironment() const;
    void reportSendFailure(const QString &reason);

    void applyReady(std::int64_t defaultMaxSteps);
    void applyStatus(protocol::TrainStatusPayload status);
    void applySnapshot(protocol::NeuronSnapshotPayload snapshot);
    void applyArchive(const protocol::ArchivedModel &archive);
    void applyPaths(const protocol::BackendPaths &paths);

    void followSelection(const protocol::NeuronSnapshotPayload &snapshot);
    void setFatalError(const std::optional<QString> &error);
    void setStatus(protocol::TrainStatusPayload status);
    void setDesiredMaxSteps(std::int64_t steps);
    void setArchivedCount(std::int64_t count);
    void setRecentArchive(const std::optional<protocol::ArchivedModel> &archive);

    app::settings::ZorelSettings &m_settings;
    Surroundings m_surroundings;
    QPointer<library::RunLibrary> m_libraryStore;

    protocol::TrainStatusPayload m_status;
    bool m_ready = false;
    std::deque<protocol::LossPoint> m_lossHistory;
    std::optional<protocol::NeuronSnapshotPayload> m_liveNeurons;
    std::optional<protocol::NeuronSnapshotPayload> m_finalNeurons;
    std::optional<protocol::NeuronSelection> m_selectedNeuron;
    std::deque<QString> m_logLines;
    std::optional<QString> m_fatalError;
    std::optional<protocol::ArchivedModel> m_recentArchive;
    std::int64_t m_archivedCount = 0;
    std::int64_t m_desiredMaxSteps = 0;
    bool m_showModelLibrary = false;

    QString m_python;
    QString m_scriptsRoot;
    protocol::EventDecoder m_decoder;
    RunningSidecar *m_sidecar = nullptr;    ///< a child of this object; null before launch and after the exit
    QPointer<RunningSidecar> m_lastSidecar; ///< the present one, or the one that ended last
};

} // namespace zorel::backend::bridge
