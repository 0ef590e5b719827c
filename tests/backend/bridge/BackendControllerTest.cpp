#include "backend/bridge/BackendController.h"

#include "tests/backend/bridge/ControllerFixture.h"

#include <QDir>
#include <QSignalSpy>

namespace zorel::tests {

namespace protocol = backend::protocol;
using backend::bridge::BackendController;

namespace {

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

} // namespace

/// The controller without a child: what it does with events, and with commands that cannot be sent.
class BackendControllerTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }

    void beforeReadyItIsIdle();
    void readySetsStatusAndStepsAndLogs();
    void onlyReadyClearsTheFatalError();
    void aStatusWithLossAddsAPoint();
    void aStatusWithLossZeroAddsNone();
    void twoStatusesOfOneStepAddOnePoint();
    void stepMinusOneIsNeverTheFirstPoint();
    void thePoint4001DropsTheFirst();
    void theLogLine2001DropsTheFirst();
    void anIdleStatusLeavesTheDesiredSteps();
    void anyOtherStateTakesItsMaxStepsOver();
    void logEventsAppendTheirMessage();
    void errorEventsAreLoggedAndChangeNothingElse();
    void pathsAreLoggedInFourLines();
    void doneIsLogged();
    void modelIdentityHasNoEffect();
    void aSendWithoutChildIsSkippedWithItsName();
    void aSendWithoutNameIsSkippedWithAQuestionMark();
    void maxStepsAreClamped_data();
    void maxStepsAreClamped();
    void anEndlessLogLineIsCut();
    void theSystemsEnvironmentIsTakenByteForByte();
    void launchWithoutScriptsIsAFatalError();
    void launchOfABrokenInterpreterIsAFatalError();
};

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

void BackendControllerTest::onlyReadyClearsTheFatalError()
{
    m_sidecar->scriptsExist = false;
    m_controller->launch();
    QVERIFY(m_controller->fatalError());
    m_sidecar->scriptsExist = true;
    m_sidecar->play({step(QStringLiteral("stop_reading"), true)});
    m_controller->launch();
    QVERIFY(m_controller->isRunning());
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

void BackendControllerTest::anEndlessLogLineIsCut()
{
    m_controller->appendLog(QString(BackendController::maximumLogLineLength + 5, QLatin1Char('x')));
    QCOMPARE(log().constFirst().size(), BackendController::maximumLogLineLength);
}

void BackendControllerTest::theSystemsEnvironmentIsTakenByteForByte()
{
    qputenv("ZOREL_ODD", "caf\xE9");
    qputenv("ZOREL_EMPTY", "");
    const platform::Environment environment = BackendController::Surroundings::system().environment();
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

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendControllerTest)
#include "BackendControllerTest.moc"
