// What the dashboard costs while a run reports fast, while its log is collapsed, and at rest.

#include "app/folders/FolderAccessChecker.h"
#include "backend/bridge/BackendController.h"
#include "bench/support/EventLoop.h"
#include "bench/support/MeasureTable.h"
#include "bench/support/ScriptedBackend.h"
#include "platform/BrokenPipe.h"
#include "ui/dashboard/MainView.h"

#include <QApplication>
#include <QElapsedTimer>

#include <chrono>

using namespace zorel;
using namespace std::chrono_literals;
using backend::bridge::BackendController;
using bench::MeasureTable;

namespace {

constexpr std::chrono::milliseconds measuredTime = 8s;
constexpr std::chrono::milliseconds stallTime = 3s;
constexpr auto sleepingScript = R"(echo '{"event":"ready"}'; exec cat >/dev/null)";

enum class LogState { collapsed, shown };

/// A dashboard in a window over a backend that is a shell script.
class Dashboard
{
public:
    Dashboard(const QByteArray &script, LogState log)
        : m_backend(script, log == LogState::shown)
        , m_access(m_backend.settings(), {})
        , m_view({.backend = m_backend.controller(),
                  .settings = m_backend.settings(),
                  .access = m_access,
                  .defaults = m_backend.defaults()},
                 {[](const QString &) {},
                  [] {
                  }})
    {}

    ~Dashboard() { controller().killSidecar(); }

    BackendController &controller() { return m_backend.controller(); }

    void showAndWaitForReady(QSize size)
    {
        m_view.resize(size);
        m_view.show();
        controller().launch();
        m_backend.waitForReady();
        bench::runFor(500ms);
    }

private:
    bench::ScriptedBackend m_backend;
    app::folders::FolderAccessChecker m_access;
    ui::dashboard::MainView m_view;
};

/// Counts what the event loop does between its creation and its end.
class Watch : public QObject
{
public:
    Watch()
    {
        qApp->installEventFilter(this);
        m_clock.start();
    }

    double seconds() const { return static_cast<double>(m_clock.nsecsElapsed()) / 1e9; }
    /// In percent of one core.
    double processorShare() const { return usedMilliseconds() / seconds() / 10; }
    double usedMilliseconds() const { return m_processor.milliseconds(); }

    int windowPaints = 0;
    int widgetEvents = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched->isWidgetType()) {
            ++widgetEvents;
            windowPaints +=
                event->type() == QEvent::UpdateRequest && static_cast<QWidget *>(watched)->isWindow() ? 1 : 0;
        }
        return false;
    }

private:
    QElapsedTimer m_clock;
    bench::ProcessorClock m_processor;
};

void measureFastRun(MeasureTable &table, const QString &name, const QByteArray &script, LogState log,
                    QSize size)
{
    Dashboard dashboard(script, log);
    dashboard.showAndWaitForReady(size);
    const std::int64_t firstStep = dashboard.controller().status().step;
    const Watch watch;
    bench::runFor(measuredTime);
    const double share = watch.processorShare();
    const double rate =
        static_cast<double>(dashboard.controller().status().step - firstStep) / watch.seconds();
    const double paints = watch.windowPaints / watch.seconds();
    const bench::Heartbeat heartbeat;
    bench::runFor(stallTime);
    table.printAtLeast(name + QStringLiteral(": status lines a second"), rate, 900, "", 0);
    table.printAtMost(name + QStringLiteral(": share of a core"), share, 15, "%", 1);
    table.printAtMost(name + QStringLiteral(": repaints a second"), paints, 60.5, "", 1);
    table.printAtMost(name + QStringLiteral(": event loop late by at most"), heartbeat.delays().back(), 50,
                      " ms", 1);
}

void measureCollapsedLog(MeasureTable &table)
{
    constexpr int lines = 2000;
    Dashboard dashboard(sleepingScript, LogState::collapsed);
    dashboard.showAndWaitForReady({1600, 1000});
    const auto appendLines = [&dashboard] {
        for (int line = 0; line < lines; ++line) {
            dashboard.controller().appendLog(QStringLiteral("step=%1 loss=2.5").arg(line));
        }
    };
    appendLines();
    bench::runFor(300ms);
    const Watch watch;
    appendLines();
    const double microseconds = watch.usedMilliseconds() * 1000 / lines;
    bench::runFor(300ms);
    table.printAtMost(QStringLiteral("2,000 log lines, collapsed: events that widgets get"),
                      watch.widgetEvents, 0, "", 0);
    table.printAtMost(QStringLiteral("2,000 log lines, collapsed: a line takes"), microseconds, 2, " us", 2);
}

void measureRest(MeasureTable &table)
{
    Dashboard dashboard(sleepingScript, LogState::shown);
    dashboard.showAndWaitForReady({1600, 1000});
    const bench::Rest rest = bench::waitAtRest(3s);
    table.printAtMost(QStringLiteral("three seconds at rest: processor time"), rest.processorMilliseconds, 1,
                      " ms", 2);
    table.printAtMost(QStringLiteral("three seconds at rest: sleeps of a thread"),
                      static_cast<double>(rest.sleeps), 2, "", 0);
}

QByteArray pacedScript(const QByteArray &options)
{
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(measuredTime + stallTime + 2s).count();
    return "exec /usr/bin/python3 -u '" ZOREL_EMIT_PACED "' " + QByteArray::number(qint64{seconds}) + options;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    platform::ignoreBrokenPipe();
    MeasureTable table;
    measureRest(table);
    measureCollapsedLog(table);
    measureFastRun(table, QStringLiteral("1,000 status lines/s, 1600x1000"), pacedScript({}),
                   LogState::collapsed, {1600, 1000});
    measureFastRun(table, QStringLiteral("1,000 status lines/s, 900x640"), pacedScript({}),
                   LogState::collapsed, {900, 640});
    measureFastRun(table, QStringLiteral("and 1,000 log lines/s, shown, 1600x1100"), pacedScript(" log"),
                   LogState::shown, {1600, 1100});
    return table.status();
}
