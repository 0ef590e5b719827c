#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "platform/BrokenPipe.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <thread>

using namespace zorel;
using namespace zorel::backend;
using backend::bridge::BackendController;
using tests::step;

namespace {

const QJsonObject readyEvent{{QStringLiteral("event"), QStringLiteral("ready")},
                             {QStringLiteral("default_max_steps"), 300}};

QJsonObject emitReady()
{
    return step(QStringLiteral("emit"), readyEvent);
}

QJsonObject logEvent(const QString &message)
{
    return step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("log")},
                                                    {QStringLiteral("msg"), message}});
}

QJsonObject await(const QString &name)
{
    return step(QStringLiteral("await"), name);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

} // namespace

/// The controller with a real child process that follows a script.
class BackendProcessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { platform::ignoreBrokenPipe(); }
    void init();
    void cleanup();

    void aRunGoesFromReadyToArchived();
    void theChildGetsItsArgumentsFolderAndEnvironment();
    void anUnsetPathAndHomeGetTheirDefaults();
    void readyIsAnsweredWithPathsIdentityAndProfile();
    void startSendsEverythingInSortedOrder();
    void startForgetsSnapshotsAndSelectionAndKeepsTheHistory();
    void startBeforeReadyIsRefusedInTheLog();
    void startAfterTheExitRelaunchesAndDoesNotTrain();
    void launchingTwiceStartsOneChild();
    void badLinesAreLoggedByTheirStart();
    void anUnknownEventIsLoggedByItsLineAndNotByTheDecodersWords();
    void blankLinesProduceNothing();
    void linesOfStandardErrorAreLoggedWithAPrefix();
    void oddBytesAffectOnlyTheirLine();
    void theExitIsLoggedWithItsStatus_data();
    void theExitIsLoggedWithItsStatus();
    void whatTheChildWroteLastComesBeforeItsExit();
    void aRelaunchKeepsWhatTheLastChildSaidInTheEnd();
    void readyIsAnnouncedWithEverythingInPlace();
    void aSendAfterTheExitIsSkipped();
    void aChildThatClosedItsInputIsReported();
    void stopAndQuitReachAChildThatReadsLate();
    void lateLinesOfAGrandchildStillArrive();
    void shutdownEndsARunningChild();
    void theEndOfTheControllerEndsTheChild();
    void killingEndsTheChildAtOnce();

private:
    void play(const QJsonArray &scenario);
    QStringList log() const { return {m_controller->logLines().begin(), m_controller->logLines().end()}; }
    int countOf(const QString &line) const { return int(log().count(line)); }

    std::unique_ptr<tests::FakeSidecar> m_sidecar;
    std::unique_ptr<tests::InMemoryUserDefaults> m_store;
    std::unique_ptr<app::settings::ZorelSettings> m_settings;
    std::unique_ptr<BackendController> m_controller;
};

void BackendProcessTest::init()
{
    m_sidecar = std::make_unique<tests::FakeSidecar>();
    m_store = std::make_unique<tests::InMemoryUserDefaults>();
    m_settings = std::make_unique<app::settings::ZorelSettings>(
        *m_store, platform::StandardFolders::below(m_sidecar->root()));
    m_controller = std::make_unique<BackendController>(*m_settings, m_sidecar->surroundings());
}

void BackendProcessTest::cleanup()
{
    if (m_controller && m_controller->isRunning()) {
        m_controller->killSidecar();
        QTRY_VERIFY(!m_controller->isRunning());
    }
    m_controller.reset();
    m_settings.reset();
}

void BackendProcessTest::play(const QJsonArray &scenario)
{
    m_sidecar->play(scenario);
    m_controller->launch();
    QVERIFY2(m_controller->isRunning(), qPrintable(m_controller->fatalError().value_or(QString())));
}

void BackendProcessTest::aRunGoesFromReadyToArchived()
{
    m_controller->launch();
    QTRY_VERIFY(m_controller->ready());
    m_controller->setMaxSteps(30);
    m_controller->startTraining(false);
    QTRY_VERIFY_WITH_TIMEOUT(m_controller->recentArchive().has_value(), 30'000);
    QTRY_VERIFY(log().contains(QStringLiteral("backend signalled done")));
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
    QTRY_VERIFY(QFile::exists(report));

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
        return backend::bridge::Environment{{"ZOREL_FAKE_SCENARIO", scenario.toUtf8()}};
    };
    m_controller = std::make_unique<BackendController>(*m_settings, surroundings);
    m_controller->launch();
    QTRY_VERIFY(QFile::exists(report));
    const QJsonObject child = QJsonDocument::fromJson(contentOf(report)).object();
    QCOMPARE(child.value(QLatin1String("environment")).toObject().value(QLatin1String("PATH")).toString(),
             QStringLiteral("/Library/Python/3.9/bin:/usr/bin:/bin"));
}

void BackendProcessTest::readyIsAnsweredWithPathsIdentityAndProfile()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    m_settings->setModelAuthor(QStringLiteral("  ada "));
    play({step(QStringLiteral("echo_commands_to"), echo), emitReady(),
          await(QStringLiteral("set_training_profile"))});
    QTRY_COMPARE(contentOf(echo).count('\n'), 3);
    const QList<QByteArray> lines = contentOf(echo).split('\n');
    QCOMPARE(
        lines.at(0),
        QStringLiteral(R"({"cmd":"set_paths","finished_models":"%1","model_root":"%2","training_data":"%3"})")
            .arg(m_settings->finishedModelsPath(), m_settings->modelRootPath(),
                 m_settings->trainingDataPath())
            .toUtf8());
    QCOMPARE(lines.at(1),
             QByteArray(R"({"cmd":"set_model_identity","identity":{"author":"ada","license":"MIT",)"
                        R"("name":"MyModel","version":"1.0.0"}})"));
    QCOMPARE(lines.at(2),
             QByteArray(R"({"cmd":"set_training_profile","profile":{"model_family":"text_language",)"
                        R"("training_capability":"pretrain"}})"));
}

void BackendProcessTest::startSendsEverythingInSortedOrder()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({emitReady(), await(QStringLiteral("set_training_profile")),
          step(QStringLiteral("echo_commands_to"), echo), await(QStringLiteral("start"))});
    QTRY_VERIFY(m_controller->ready());
    m_controller->startTraining(true);
    QTRY_COMPARE(
        contentOf(echo),
        QByteArray(R"({"cmd":"start","max_steps":300,"model_family":"text_language",)"
                   R"("model_identity":{"license":"MIT","name":"MyModel","version":"1.0.0"},"resume":true,)"
                   R"("training_capability":"pretrain"})"
                   "\n"));
}

void BackendProcessTest::startForgetsSnapshotsAndSelectionAndKeepsTheHistory()
{
    play({emitReady()});
    QTRY_VERIFY(m_controller->ready());
    protocol::NeuronSnapshotPayload neurons;
    m_controller->apply(neurons);
    neurons.final = true;
    m_controller->apply(neurons);
    m_controller->setSelectedNeuron(protocol::NeuronSelection{});
    protocol::TrainStatusPayload status;
    status.loss = 1;
    m_controller->apply(status);
    const auto lines = m_controller->logLines().size();

    m_controller->startTraining(false);
    QVERIFY(!m_controller->liveNeurons());
    QVERIFY(!m_controller->finalNeurons());
    QVERIFY(!m_controller->selectedNeuron());
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{1});
    QCOMPARE(m_controller->logLines().size(), lines);
}

void BackendProcessTest::startBeforeReadyIsRefusedInTheLog()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({step(QStringLiteral("echo_commands_to"), echo), await(QStringLiteral("quit")),
          step(QStringLiteral("exit"), 0)});
    m_controller->startTraining(false);
    QCOMPARE(log().constLast(),
             QStringLiteral("× Python backend is still starting — wait for “backend ready” in the log"));
    m_controller->sendCommand(QStringLiteral("quit"));
    QTRY_VERIFY(!m_controller->isRunning());
    QCOMPARE(contentOf(echo), QByteArray("{\"cmd\":\"quit\"}\n"));
}

void BackendProcessTest::startAfterTheExitRelaunchesAndDoesNotTrain()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({emitReady(), await(QStringLiteral("set_training_profile")), step(QStringLiteral("exit"), 3)});
    QTRY_VERIFY(log().contains(QStringLiteral("backend exited (code 3)")));
    QVERIFY(!m_controller->ready());

    m_sidecar->play({step(QStringLiteral("echo_commands_to"), echo), emitReady(),
                     await(QStringLiteral("set_training_profile"))});
    const auto before = m_controller->logLines().size();
    m_controller->startTraining(false);
    QVERIFY(m_controller->isRunning());
    const QStringList added = log().mid(qsizetype(before));
    QCOMPARE(added.constFirst(), QStringLiteral("× Python backend is not running — relaunching…"));
    QCOMPARE(added.at(1), QStringLiteral("sidecar root → ") + m_sidecar->root());
    QCOMPARE(added.constLast(),
             QStringLiteral("× wait for “backend ready” in Recent activity, then press Start again"));
    QTRY_VERIFY(m_controller->ready());
    QTRY_COMPARE(contentOf(echo).count('\n'), 3);
    QVERIFY(!contentOf(echo).contains("\"start\""));
}

void BackendProcessTest::launchingTwiceStartsOneChild()
{
    play({emitReady()});
    const auto lines = m_controller->logLines().size();
    m_controller->launch();
    QCOMPARE(m_controller->logLines().size(), lines);
    QTRY_VERIFY(m_controller->ready());
    QCOMPARE(countOf(QStringLiteral("backend ready (default max_steps = 300)")), 1);
}

void BackendProcessTest::badLinesAreLoggedByTheirStart()
{
    const QString longLine = QStringLiteral("bad ") + QString(296, QLatin1Char('x'));
    const QString nested = QString(10'000, QLatin1Char('['));
    play({step(QStringLiteral("raw"), QStringLiteral("  Traceback (most recent call last):\t\n")),
          step(QStringLiteral("raw"), longLine + QLatin1Char('\n')),
          step(QStringLiteral("raw"), nested + QLatin1Char('\n')),
          step(QStringLiteral("raw"), QStringLiteral("{\"event\":\"ready\",\"default_max_steps\":NaN}\n")),
          step(QStringLiteral("raw"), QStringLiteral("{\"event\":\"unheard\"}\n")),
          logEvent(QStringLiteral("alive"))});
    QTRY_VERIFY(log().contains(QStringLiteral("alive")));
    const QString prefix = QStringLiteral("× bad event from backend: ");
    QCOMPARE(log().mid(2),
             QStringList({prefix + QStringLiteral("Traceback (most recent call last):"),
                          prefix + longLine.left(120), prefix + nested.left(120),
                          prefix + QStringLiteral("{\"event\":\"ready\",\"default_max_steps\":NaN}"),
                          prefix + QStringLiteral("{\"event\":\"unheard\"}"), QStringLiteral("alive")}));
    QVERIFY(!m_controller->ready());
}

void BackendProcessTest::anUnknownEventIsLoggedByItsLineAndNotByTheDecodersWords()
{
    play({step(QStringLiteral("raw"), QStringLiteral("{\"event\": \"telemetry\", \"x\": 1}\n"))});
    QTRY_COMPARE(log().size(), 3);
    QCOMPARE(log().constLast(),
             QStringLiteral("× bad event from backend: {\"event\": \"telemetry\", \"x\": 1}"));
}

void BackendProcessTest::blankLinesProduceNothing()
{
    play({step(QStringLiteral("raw"), QStringLiteral("\n   \n\t \t\n")), logEvent(QStringLiteral("alive"))});
    QTRY_VERIFY(log().contains(QStringLiteral("alive")));
    QCOMPARE(log().size(), 3);
}

void BackendProcessTest::linesOfStandardErrorAreLoggedWithAPrefix()
{
    const QString withMark = QChar(QChar::ByteOrderMark) + QStringLiteral("marked");
    play({step(QStringLiteral("stderr"), QStringLiteral("  a warning \t")),
          step(QStringLiteral("stderr"), withMark)});
    QTRY_COMPARE(log().size(), 4);
    QCOMPARE(log().at(2), QStringLiteral("[py stderr]   a warning \t"));
    QCOMPARE(log().at(3), QStringLiteral("[py stderr] ") + withMark);
}

void BackendProcessTest::oddBytesAffectOnlyTheirLine()
{
    const auto raw = [](const QByteArray &bytes) {
        return step(QStringLiteral("raw_base64"), QString::fromLatin1(bytes.toBase64()));
    };
    play({raw("\xFF\xFE{\"event\":\"done\"}\n"), raw(QByteArray("{\"event\":\0}\n", 12)),
          raw("\xEF\xBB\xBF{\"event\":\"log\",\"msg\":\"mark\"}\n"),
          raw("{\"event\":\"log\",\"msg\":\"windows\"}\r\n"), raw("{\"event\":\"log\",\"msg\":\"caf\xC3"),
          raw("\xA9\"}\n"), logEvent(QStringLiteral("alive"))});
    QTRY_VERIFY(log().contains(QStringLiteral("alive")));
    const QStringList lines = log().mid(2);
    QCOMPARE(lines.size(), 5);
    QVERIFY(lines.at(0).startsWith(QStringLiteral("× bad event from backend: {\"event\":")));
    QVERIFY(lines.at(1).startsWith(QStringLiteral("× bad event from backend: ")));
    QCOMPARE(lines.at(2), QStringLiteral("windows"));
    QCOMPARE(lines.at(3), QStringLiteral("café"));
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
    QVERIFY(exited.wait(30'000));
    QCOMPARE(exited.at(0).at(0).toInt(), number);
    QCOMPARE(log().constLast(), QStringLiteral("backend exited (code %1)").arg(number));
    QVERIFY(!m_controller->ready());
    QVERIFY(!m_controller->isRunning());
    m_controller->startTraining(false);
    QVERIFY(m_controller->isRunning());
}

void BackendProcessTest::whatTheChildWroteLastComesBeforeItsExit()
{
    play({step(QStringLiteral("flood"), QJsonObject{{QStringLiteral("stderr"), 1500}}),
          logEvent(QStringLiteral("last words")), step(QStringLiteral("exit"), 1)});
    QSignalSpy exited(m_controller.get(), &BackendController::backendExited);
    QVERIFY(exited.wait(30'000));
    QCOMPARE(log().constLast(), QStringLiteral("backend exited (code 1)"));
    QVERIFY(log().contains(QStringLiteral("last words")));
    QVERIFY(log().contains(QStringLiteral("[py stderr] line 1499")));
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
    QTRY_VERIFY(m_controller->ready());
    QTRY_VERIFY(log().contains(QStringLiteral("[py stderr] Traceback")));
    QCOMPARE(countOf(QStringLiteral("backend exited (code 1)")), 1);
}

void BackendProcessTest::readyIsAnnouncedWithEverythingInPlace()
{
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    std::int64_t steps = 0;
    connect(m_controller.get(), &BackendController::readyChanged, this, [this, &steps] {
        steps = m_controller->desiredMaxSteps();
        m_controller->sendCommand(QStringLiteral("quit"));
    });
    play({step(QStringLiteral("echo_commands_to"), echo), emitReady(), await(QStringLiteral("quit")),
          step(QStringLiteral("exit"), 0)});
    QTRY_COMPARE(contentOf(echo).count('\n'), 4);
    QVERIFY(contentOf(echo).endsWith("{\"cmd\":\"quit\"}\n"));
    QCOMPARE(steps, 300);
}

void BackendProcessTest::aSendAfterTheExitIsSkipped()
{
    play({step(QStringLiteral("exit"), 0)});
    QTRY_VERIFY(log().contains(QStringLiteral("backend exited (code 0)")));
    m_controller->sendCommand(QStringLiteral("stop"));
    QCOMPARE(log().constLast(), QStringLiteral("× send(stop) skipped — Python backend is not running"));
}

void BackendProcessTest::aChildThatClosedItsInputIsReported()
{
    play({step(QStringLiteral("close_input"), true), logEvent(QStringLiteral("closed")),
          step(QStringLiteral("stop_reading"), true)});
    QTRY_VERIFY(log().contains(QStringLiteral("closed")));
    m_controller->sendCommand(QStringLiteral("stop"));
    QCOMPARE(log().constLast(), QStringLiteral("× send failed: Broken pipe"));
    QVERIFY(m_controller->isRunning()); // the process is left alone
    m_controller->sendCommand(QStringLiteral("stop"));
    QCOMPARE(log().constLast(), QStringLiteral("× send(stop) skipped — Python backend is not running"));
}

void BackendProcessTest::stopAndQuitReachAChildThatReadsLate()
{
    const QString gate = m_sidecar->pathOf(QStringLiteral("gate"));
    const QString echo = m_sidecar->pathOf(QStringLiteral("commands"));
    play({emitReady(), step(QStringLiteral("wait_for_file"), gate),
          step(QStringLiteral("echo_commands_to"), echo), await(QStringLiteral("quit")),
          step(QStringLiteral("exit"), 0)});
    QTRY_VERIFY(m_controller->ready());
    // Far more than a pipe holds, while the child reads nothing.
    for (int edit = 0; edit < 500; ++edit) {
        m_settings->setModelDescription(QString(10'000, QLatin1Char('d')) + QString::number(edit));
        m_controller->sendModelIdentity();
    }
    m_controller->shutdown();
    QVERIFY(!log().join(QLatin1Char('\n')).contains(QStringLiteral("send failed")));
    touch(gate);
    QTRY_VERIFY_WITH_TIMEOUT(!m_controller->isRunning(), 30'000);
    const QByteArray commands = contentOf(echo);
    QVERIFY(commands.endsWith("{\"cmd\":\"stop\"}\n{\"cmd\":\"quit\"}\n"));
    QVERIFY(commands.contains("d499\""));
    QVERIFY(commands.count('\n') < 50);
}

void BackendProcessTest::lateLinesOfAGrandchildStillArrive()
{
    const QString gate = m_sidecar->pathOf(QStringLiteral("gate"));
    play({step(QStringLiteral("grandchild"),
               QJsonObject{{QStringLiteral("until_file"), gate},
                           {QStringLiteral("steps"), QJsonArray{logEvent(QStringLiteral("late"))}}}),
          step(QStringLiteral("exit"), 0)});
    QTRY_VERIFY(log().contains(QStringLiteral("backend exited (code 0)")));
    touch(gate);
    QTRY_VERIFY(log().contains(QStringLiteral("late")));
}

void BackendProcessTest::shutdownEndsARunningChild()
{
    m_controller->launch();
    QTRY_VERIFY(m_controller->ready());
    m_controller->setMaxSteps(100'000);
    m_controller->startTraining(false);
    QTRY_COMPARE(m_controller->status().state, QStringLiteral("running"));
    m_controller->shutdown();
    QTRY_VERIFY(log().contains(QStringLiteral("backend exited (code 0)")));
}

void BackendProcessTest::theEndOfTheControllerEndsTheChild()
{
    const QString ended = m_sidecar->pathOf(QStringLiteral("ended"));
    play({emitReady(), step(QStringLiteral("wait_for_eof"), true), step(QStringLiteral("touch"), ended)});
    QTRY_VERIFY(m_controller->ready());
    m_controller.reset();
    QTRY_VERIFY(QFile::exists(ended));
}

void BackendProcessTest::killingEndsTheChildAtOnce()
{
    play({emitReady(), step(QStringLiteral("stop_reading"), true)});
    QTRY_VERIFY(m_controller->ready());
    m_controller->killSidecar();
    QTRY_VERIFY(log().contains(QStringLiteral("backend exited (code 9)")));
}

QTEST_GUILESS_MAIN(BackendProcessTest)
#include "BackendProcessTest.moc"
