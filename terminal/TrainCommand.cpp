#include "terminal/TrainCommand.h"

#include "platform/BrokenPipe.h"
#include "terminal/HelpText.h"
#include "terminal/JsonRenderer.h"
#include "terminal/LibraryCommand.h"
#include "terminal/LiveRenderer.h"
#include "terminal/PlainRenderer.h"
#include "terminal/RunReport.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <chrono>

#include <unistd.h>

namespace zorel::terminal {

using backend::bridge::BackendController;

namespace {

constexpr qsizetype shownErrorLines = 15;

std::chrono::milliseconds steadyTime()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace

TrainCommand::TrainCommand(const TerminalOptions &options, app::settings::ZorelSettings &settings,
                           const Streams &streams)
    : m_options(options)
    , m_settings(settings)
    , m_streams(streams)
    , m_controller(settings)
    , m_run(m_controller, {options.steps, options.start == TerminalOptions::Start::resume}, {})
    , m_renderer(makeRenderer())
{
    connectSignals();
}

std::unique_ptr<Renderer> TrainCommand::makeRenderer()
{
    if (m_options.output == TerminalOptions::Output::json) {
        return std::make_unique<JsonRenderer>(m_streams.output, m_streams.errorMessages);
    }
    if (m_streams.output.isTerminal() && qgetenv("TERM") != "dumb") {
        return std::make_unique<LiveRenderer>(m_streams.output, m_streams.style, m_streams.messages,
                                              m_streams.errorMessages);
    }
    return std::make_unique<PlainRenderer>(m_streams.messages, m_streams.errorMessages, &steadyTime);
}

void TrainCommand::connectSignals()
{
    if (m_options.output == TerminalOptions::Output::json) {
        connect(&m_controller, &BackendController::eventLineReceived, this, [this](const QByteArray &line) {
            m_renderer->showEventLine(line);
            stopIfUnread();
        });
    }
    connect(&m_controller, &BackendController::logLineAppended, this, &TrainCommand::showLogLine);
    connect(&m_controller, &BackendController::statusChanged, this, &TrainCommand::showProgress);
    connect(&m_run, &TerminalRun::phaseChanged, this, &TrainCommand::showProgress);
    connect(&m_run, &TerminalRun::ended, this, &TrainCommand::finish);
    connect(&m_signals, &SignalWatcher::interrupted, this, &TrainCommand::interrupt);
    connect(&m_signals, &SignalWatcher::hungUp, &m_run, &TerminalRun::stop);
    connect(&m_signals, &SignalWatcher::resized, this, [this] { m_renderer->redraw(); });
    connect(&m_signals, &SignalWatcher::resumed, this, [this] { m_renderer->drawAnew(); });
}

int TrainCommand::execute()
{
    QTimer::singleShot(0, this, &TrainCommand::start);
    return QCoreApplication::exec();
}

void TrainCommand::start()
{
    if (m_options.output == TerminalOptions::Output::display) {
        m_renderer->showNotice(introduction(m_settings));
    }
    m_signals.setLoopBlocked(true);
    m_run.start();
    m_signals.setLoopBlocked(false);
    stopIfUnread();
}

void TrainCommand::showLogLine(const QString &line)
{
    if (line.startsWith(QStringLiteral("× "))) {
        m_lastError = line;
        m_renderer->showError(line);
    } else if (m_options.log == TerminalOptions::Log::shown) {
        m_renderer->showLogLine(line);
        stopIfUnread();
    }
}

void TrainCommand::showProgress()
{
    if (m_run.phase() == TerminalRun::Phase::ended) {
        return;
    }
    const backend::protocol::TrainStatusPayload &status = m_controller.status();
    m_remainingTime.update(status);
    m_renderer->showProgress({m_run.phase(), m_settings.modelFamily(), status, m_remainingTime.seconds()});
    stopIfUnread();
}

void TrainCommand::interrupt()
{
    if (m_run.phase() == TerminalRun::Phase::ended) {
        return;
    }
    if (m_interrupted) {
        m_stoppedAtOnce = true;
        m_run.stopAtOnce();
        return;
    }
    m_interrupted = true;
    m_renderer->showNotice(
        QStringLiteral("Stopping… Press Ctrl-C again to stop at once, without a checkpoint."));
    m_run.stop();
}

void TrainCommand::stopIfUnread()
{
    if (m_renderer->isClosed() && !m_saidUnread) {
        m_saidUnread = true;
        m_streams.errorMessages.write(QStringLiteral("The output cannot be written any more; stopping."));
        m_run.stop();
    }
}

void TrainCommand::finish()
{
    m_renderer->endProgress();
    switch (m_run.outcome()) {
    case TerminalRun::Outcome::archived:
        m_renderer->showNotice(
            archiveReport(*m_run.archive(), m_controller.scriptsRoot(), m_settings.modelFamily()));
        break;
    case TerminalRun::Outcome::stopped:
        m_renderer->showNotice(
            m_stoppedAtOnce
                ? QStringLiteral("Stopped at once; what came after the latest checkpoint is lost.")
                : stopReport(m_run.lastTrained(), m_options));
        break;
    case TerminalRun::Outcome::failed:
    case TerminalRun::Outcome::notStartable:
        reportFailure();
        break;
    }
    if (m_run.leftBackendRunning()) {
        m_renderer->showError(QStringLiteral("× The Python backend is still busy; it will end by itself."));
    }
    const bool outputLost = m_streams.output.failure().has_value();
    QCoreApplication::exit(outputLost ? failureExitStatus : exitStatus(m_run.outcome()));
}

void TrainCommand::reportFailure()
{
    const QString failure = QStringLiteral("× ") + m_run.failure();
    if (!m_run.failure().isEmpty() && failure != m_lastError) {
        m_renderer->showError(failure);
    }
    if (m_run.outcome() == TerminalRun::Outcome::notStartable) {
        m_renderer->showError(setUpHint());
        return;
    }
    const QStringList output = lastErrorOutput(m_controller.logLines(), shownErrorLines);
    if (!m_run.failure().isEmpty() && !output.isEmpty() && m_options.log == TerminalOptions::Log::hidden) {
        m_renderer->showError(QStringLiteral("Its last output was:\n  ") +
                              output.join(QStringLiteral("\n  ")));
    }
    m_renderer->showError(QStringLiteral("Training failed."));
}

namespace {

int carryOut(const TerminalOptions &options, const TrainCommand::Streams &streams)
{
    const std::unique_ptr<platform::UserDefaults> store = platform::makeStandardUserDefaults();
    const platform::StandardFolders folders = platform::StandardFolders::current();
    RunSettings runSettings(*store, folders, options);
    if (options.task == TerminalOptions::Task::train) {
        return TrainCommand(options, runSettings.settings(), streams).execute();
    }
    return LibraryCommand(options, runSettings.settings(), streams.output, streams.messages,
                          streams.errorMessages)
        .execute();
}

/// Qt warns of a locale that it dislikes, which is no concern of the user's.
std::unique_ptr<QCoreApplication> makeApplication(int &argumentCount, char **arguments)
{
    const QtMessageHandler former =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    auto application = std::make_unique<QCoreApplication>(argumentCount, arguments);
    qInstallMessageHandler(former);
    return application;
}

} // namespace

int runTrainCommand(int argumentCount, char **arguments)
{
    const TerminalStyle::Characters characters = TerminalStyle::charactersOfLocale();
    const std::unique_ptr<QCoreApplication> application = makeApplication(argumentCount, arguments);
    platform::ignoreBrokenPipe();

    OutputStream output(STDOUT_FILENO);
    OutputStream errors(STDERR_FILENO);
    const auto styleOf = [characters](const OutputStream &stream) {
        return TerminalStyle{characters, stream.isTerminal() ? TerminalStyle::coloursOfEnvironment()
                                                             : TerminalStyle::Colours::none};
    };
    MessageWriter messages(output, styleOf(output));
    MessageWriter errorMessages(errors, styleOf(errors));
    try {
        const TerminalOptions options =
            TerminalOptions::parse(QCoreApplication::arguments(), QDir::currentPath());
        switch (options.task) {
        case TerminalOptions::Task::showHelp:
            output.write(styleOf(output).shown(helpText()).toUtf8());
            return 0;
        case TerminalOptions::Task::showVersion:
            output.write(versionText().toUtf8());
            return 0;
        case TerminalOptions::Task::train:
        case TerminalOptions::Task::listRuns:
        case TerminalOptions::Task::showRun:
        case TerminalOptions::Task::compareRuns:
            break;
        }
        return carryOut(options, {output, errors, messages, errorMessages, styleOf(output)});
    } catch (const UsageError &error) {
        errorMessages.writeError(
            QStringLiteral("zorel-train: %1 See zorel-train --help.").arg(QString::fromUtf8(error.what())));
        return usageExitStatus;
    }
}

} // namespace zorel::terminal
