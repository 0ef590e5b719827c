#include "tests/backend/bridge/ControllerFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>

#include <csignal>
#include <thread>

namespace zorel::tests {

using backend::bridge::BackendController;

/// How a child is launched, and how it comes to its end.
class BackendProcessTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }

    void aRunGoesFromReadyToArchived();
    void theChildGetsItsArgumentsFolderAndEnvironment();
    void anUnsetPathAndHomeGetTheirDefaults();
    void launchingTwiceStartsOneChild();
    void theExitIsLoggedWithItsStatus_data();
    void theExitIsLoggedWithItsStatus();
    void theExitLeavesWhatTheRunHasShown();
    void aRelaunchKeepsWhatTheLastChildSaidInTheEnd();
    void shutdownEndsARunningChild();
    void theEndOfTheControllerEndsTheChild();
    void killingEndsTheChildAtOnce();
};

void BackendProcessTest::aRunGoesFromReadyToArchived()
{
    m_controller->launch();
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    m_controller->setMaxSteps(30);
    m_controller->startTraining(false);
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->recentArchive().has_value(), patience);
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend signalled done")), patience);
    QCOMPARE(m_controller->lossHistory().back().step, 30);
    QCOMPARE(m_controller->archivedCount(), 1);
    QCOMPARE(countOf(QStringLiteral("✓ archived model → ") + m_controller->recentArchive()->path), 1);
}

void BackendProcessTest::theChildGetsItsArgumentsFolderAndEnvironment()
{
    const QString report = m_sidecar->pathOf(QStringLiteral("report.json"));
    m_sidecar->setEnvironment(QStringLiteral("HOME"), QStringLiteral("/home/ada"));
    m_sidecar->setEnvironment(QStringLiteral("PATH"), QStringLiteral("/opt/tools:/usr/bin"));
    m_sidecar->setEnvironment(QStringLiteral("ZOREL_DATA_ROOT"), QStringLiteral("inherited"));
    m_sidecar->setEnvironment(QStringLiteral("KEPT"), QStringLiteral("yes"));
    m_settings->setModelRootPath(QStringLiteral("~/Modell \"ü\""));
    play({step(QStringLiteral("report_to"), report)});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(report), patience);

    const QJsonObject child = QJsonDocument::fromJson(contentOf(report)).object();
    const QJsonObject environment = child.value(QLatin1String("environment")).toObject();
    const QJsonArray arguments = child.value(QLatin1String("arguments")).toArray();
    QCOMPARE(arguments.size(), 4);
    QCOMPARE(arguments.at(1).toString(), QStringLiteral("-u"));
    QCOMPARE(arguments.at(2).toString(), QStringLiteral("-m"));
    QCOMPARE(arguments.at(3).toString(), QStringLiteral("src.app_backend"));
    QCOMPARE(child.value(QLatin1String("folder")).toString(), m_sidecar->root());
    QCOMPARE(child.value(QLatin1String("descriptors")).toArray(), QJsonArray({0, 1, 2}));
    QCOMPARE(environment.value(QLatin1String("PATH")).toString(),
             QStringLiteral("/home/ada/Library/Python/3.9/bin:/opt/tools:/usr/bin"));
    QCOMPARE(environment.value(QLatin1String("PYTHONUNBUFFERED")).toString(), QStringLiteral("1"));
    QCOMPARE(environment.value(QLatin1String("KEPT")).toString(), QStringLiteral("yes"));
    QCOMPARE(environment.value(QLatin1String("ZOREL_DATA_ROOT")).toString(), m_settings->trainingDataPath());
    QCOMPARE(environment.value(QLatin1String("ZOREL_FINISHED_MODELS_ROOT")).toString(),
             m_settings->finishedModelsPath());
    QCOMPARE(environment.value(QLatin1String("ZOREL_MODEL_ROOT")).toString(),
             m_sidecar->root() + QStringLiteral("/Modell \"ü\""));
}

void BackendProcessTest::anUnsetPathAndHomeGetTheirDefaults()
{
    const QString report = m_sidecar->pathOf(QStringLiteral("report.json"));
    const QString scenario = QStringLiteral("[{\"report_to\":\"%1\"}]").arg(report);
    auto surroundings = m_sidecar->surroundings();
    surroundings.environment = [scenario] {
        return platform::Environment{{"ZOREL_FAKE_SCENARIO", scenario.toUtf8()}};
    };
    m_controller = std::make_unique<BackendController>(*m_settings, surroundings);
    m_controller->launch();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(report), patience);
    const QJsonObject child = QJsonDocument::fromJson(contentOf(report)).object();
    QCOMPARE(child.value(QLatin1String("environment")).toObject().value(QLatin1String("PATH")).toString(),
             QStringLiteral("/Library/Python/3.9/bin:/usr/bin:/bin"));
}

void BackendProcessTest::launchingTwiceStartsOneChild()
{
    play({emitReady()});
    const auto lines = m_controller->logLines().size();
    m_controller->launch();
    QCOMPARE(m_controller->logLines().size(), lines);
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    QCOMPARE(countOf(QStringLiteral("backend ready (default max_steps = 300)")), 1);
}

void BackendProcessTest::theExitIsLoggedWithItsStatus_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<int>("number");
    for (const int code : {0, 1, 255}) {
        QTest::addRow("exit %d", code) << QStringLiteral("exit") << code;
    }
    for (const int signal : {SIGKILL, SIGSEGV, SIGTERM}) {
        QTest::addRow("signal %d", signal) << QStringLiteral("signal") << signal;
    }
}

void BackendProcessTest::theExitIsLoggedWithItsStatus()
{
    QFETCH(QString, how);
    QFETCH(int, number);
    play({emitReady(), await(QStringLiteral("set_training_profile")), step(how, number)});
    QSignalSpy exited(m_controller.get(), &BackendController::backendExited);
    QVERIFY(exited.wait(patience));
    QCOMPARE(exited.at(0).at(0).toInt(), number);
    QCOMPARE(log().constLast(), QStringLiteral("backend exited (code %1)").arg(number));
    QVERIFY(!m_controller->ready());
    QVERIFY(!m_controller->isRunning());
    m_controller->startTraining(false);
    QVERIFY(m_controller->isRunning());
}

void BackendProcessTest::theExitLeavesWhatTheRunHasShown()
{
    play({emitReady(), await(QStringLiteral("stop")), step(QStringLiteral("exit"), 1)});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    backend::protocol::TrainStatusPayload status;
    status.state = QStringLiteral("running");
    status.step = 7;
    status.loss = 2.5;
    m_controller->apply(status);
    m_controller->apply(backend::protocol::NeuronSnapshotPayload());
    m_controller->sendCommand(QStringLiteral("stop"));
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 1)")), patience);
    QVERIFY(m_controller->status() == status);
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{1});
    QVERIFY(m_controller->liveNeurons());
}

void BackendProcessTest::aRelaunchKeepsWhatTheLastChildSaidInTheEnd()
{
    play({step(QStringLiteral("stderr"), QStringLiteral("Traceback")), step(QStringLiteral("exit"), 1)});
    // The child is dead before anything of it has been handled.
    while (m_controller->isRunning()) {
        std::this_thread::yield();
    }
    m_sidecar->play({emitReady()});
    m_controller->startTraining(false);
    QVERIFY(m_controller->isRunning());
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("[py stderr] Traceback")), patience);
    QCOMPARE(countOf(QStringLiteral("backend exited (code 1)")), 1);
}

void BackendProcessTest::shutdownEndsARunningChild()
{
    m_controller->launch();
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    m_controller->setMaxSteps(100'000);
    m_controller->startTraining(false);
    QTRY_COMPARE_WITH_TIMEOUT(m_controller->status().state, QStringLiteral("running"), patience);
    m_controller->shutdown();
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 0)")), patience);
}

void BackendProcessTest::theEndOfTheControllerEndsTheChild()
{
    const QString ended = m_sidecar->pathOf(QStringLiteral("ended"));
    play({emitReady(), step(QStringLiteral("wait_for_eof"), true), step(QStringLiteral("touch"), ended)});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    m_controller.reset();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(ended), patience);
}

void BackendProcessTest::killingEndsTheChildAtOnce()
{
    play({emitReady(), step(QStringLiteral("stop_reading"), true)});
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->ready(), patience);
    m_controller->killSidecar();
    QTRY_VERIFY_WITH_TIMEOUT(log().contains(QStringLiteral("backend exited (code 9)")), patience);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendProcessTest)
#include "BackendProcessTest.moc"
