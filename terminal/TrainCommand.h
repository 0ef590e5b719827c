#pragma once

#include "backend/bridge/BackendController.h"
#include "terminal/MessageWriter.h"
#include "terminal/OutputStream.h"
#include "terminal/RemainingTime.h"
#include "terminal/Renderer.h"
#include "terminal/RunSettings.h"
#include "terminal/SignalWatcher.h"
#include "terminal/TerminalOptions.h"
#include "terminal/TerminalRun.h"

#include <QObject>

#include <memory>

namespace zorel::terminal {

/// Joins one run, what shows it and the signals that stop it.
class TrainCommand : public QObject
{
    Q_OBJECT

public:
    /// The process's outputs.
    struct Streams
    {
        OutputStream &output;
        OutputStream &errors;
        MessageWriter &messages;
        MessageWriter &errorMessages;
        TerminalStyle style; ///< of `output`
    };

    /// All must outlive this object.
    TrainCommand(const TerminalOptions &options, app::settings::ZorelSettings &settings,
                 const Streams &streams);

    /// Runs the event loop until the run has ended; the process's exit status.
    int execute();

private:
    std::unique_ptr<Renderer> makeRenderer();
    void connectSignals();
    void start();
    void showLogLine(const QString &line);
    void showProgress();
    void interrupt();
    void stopIfUnread();
    void finish();
    void reportFailure();

    TerminalOptions m_options;
    app::settings::ZorelSettings &m_settings;
    Streams m_streams;
    SignalWatcher m_signals;
    backend::bridge::BackendController m_controller;
    TerminalRun m_run;
    std::unique_ptr<Renderer> m_renderer;
    RemainingTime m_remainingTime;
    QString m_lastError;
    bool m_interrupted = false;
    bool m_stoppedAtOnce = false;
    bool m_saidUnread = false;
};

/// zorel-train from its arguments to its exit status.
int runTrainCommand(int argumentCount, char **arguments);

} // namespace zorel::terminal
