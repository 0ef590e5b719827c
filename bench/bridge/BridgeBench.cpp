// Lines from a child's pipe to applied events, and what a flood and idleness cost the event loop.

#include "backend/bridge/BackendController.h"
#include "bench/support/EventLoop.h"
#include "bench/support/MeasureTable.h"
#include "bench/support/ScriptedBackend.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <vector>

#include <sys/resource.h>

using namespace zorel;
using namespace std::chrono_literals;
using backend::bridge::BackendController;
using bench::MeasureTable;
using bench::median;
using bench::ScriptedBackend;

namespace {

constexpr int lineCount = 1'000'000;
constexpr int pythonLineCount = 100'000;
constexpr int rounds = 5;

QByteArray statusLines(int count)
{
    QByteArray lines;
    lines.reserve(qsizetype{count} * 300);
    for (int step = 0; step < count; ++step) {
        lines +=
            R"({"event": "status", "state": "running", "step": )" + QByteArray::number(step) +
            R"(, "max_steps": 1000000, "loss": 2.53125, "lr": 0.0003, "grad_norm": 0.8125, "tokens_per_sec": 5120.5, )"
            R"("elapsed_s": 12.25, "val_loss": 2.625, "error": null, "prep_progress": 1.0, "prep_detail": "", )"
            R"("prep_elapsed_s": 0.0, "prep_eta_s": 0.0})"
            "\n";
    }
    return lines;
}

double appliedLinesPerSecond(const QString &file)
{
    ScriptedBackend scripted("exec cat '" + file.toUtf8() + "'");
    int applied = 0;
    QObject::connect(&scripted.controller(), &BackendController::statusChanged, &scripted.controller(),
                     [&applied] { ++applied; });
    QElapsedTimer clock;
    clock.start();
    scripted.launchAndWaitForExit();
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    if (applied != lineCount) {
        qFatal("%d of %d lines were applied", applied, lineCount);
    }
    return lineCount / seconds;
}

double pythonLinesPerSecond()
{
    QProcess python;
    python.setStandardOutputFile(QProcess::nullDevice());
    QElapsedTimer clock;
    clock.start();
    python.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral("-u"), QStringLiteral(ZOREL_EMIT_LINES), QString::number(pythonLineCount)});
    if (!python.waitForFinished(-1) || python.exitCode() != 0) {
        qFatal("the Python reference failed");
    }
    return pythonLineCount / (double(clock.nsecsElapsed()) / 1e9);
}

void measureThroughput(MeasureTable &table, const QString &file)
{
    std::vector<double> ours;
    std::vector<double> python;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(appliedLinesPerSecond(file));
        python.push_back(pythonLinesPerSecond());
        ratios.push_back(ours.back() / python.back());
    }
    constexpr auto perSecond = "/s";
    table.printAtLeast(QStringLiteral("pipe to applied event, 1,000,000 status lines"), median(ours), 500'000,
                       perSecond, 0);
    table.printReference(QStringLiteral("an unbuffered Python writing the same lines"), median(python),
                         perSecond, 0);
    table.printAtLeast(QStringLiteral("ratio"), median(ratios), 3, "x", 2);
}

/// Both outputs flood at the same time.
void measureFlood(MeasureTable &table, const QString &file)
{
    const QByteArray path = file.toUtf8();
    ScriptedBackend scripted("cat '" + path + "' >&2 & cat '" + path + "'; wait");
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    const bench::Heartbeat heartbeat;
    scripted.launchAndWaitForExit();
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);

    const std::vector<double> delays = heartbeat.delays();
    const double growth = static_cast<double>(after.ru_maxrss - before.ru_maxrss) / 1024;
    table.printAtMost(QStringLiteral("flood of 2,000,000 lines: event loop late, 99th percentile"),
                      delays[delays.size() * 99 / 100], 50, " ms", 1);
    table.printAtMost(QStringLiteral("flood of 2,000,000 lines: event loop late, at most"), delays.back(),
                      200, " ms", 1);
    table.printAtMost(QStringLiteral("flood of 2,000,000 lines: memory growth"), growth, 64, " MiB", 1);
}

void measureIdleness(MeasureTable &table)
{
    ScriptedBackend scripted(
        R"(echo '{"event":"ready"}'; read line; read line; read line; exec tail -f /dev/null)");
    QElapsedTimer clock;
    clock.start();
    scripted.controller().launch();
    const double launch = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    scripted.waitForReady();
    bench::runFor(200ms);

    const bench::Rest rest = bench::waitAtRest(3s);
    table.printAtMost(QStringLiteral("launch without the probe, on the main thread"), launch, 10, " ms", 2);
    table.printAtMost(QStringLiteral("three idle seconds of a ready controller: processor time"),
                      rest.processorMilliseconds, 1, " ms", 2);
    table.printAtMost(QStringLiteral("three idle seconds of a ready controller: sleeps of a thread"),
                      static_cast<double>(rest.sleeps), 2, "", 0);
    scripted.controller().killSidecar();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("lines"));
    {
        QFile lines(file);
        if (!lines.open(QIODevice::WriteOnly)) {
            qFatal("no temporary file");
        }
        lines.write(statusLines(lineCount));
    }
    MeasureTable table("median");
    measureIdleness(table);
    measureFlood(table, file);
    measureThroughput(table, file);
    return table.status();
}
