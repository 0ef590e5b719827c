// The program as users start it, on a display in memory: how long until its window is painted and how much
// memory it holds, beside a bare window started in turn with it; and that it sleeps when nothing happens.
// Nothing is built into the program for this; the window is watched from outside. With an argument it is
// another program whose start is compared.

#include "bench/support/MeasureTable.h"
#include "bench/support/ScriptedBackend.h"
#include "bench/window/Display.h"
#include "bench/window/ProcessWatch.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <memory>
#include <thread>

using namespace zorel;
using namespace std::chrono_literals;
using bench::Display;
using bench::MeasureTable;
using bench::median;
using bench::ProcessBooks;

namespace {

constexpr int rounds = 15;
constexpr std::chrono::seconds idleTime = 5s;

constexpr auto readyLine = R"({"event":"ready","default_max_steps":1000})";

/// A home whose interpreter, asked for MLX, says yes, and started as the backend writes the lines.
class Home
{
public:
    explicit Home(const QByteArray &lines)
    {
        bench::writeInterpreter(m_folder.path(), "[ \"$1\" = -c ] && exit 0\ncat <<'END'\n" + lines +
                                                     "\nEND\nexec cat >/dev/null");
    }

    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

class Program
{
public:
    Program(Display &display, const QString &path, const QString &home)
        : m_display(display)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), display.name());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        environment.insert(QStringLiteral("HOME"), home);
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);
        environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const auto start = Display::Clock::now();
        m_process.start(path, {});
        m_startMilliseconds =
            std::chrono::duration<double, std::milli>(display.waitForPaintedWindow() - start).count();
        m_startProcessorMilliseconds = books().processorMilliseconds;
    }

    ~Program()
    {
        ::kill(static_cast<pid_t>(m_process.processId()), SIGTERM);
        m_process.waitForFinished();
        m_display.waitForEmptiness();
    }

    /// From the start to the painted window.
    double startMilliseconds() const { return m_startMilliseconds; }
    /// What of it was spent on a processor; other programs disturb this less.
    double startProcessorMilliseconds() const { return m_startProcessorMilliseconds; }
    ProcessBooks books() const { return bench::readBooks(m_process.processId()); }

    /// Returns when the process has not run for so long.
    void waitForQuiet(std::chrono::milliseconds time) const
    {
        constexpr std::chrono::milliseconds look = 100ms;
        std::int64_t switches = -1;
        for (std::chrono::milliseconds quiet = 0ms; quiet < time;) {
            std::this_thread::sleep_for(look);
            const std::int64_t now = books().contextSwitches;
            quiet = now == switches ? quiet + look : 0ms;
            switches = now;
        }
    }

private:
    Display &m_display;
    QProcess m_process;
    double m_startMilliseconds = 0;
    double m_startProcessorMilliseconds = 0;
};

struct Samples
{
    std::vector<double> milliseconds;
    std::vector<double> processorMilliseconds;
    std::vector<double> residentMiB;
    std::vector<double> ownMiB;
};

void sample(Display &display, const QString &path, const QString &home, Samples &samples)
{
    const Program program(display, path, home);
    if (display.colorCount() < 3) {
        qFatal("%s paints nothing", qPrintable(path));
    }
    program.waitForQuiet(500ms);
    const ProcessBooks books = program.books();
    samples.milliseconds.push_back(program.startMilliseconds());
    samples.processorMilliseconds.push_back(program.startProcessorMilliseconds());
    samples.residentMiB.push_back(books.residentMiB);
    samples.ownMiB.push_back(books.ownMiB);
}

double least(const std::vector<double> &values)
{
    return *std::ranges::min_element(values);
}

void measureStart(MeasureTable &table, Display &display, const QString &path)
{
    const Home home(readyLine);
    Samples bare;
    Samples ours;
    for (int round = 0; round <= rounds; ++round) {
        if (round == 1) { // the first one read the libraries from the disk
            bare = {};
            ours = {};
        }
        sample(display, QStringLiteral(ZOREL_BARE_WINDOW), home.path(), bare);
        sample(display, path, home.path(), ours);
    }
    table.printReference(QStringLiteral("bare window: start to painted, median"), median(bare.milliseconds),
                         " ms", 1);
    table.printReference(QStringLiteral("program: start to painted, median"), median(ours.milliseconds),
                         " ms", 1);
    table.printAtMost(QStringLiteral("start to painted, program / bare, medians"),
                      median(ours.milliseconds) / median(bare.milliseconds), 2, "x", 2);
    table.printAtMost(QStringLiteral("start to painted, program / bare, best"),
                      least(ours.milliseconds) / least(bare.milliseconds), 2, "x", 2);
    table.printReference(QStringLiteral("bare window: processor time until then, median"),
                         median(bare.processorMilliseconds), " ms", 1);
    table.printReference(QStringLiteral("program: processor time until then, median"),
                         median(ours.processorMilliseconds), " ms", 1);
    table.printAtMost(QStringLiteral("processor time until painted, program / bare, medians"),
                      median(ours.processorMilliseconds) / median(bare.processorMilliseconds), 2, "x", 2);
    table.printReference(QStringLiteral("bare window: resident memory"), median(bare.residentMiB), " MiB", 1);
    table.printReference(QStringLiteral("bare window: of these its own"), median(bare.ownMiB), " MiB", 1);
    table.printReference(QStringLiteral("program, ready: resident memory"), median(ours.residentMiB), " MiB",
                         1);
    table.printReference(QStringLiteral("program, ready: of these its own"), median(ours.ownMiB), " MiB", 1);
    table.printAtMost(QStringLiteral("resident memory, program / bare"),
                      median(ours.residentMiB) / median(bare.residentMiB), 2.5, "x", 2);
}

/// A run that has ended, with its curve, its log and its archived model.
QByteArray finishedRun()
{
    const auto status = [](const QByteArray &state, int step) {
        return R"({"event":"status","state":")" + state + R"(","step":)" + QByteArray::number(step) +
               R"(,"max_steps":500,"loss":)" + QByteArray::number(2 + 100.0 / (step + 20)) +
               R"(,"lr":0.0018,"grad_norm":0.84,"tokens_per_sec":5300.0,"elapsed_s":34.5,"val_loss":4.93})" +
               '\n';
    };
    QByteArray lines = QByteArray(readyLine) + '\n';
    for (int step = 1; step <= 500; ++step) {
        lines += status("running", step);
        lines += R"({"event":"log","level":"INFO","msg":"step=)" + QByteArray::number(step) +
                 R"( loss=2.5"})" + '\n';
    }
    lines +=
        R"({"event":"model_archived","path":"/tmp/run","folder_name":"run","step":500,"loss":2.2,"elapsed":34.5})";
    return lines + '\n' + status("done", 500) + R"({"event":"done"})";
}

void measureIdleness(MeasureTable &table, Display &display, const QString &state, const QByteArray &lines)
{
    const Home home(lines);
    const Program program(display, QStringLiteral(ZOREL_APP), home.path());
    program.waitForQuiet(3s);
    const ProcessBooks before = program.books();
    std::this_thread::sleep_for(idleTime);
    const ProcessBooks after = program.books();
    table.printAtMost(state + QStringLiteral(", five seconds: processor time"),
                      after.processorMilliseconds - before.processorMilliseconds, 0, " ms", 1);
    table.printAtMost(state + QStringLiteral(", five seconds: times a thread woke"),
                      static_cast<double>(after.contextSwitches - before.contextSwitches), 0, "", 0);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Display display;
    MeasureTable table;
    if (argc > 1 && *argv[1] != '-') {
        measureStart(table, display, QFile::decodeName(argv[1]));
        return table.status();
    }
    measureStart(table, display, QStringLiteral(ZOREL_APP));
    measureIdleness(table, display, QStringLiteral("ready"), readyLine);
    measureIdleness(table, display, QStringLiteral("run finished"), finishedRun());
    return table.status();
}
