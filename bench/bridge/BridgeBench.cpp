// Lines from a child's pipe to applied events, and what a flood and idleness cost the event loop.

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "platform/UserDefaults.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include <sys/resource.h>

using namespace zorel;
using backend::bridge::BackendController;

namespace {

constexpr int lineCount = 1'000'000;
constexpr int pythonLineCount = 100'000;
constexpr int rounds = 5;

class NoDefaults : public platform::UserDefaults
{
public:
    std::optional<QString> string(const QString &) const override { return std::nullopt; }
    void setString(const QString &, const QString &) override {}
    std::optional<bool> boolean(const QString &) const override { return std::nullopt; }
    void setBoolean(const QString &, bool) override {}
};

/// A controller whose "interpreter" is a shell script.
class Scripted
{
public:
    explicit Scripted(const QByteArray &script)
        : m_settings(m_store, platform::StandardFolders::below(m_folder.path()))
        , m_controller(m_settings, surroundings())
    {
        QDir(m_folder.path()).mkpath(QStringLiteral("Library/Python/3.12/bin"));
        QFile file(python());
        if (!file.open(QIODevice::WriteOnly)) {
            qFatal("no temporary folder");
        }
        file.write("#!/bin/sh\n" + script + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    BackendController &controller() { return m_controller; }
    QString python() const { return m_folder.filePath(QStringLiteral("Library/Python/3.12/bin/python3")); }

private:
    BackendController::Surroundings surroundings()
    {
        BackendController::Surroundings outside = BackendController::Surroundings::system();
        outside.host = [this] {
            backend::bridge::SidecarHost host;
            host.home = m_folder.path();
            host.scriptsRootOverride = m_folder.path();
            host.fileExists = [](const QString &) {
                return true;
            };
            host.isExecutableFile = [](const QString &) {
                return true;
            };
            host.run = [](const QString &, const QStringList &) {
                return 0;
            };
            return host;
        };
        return outside;
    }

    QTemporaryDir m_folder;
    NoDefaults m_store;
    app::settings::ZorelSettings m_settings;
    BackendController m_controller;
};

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

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + std::ptrdiff_t(values.size() / 2), values.end());
    return values[values.size() / 2];
}

void print(const char *measure, const QString &value, const char *goal, bool kept)
{
    std::printf("%-58s %16s   %-22s %s\n", measure, qPrintable(value), goal, kept ? "yes" : "NO");
}

double appliedLinesPerSecond(const QString &file)
{
    Scripted scripted("exec cat '" + file.toUtf8() + "'");
    int applied = 0;
    QObject::connect(&scripted.controller(), &BackendController::statusChanged, &scripted.controller(),
                     [&applied] { ++applied; });
    QEventLoop loop;
    QObject::connect(&scripted.controller(), &BackendController::backendExited, &loop, &QEventLoop::quit);
    QElapsedTimer clock;
    clock.start();
    scripted.controller().launch();
    loop.exec();
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

void measureThroughput(const QString &file)
{
    std::vector<double> ours;
    std::vector<double> python;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        ours.push_back(appliedLinesPerSecond(file));
        python.push_back(pythonLinesPerSecond());
        ratios.push_back(ours.back() / python.back());
    }
    print("pipe to applied event, 1,000,000 status lines",
          QString::number(median(ours), 'f', 0) + QStringLiteral("/s"), ">= 500000/s",
          median(ours) >= 500'000);
    print("an unbuffered Python writing the same lines",
          QString::number(median(python), 'f', 0) + QStringLiteral("/s"), "reference", true);
    print("ratio", QString::number(median(ratios), 'f', 2) + QLatin1Char('x'), ">= 3x", median(ratios) >= 3);
}

/// Lateness of a timer that wants to fire every 5 ms, while both outputs flood.
void measureFlood(const QString &file)
{
    const QByteArray path = file.toUtf8();
    Scripted scripted("cat '" + path + "' >&2 & cat '" + path + "'; wait");
    std::vector<double> gaps;
    QElapsedTimer sinceLast;
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        gaps.push_back(double(sinceLast.nsecsElapsed()) / 1e6 - 5);
        sinceLast.restart();
    });
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    QEventLoop loop;
    QObject::connect(&scripted.controller(), &BackendController::backendExited, &loop, &QEventLoop::quit);
    sinceLast.start();
    heartbeat.start(5);
    scripted.controller().launch();
    loop.exec();
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);

    std::ranges::sort(gaps);
    const double p99 = gaps[gaps.size() * 99 / 100];
    const double growth = double(after.ru_maxrss - before.ru_maxrss) / 1024;
    print("flood of 2,000,000 lines: event loop late, 99th percentile",
          QString::number(p99, 'f', 1) + QStringLiteral(" ms"), "<= 50 ms", p99 <= 50);
    print("flood of 2,000,000 lines: event loop late, at most",
          QString::number(gaps.back(), 'f', 1) + QStringLiteral(" ms"), "<= 200 ms", gaps.back() <= 200);
    print("flood of 2,000,000 lines: memory growth", QString::number(growth, 'f', 1) + QStringLiteral(" MiB"),
          "<= 64 MiB", growth <= 64);
}

double processorMilliseconds()
{
    return double(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

void measureIdleness()
{
    Scripted scripted(R"(echo '{"event":"ready"}'; read line; read line; read line; exec tail -f /dev/null)");
    QEventLoop loop;
    QObject::connect(&scripted.controller(), &BackendController::readyChanged, &loop, &QEventLoop::quit);
    QElapsedTimer clock;
    clock.start();
    scripted.controller().launch();
    const double launch = double(clock.nsecsElapsed()) / 1e6;
    loop.exec();
    QTimer::singleShot(200, &loop, &QEventLoop::quit);
    loop.exec();

    const double before = processorMilliseconds();
    QTimer::singleShot(3000, &loop, &QEventLoop::quit);
    loop.exec();
    const double used = processorMilliseconds() - before;
    print("launch without the probe, on the main thread",
          QString::number(launch, 'f', 2) + QStringLiteral(" ms"), "<= 10 ms", launch <= 10);
    print("three idle seconds of a ready controller: processor time",
          QString::number(used, 'f', 2) + QStringLiteral(" ms"), "<= 1 ms", used <= 1);
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
    std::printf("%-58s %16s   %-22s %s\n", "measure", "median", "goal", "ok?");
    measureIdleness();
    measureFlood(file);
    measureThroughput(file);
}
