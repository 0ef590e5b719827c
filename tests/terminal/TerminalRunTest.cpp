#include "terminal/TerminalRun.h"

#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "tests/terminal/TrainHome.h"

#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

namespace zorel::tests {

using namespace std::chrono_literals;
using terminal::TerminalRun;
using Outcome = TerminalRun::Outcome;

namespace {

constexpr int patience = 60'000; // milliseconds

QJsonObject error()
{
    return says(
        {{QStringLiteral("event"), QStringLiteral("error")}, {QStringLiteral("msg"), QStringLiteral("no")}});
}

} // namespace

class TerminalRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsARunToItsArchive();
    void takesAnErrorWithoutARunForARefusal();
    void goesOnWhenTheRunStartsAfterAnError();
    void whatComesAlongWithReadinessIsNoAnswer();
    void stopsWaitingForABusyBackend();
    void endsAtOnceWithoutScripts();
    void stopsBeforeTheBackendIsReady();

private:
    struct Stage
    {
        explicit Stage(const QJsonArray &scenario, TerminalRun::Limits limits = {}, bool withScripts = true)
            : settings(store, platform::StandardFolders::below(sidecar.pathOf(QStringLiteral("home"))))
            , controller(settings, prepared(scenario, withScripts))
            , run(controller, {}, limits)
            , ended(&run, &TerminalRun::ended)
        {}

        backend::bridge::BackendController::Surroundings prepared(const QJsonArray &scenario,
                                                                  bool withScripts)
        {
            if (!scenario.isEmpty()) {
                sidecar.play(scenario);
            }
            sidecar.scriptsExist = withScripts;
            return sidecar.surroundings();
        }

        bool waitForEnd() { return !ended.isEmpty() || ended.wait(patience); }

        FakeSidecar sidecar;
        InMemoryUserDefaults store;
        app::settings::ZorelSettings settings;
        backend::bridge::BackendController controller;
        TerminalRun run;
        QSignalSpy ended;
    };
};

void TerminalRunTest::followsARunToItsArchive()
{
    Stage stage({});
    QList<TerminalRun::Phase> phases;
    connect(&stage.run, &TerminalRun::phaseChanged, &stage.run, [&] { phases << stage.run.phase(); });
    stage.run.start();
    QVERIFY(stage.waitForEnd());
    using Phase = TerminalRun::Phase;
    QCOMPARE(phases, (QList{Phase::waitingForBackend, Phase::training, Phase::ending, Phase::ended}));
    QCOMPARE(stage.run.outcome(), Outcome::archived);
    QCOMPARE(stage.run.archive()->step, 60);
    QCOMPARE(stage.run.lastTrained().step, 60);
    QVERIFY(!stage.run.leftBackendRunning());
    QVERIFY(!stage.controller.isRunning());
    QCOMPARE(stage.ended.size(), 1);
}

void TerminalRunTest::takesAnErrorWithoutARunForARefusal()
{
    TerminalRun::Limits limits;
    limits.refusal = 1ms;
    Stage stage({ready(), does("await", QStringLiteral("start")), error()}, limits);
    stage.run.start();
    QVERIFY(stage.waitForEnd());
    QCOMPARE(stage.run.outcome(), Outcome::failed);
    QCOMPARE(stage.run.failure(), QString());
}

void TerminalRunTest::goesOnWhenTheRunStartsAfterAnError()
{
    // The error comes before the run, and the limit would be over long before its end.
    Stage stage({ready(), error(), does("await", QStringLiteral("start")), status("running", 1, 2, 3, 1),
                 error(), status("running", 2, 2, 3, 1),
                 says({{QStringLiteral("event"), QStringLiteral("model_archived")}})});
    stage.run.start();
    QVERIFY(stage.waitForEnd());
    QCOMPARE(stage.run.outcome(), Outcome::archived);
}

void TerminalRunTest::whatComesAlongWithReadinessIsNoAnswer()
{
    QByteArray atOnce;
    for (const QJsonObject &step : {ready(), error(), status("idle", 0, 2, 0, 0)}) {
        atOnce +=
            QJsonDocument(step[QStringLiteral("emit")].toObject()).toJson(QJsonDocument::Compact) + '\n';
    }
    Stage stage({does("raw", QString::fromUtf8(atOnce)), does("await", QStringLiteral("start")),
                 status("running", 1, 2, 3, 1)});
    stage.run.start();
    QTRY_COMPARE_WITH_TIMEOUT(stage.controller.status().step, 1, patience);
    QCOMPARE(stage.run.phase(), TerminalRun::Phase::training);
}

void TerminalRunTest::stopsWaitingForABusyBackend()
{
    TerminalRun::Limits limits;
    limits.quitting = 1ms;
    Stage stage({ready(), does("await", QStringLiteral("start")), status("running", 1, 2, 3, 1),
                 does("stop_reading", true)},
                limits);
    connect(&stage.controller, &backend::bridge::BackendController::statusChanged, &stage.run, [&stage] {
        if (stage.controller.status().step == 1) {
            stage.run.stop();
        }
    });
    stage.run.start();
    QVERIFY(stage.waitForEnd());
    QCOMPARE(stage.run.outcome(), Outcome::stopped);
    QVERIFY(stage.run.leftBackendRunning());
    stage.controller.killSidecar();
}

void TerminalRunTest::endsAtOnceWithoutScripts()
{
    Stage stage({}, {}, false);
    stage.run.start();
    QCOMPARE(stage.ended.size(), 1);
    QCOMPARE(stage.run.outcome(), Outcome::notStartable);
    QVERIFY(stage.run.failure().startsWith(QStringLiteral("failed to locate Python sidecar: ")));
}

void TerminalRunTest::stopsBeforeTheBackendIsReady()
{
    Stage stage({does("wait_for_eof", true)});
    stage.run.start();
    stage.run.stop();
    QCOMPARE(stage.ended.size(), 1);
    QCOMPARE(stage.run.outcome(), Outcome::stopped);
    stage.run.stop();
    stage.run.stopAtOnce();
    QCOMPARE(stage.ended.size(), 1);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::TerminalRunTest)
#include "TerminalRunTest.moc"
