#include "backend/bridge/BackendController.h"
#include "app/settings/ZorelSettings.h"
#include "library/RunLibrary.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace zorel;
using namespace zorel::backend;
using backend::bridge::BackendController;

namespace {

class RecordingLibrary : public library::RunLibrary
{
public:
    void scan(const QString &finishedModelsPath) override { scans.append(finishedModelsPath); }
    QStringList scans;
};

protocol::TrainStatusPayload status(const QString &state, std::int64_t step, double loss,
                                    std::int64_t maxSteps = 100)
{
    protocol::TrainStatusPayload payload;
    payload.state = state;
    payload.step = step;
    payload.loss = loss;
    payload.maxSteps = maxSteps;
    return payload;
}

protocol::TrainStatusPayload running(std::int64_t step, double loss)
{
    return status(QStringLiteral("running"), step, loss);
}

protocol::NeuronSnapshotPayload snapshot(bool final, std::int64_t layer, std::int64_t index,
                                         double activation)
{
    protocol::NeuronSnapshotPayload payload;
    payload.final = final;
    payload.layers = {{layer, {{index, activation, 0, 63, protocol::NeuronActivityTier::high}}}};
    return payload;
}

protocol::ArchivedModel archive(const QString &path)
{
    return {path, path, 100, 1.5, 60};
}

void makeRun(const QString &finishedModels, const QString &name)
{
    QDir(finishedModels).mkpath(name);
    QFile manifest(finishedModels + QLatin1Char('/') + name + QStringLiteral("/manifest.json"));
    QVERIFY(manifest.open(QIODevice::WriteOnly));
}

} // namespace

/// The controller without a child: what it does with events, and with commands that cannot be sent.
class BackendControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void beforeReadyItIsIdle();
    void readySetsStatusAndStepsAndLogs();
    void readyClearsTheFatalError();
    void aStatusWithLossAddsAPoint();
    void aStatusWithLossZeroAddsNone();
    void twoStatusesOfOneStepAddOnePoint();
    void stepMinusOneIsNeverTheFirstPoint();
    void thePoint4001DropsTheFirst();
    void theLogLine2001DropsTheFirst();
    void anIdleStatusLeavesTheDesiredSteps();
    void anyOtherStateTakesItsMaxStepsOver();
    void aFinalSnapshotLeavesTheLiveOne();
    void aLiveSnapshotLeavesTheFinalOne();
    void theSelectionFollowsNewSnapshots();
    void theSelectionIsKeptWhenItsLayerIsMissing();
    void theSelectionIsKeptWhenItsIndexIsMissing();
    void logEventsAppendTheirMessage();
    void errorEventsAreLoggedAndChangeNothingElse();
    void pathsAreLoggedInFourLines();
    void doneIsLogged();
    void modelIdentityHasNoEffect();
    void anArchiveIsCountedFromTheFolderAndRescanned();
    void theArchiveNoticeEndsAfter12Seconds();
    void ofTwoArchivesTheSecondsTimerClears();
    void aNoticeTimerAfterTheControllersEndDoesNothing();
    void aSendWithoutChildIsSkippedWithItsName();
    void aSendWithoutNameIsSkippedWithAQuestionMark();
    void maxStepsAreClamped_data();
    void maxStepsAreClamped();
    void aVanishedLibraryIsNotAsked();
    void anEndlessLogLineIsCut();
    void theSystemsEnvironmentIsTakenByteForByte();
    void launchWithoutScriptsIsAFatalError();
    void launchOfABrokenInterpreterIsAFatalError();

private:
    QStringList log() const { return {m_controller->logLines().begin(), m_controller->logLines().end()}; }

    std::unique_ptr<tests::FakeSidecar> m_sidecar;
    std::unique_ptr<tests::InMemoryUserDefaults> m_store;
    std::unique_ptr<app::settings::ZorelSettings> m_settings;
    std::unique_ptr<BackendController> m_controller;
};

void BackendControllerTest::init()
{
    m_sidecar = std::make_unique<tests::FakeSidecar>();
    m_store = std::make_unique<tests::InMemoryUserDefaults>();
    m_settings = std::make_unique<app::settings::ZorelSettings>(
        *m_store, platform::StandardFolders::below(m_sidecar->root()));
    m_controller = std::make_unique<BackendController>(*m_settings, m_sidecar->surroundings());
}

void BackendControllerTest::cleanup()
{
    m_controller.reset();
    m_settings.reset();
}

void BackendControllerTest::beforeReadyItIsIdle()
{
    QCOMPARE(m_controller->status().state, QStringLiteral("idle"));
    QCOMPARE(m_controller->status().loss, 0.0);
    QVERIFY(!m_controller->ready());
    QVERIFY(!m_controller->isRunning());
    QVERIFY(!m_controller->fatalError());
    QVERIFY(m_controller->logLines().empty());
}

void BackendControllerTest::readySetsStatusAndStepsAndLogs()
{
    m_controller->apply(running(7, 3.0));
    QSignalSpy ready(m_controller.get(), &BackendController::readyChanged);
    m_controller->apply(protocol::ReadyEvent{1234});
    QVERIFY(m_controller->ready());
    QCOMPARE(ready.count(), 1);
    QCOMPARE(m_controller->desiredMaxSteps(), 1234);
    QVERIFY(m_controller->status() == status(QStringLiteral("idle"), 0, 0, 1234));
    QCOMPARE(log().constFirst(), QStringLiteral("backend ready (default max_steps = 1234)"));
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{1}); // kept
}

void BackendControllerTest::readyClearsTheFatalError()
{
    m_sidecar->scriptsExist = false;
    m_controller->launch();
    QVERIFY(m_controller->fatalError());
    m_controller->apply(running(1, 1.0));
    QVERIFY(m_controller->fatalError());
    m_controller->apply(protocol::ReadyEvent{100});
    QVERIFY(!m_controller->fatalError());
}

void BackendControllerTest::aStatusWithLossAddsAPoint()
{
    QSignalSpy appended(m_controller.get(), &BackendController::lossPointAppended);
    m_controller->apply(running(1, 5.5));
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{1});
    QCOMPARE(m_controller->lossHistory().front().step, 1);
    QCOMPARE(m_controller->lossHistory().front().loss, 5.5);
    QCOMPARE(appended.count(), 1);
}

void BackendControllerTest::aStatusWithLossZeroAddsNone()
{
    m_controller->apply(running(3, 0));
    QVERIFY(m_controller->lossHistory().empty());
    QCOMPARE(m_controller->status().step, 3);
}

void BackendControllerTest::twoStatusesOfOneStepAddOnePoint()
{
    m_controller->apply(running(4, 2.0));
    m_controller->apply(running(4, 1.0));
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{1});
    QCOMPARE(m_controller->lossHistory().front().loss, 2.0);
    QCOMPARE(m_controller->status().loss, 1.0);
}

void BackendControllerTest::stepMinusOneIsNeverTheFirstPoint()
{
    m_controller->apply(running(-1, 2.0));
    QVERIFY(m_controller->lossHistory().empty());
    m_controller->apply(running(0, 2.0));
    m_controller->apply(running(-1, 2.0));
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{2});
}

void BackendControllerTest::thePoint4001DropsTheFirst()
{
    for (int step = 1; step <= 4000; ++step) {
        m_controller->apply(running(step, 1.0));
    }
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{4000});
    QCOMPARE(m_controller->lossHistory().front().step, 1);
    m_controller->apply(running(4001, 1.0));
    QCOMPARE(m_controller->lossHistory().size(), std::size_t{4000});
    QCOMPARE(m_controller->lossHistory().front().step, 2);
    QCOMPARE(m_controller->lossHistory().back().step, 4001);
}

void BackendControllerTest::theLogLine2001DropsTheFirst()
{
    for (int number = 1; number <= 2001; ++number) {
        m_controller->appendLog(QString::number(number));
    }
    QCOMPARE(log().size(), 2000);
    QCOMPARE(log().constFirst(), QStringLiteral("2"));
    QCOMPARE(log().constLast(), QStringLiteral("2001"));
}

void BackendControllerTest::anIdleStatusLeavesTheDesiredSteps()
{
    m_controller->apply(protocol::ReadyEvent{500});
    m_controller->apply(status(QStringLiteral("idle"), 0, 0, 900));
    QCOMPARE(m_controller->desiredMaxSteps(), 500);
}

void BackendControllerTest::anyOtherStateTakesItsMaxStepsOver()
{
    for (const char *state :
         {"starting", "preparing", "running", "paused", "stopping", "done", "error", "unheard-of"}) {
        m_controller->apply(protocol::ReadyEvent{500});
        m_controller->apply(status(QString::fromLatin1(state), 0, 0, 900));
        QCOMPARE(m_controller->desiredMaxSteps(), 900);
    }
}

void BackendControllerTest::aFinalSnapshotLeavesTheLiveOne()
{
    m_controller->apply(snapshot(false, 0, 0, 0.1));
    m_controller->apply(snapshot(true, 0, 0, 0.2));
    QCOMPARE(m_controller->liveNeurons()->layers[0].neurons[0].activation, 0.1);
    QCOMPARE(m_controller->finalNeurons()->layers[0].neurons[0].activation, 0.2);
}

void BackendControllerTest::aLiveSnapshotLeavesTheFinalOne()
{
    QSignalSpy live(m_controller.get(), &BackendController::liveNeuronsChanged);
    QSignalSpy final(m_controller.get(), &BackendController::finalNeuronsChanged);
    m_controller->apply(snapshot(true, 0, 0, 0.2));
    m_controller->apply(snapshot(false, 0, 0, 0.1));
    QCOMPARE(m_controller->finalNeurons()->layers[0].neurons[0].activation, 0.2);
    QCOMPARE(live.count(), 1);
    QCOMPARE(final.count(), 1);
}

void BackendControllerTest::theSelectionFollowsNewSnapshots()
{
    m_controller->setSelectedNeuron(
        protocol::NeuronSelection{3, {7, 0.1, 0, 63, protocol::NeuronActivityTier::inactive}});
    m_controller->apply(snapshot(false, 3, 7, 0.9));
    QCOMPARE(m_controller->selectedNeuron()->neuron.activation, 0.9);
    QVERIFY(m_controller->selectedNeuron()->neuron.tier == protocol::NeuronActivityTier::high);
    m_controller->apply(snapshot(true, 3, 7, 0.4));
    QCOMPARE(m_controller->selectedNeuron()->neuron.activation, 0.4);
}

void BackendControllerTest::theSelectionIsKeptWhenItsLayerIsMissing()
{
    const protocol::NeuronSelection selection{3, {7, 0.1, 0, 63, protocol::NeuronActivityTier::inactive}};
    m_controller->setSelectedNeuron(selection);
    m_controller->apply(snapshot(false, 4, 7, 0.9));
    QVERIFY(m_controller->selectedNeuron() == selection);
}

void BackendControllerTest::theSelectionIsKeptWhenItsIndexIsMissing()
{
    const protocol::NeuronSelection selection{3, {7, 0.1, 0, 63, protocol::NeuronActivityTier::inactive}};
    m_controller->setSelectedNeuron(selection);
    m_controller->apply(snapshot(false, 3, 8, 0.9));
    QVERIFY(m_controller->selectedNeuron() == selection);
}

void BackendControllerTest::logEventsAppendTheirMessage()
{
    m_controller->apply(protocol::LogEvent{QStringLiteral("WARN"), QStringLiteral("as it is")});
    m_controller->apply(protocol::LogEvent{QStringLiteral("INFO"), QString()});
    QCOMPARE(log(), QStringList({QStringLiteral("as it is"), QString()}));
}

void BackendControllerTest::errorEventsAreLoggedAndChangeNothingElse()
{
    m_controller->apply(running(5, 2.0));
    QSignalSpy statusChanges(m_controller.get(), &BackendController::statusChanged);
    m_controller->apply(protocol::ErrorEvent{QStringLiteral("unknown error")});
    QCOMPARE(log(), QStringList{QStringLiteral("× ERROR: unknown error")});
    QCOMPARE(statusChanges.count(), 0);
    QVERIFY(!m_controller->fatalError());
}

void BackendControllerTest::pathsAreLoggedInFourLines()
{
    m_controller->apply(protocol::BackendPaths{QStringLiteral("/l"), QStringLiteral("/t"),
                                               QStringLiteral("/f"), QStringLiteral("/m")});
    QCOMPARE(log(), QStringList({QStringLiteral("library: /l"), QStringLiteral("  training data → /t"),
                                 QStringLiteral("  finished models → /f"),
                                 QStringLiteral("  model working dir → /m")}));
}

void BackendControllerTest::doneIsLogged()
{
    m_controller->apply(protocol::DoneEvent{});
    QCOMPARE(log(), QStringList{QStringLiteral("backend signalled done")});
}

void BackendControllerTest::modelIdentityHasNoEffect()
{
    m_controller->apply(protocol::ModelIdentityEvent{});
    QVERIFY(log().isEmpty());
}

void BackendControllerTest::anArchiveIsCountedFromTheFolderAndRescanned()
{
    RecordingLibrary store;
    m_controller->setLibraryStore(&store);
    m_settings->setFinishedModelsPath(QStringLiteral("~/Runs"));
    const QString finishedModels = m_sidecar->pathOf(QStringLiteral("Runs"));
    makeRun(finishedModels, QStringLiteral("a"));
    makeRun(finishedModels, QStringLiteral("b"));
    makeRun(finishedModels, QStringLiteral("c"));
    QDir(finishedModels).mkpath(QStringLiteral("not-a-run"));

    m_controller->apply(archive(QStringLiteral("/runs/c")));
    QCOMPARE(m_controller->archivedCount(), 3);
    QVERIFY(m_controller->recentArchive() == archive(QStringLiteral("/runs/c")));
    QCOMPARE(store.scans, QStringList{finishedModels});
    QCOMPARE(log(), QStringList{QStringLiteral("✓ archived model → /runs/c")});
}

void BackendControllerTest::theArchiveNoticeEndsAfter12Seconds()
{
    m_controller->apply(archive(QStringLiteral("/a")));
    QCOMPARE(m_sidecar->timers.size(), std::size_t{1});
    QVERIFY(m_sidecar->timers[0].delay == std::chrono::seconds(12));
    m_sidecar->timers[0].action();
    QVERIFY(!m_controller->recentArchive());
}

void BackendControllerTest::ofTwoArchivesTheSecondsTimerClears()
{
    m_controller->apply(archive(QStringLiteral("/a")));
    m_controller->apply(archive(QStringLiteral("/b")));
    m_sidecar->timers[0].action();
    QVERIFY(m_controller->recentArchive() == archive(QStringLiteral("/b")));
    m_sidecar->timers[1].action();
    QVERIFY(!m_controller->recentArchive());
}

void BackendControllerTest::aNoticeTimerAfterTheControllersEndDoesNothing()
{
    auto surroundings = BackendController::Surroundings::system();
    const QObject *guard = nullptr;
    surroundings.runAfter = [&guard](std::chrono::milliseconds, QObject *context, std::function<void()>) {
        guard = context;
    };
    BackendController controller(*m_settings, surroundings);
    controller.apply(archive(QStringLiteral("/a")));
    QCOMPARE(guard, &controller); // timers of a context object end with it
}

void BackendControllerTest::aSendWithoutChildIsSkippedWithItsName()
{
    m_controller->sendCommand(QStringLiteral("toggle_pause"));
    m_controller->shutdown();
    QCOMPARE(log(),
             QStringList({QStringLiteral("× send(toggle_pause) skipped — Python backend is not running"),
                          QStringLiteral("× send(stop) skipped — Python backend is not running"),
                          QStringLiteral("× send(quit) skipped — Python backend is not running")}));
}

void BackendControllerTest::aSendWithoutNameIsSkippedWithAQuestionMark()
{
    m_controller->send({});
    m_controller->send({{QStringLiteral("cmd"), 5}});
    QCOMPARE(log(), QStringList(2, QStringLiteral("× send(?) skipped — Python backend is not running")));
}

void BackendControllerTest::maxStepsAreClamped_data()
{
    QTest::addColumn<qint64>("asked");
    QTest::addColumn<qint64>("kept");
    QTest::newRow("zero") << qint64{0} << qint64{1};
    QTest::newRow("negative") << qint64{-5} << qint64{1};
    QTest::newRow("one") << qint64{1} << qint64{1};
    QTest::newRow("largest") << qint64{10'000'000} << qint64{10'000'000};
    QTest::newRow("too many") << qint64{20'000'000} << qint64{10'000'000};
}

void BackendControllerTest::maxStepsAreClamped()
{
    QFETCH(qint64, asked);
    QFETCH(qint64, kept);
    m_controller->setMaxSteps(asked);
    QCOMPARE(m_controller->desiredMaxSteps(), kept);
    QCOMPARE(log(),
             QStringList{QStringLiteral("× send(set_max_steps) skipped — Python backend is not running")});
}

void BackendControllerTest::aVanishedLibraryIsNotAsked()
{
    auto store = std::make_unique<RecordingLibrary>();
    m_controller->setLibraryStore(store.get());
    store.reset();
    m_controller->sendPaths();
    m_controller->apply(archive(QStringLiteral("/a")));
    QCOMPARE(m_controller->archivedCount(), 0);
}

void BackendControllerTest::anEndlessLogLineIsCut()
{
    m_controller->appendLog(QString(BackendController::maximumLogLineLength + 5, QLatin1Char('x')));
    QCOMPARE(log().constFirst().size(), BackendController::maximumLogLineLength);
}

void BackendControllerTest::theSystemsEnvironmentIsTakenByteForByte()
{
    qputenv("ZOREL_ODD", "caf\xE9");
    qputenv("ZOREL_EMPTY", "");
    const backend::bridge::Environment environment = BackendController::Surroundings::system().environment();
    QCOMPARE(environment.value("ZOREL_ODD"), QByteArray("caf\xE9"));
    QVERIFY(environment.contains("ZOREL_EMPTY"));
    QVERIFY(!environment.contains("ZOREL_NEVER_SET"));
    QCOMPARE(environment.value("HOME"), qgetenv("HOME"));
}

void BackendControllerTest::launchWithoutScriptsIsAFatalError()
{
    m_sidecar->scriptsExist = false;
    m_controller->launch();
    const QString text =
        QStringLiteral("failed to locate Python sidecar: Training scripts not found at ") + m_sidecar->root();
    QCOMPARE(m_controller->fatalError(), std::optional(text));
    QCOMPARE(log(), QStringList{QStringLiteral("× ") + text});
    QVERIFY(!m_controller->isRunning());
}

void BackendControllerTest::launchOfABrokenInterpreterIsAFatalError()
{
    m_sidecar->interpreter = QStringLiteral("/nowhere/python3");
    m_controller = std::make_unique<BackendController>(*m_settings, m_sidecar->surroundings());
    m_controller->launch();
    const QString python = m_sidecar->pathOf(QStringLiteral("home/Library/Python/3.12/bin/python3"));
    QCOMPARE(m_controller->fatalError(),
             std::optional(QStringLiteral("failed to launch Python backend: ") + python +
                           QStringLiteral(": No such file or directory")));
    QCOMPARE(log(), QStringList({QStringLiteral("sidecar root → ") + m_sidecar->root(),
                                 QStringLiteral("starting Python backend (%1)").arg(python)}));
    QVERIFY(!m_controller->isRunning());
    QVERIFY(QDir(m_settings->trainingDataPath()).exists()); // the folders are made first
}

QTEST_GUILESS_MAIN(BackendControllerTest)
#include "BackendControllerTest.moc"
