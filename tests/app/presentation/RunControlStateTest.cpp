#include "app/presentation/RunControlState.h"

#include "app/presentation/StatusText.h"

#include <QTest>

namespace zorel::tests {

using namespace app::presentation;
using app::settings::ModelFamily;
using PauseAction = RunControlState::PauseAction;

class RunControlStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offersWhatTheStateAllows_data();
    void offersWhatTheStateAllows();
    void offersStartWhenTheBackendDiedInARun();
    void saysWhatIsGoingOn_data();
    void saysWhatIsGoingOn();
    void labelsTheStartBetweenRuns();
};

namespace {

RunFacts factsOf(const char *state)
{
    return {.ready = true, .state = QString::fromUtf8(state), .step = 1234, .maxSteps = 50'000, .error = {}};
}

} // namespace

void RunControlStateTest::offersWhatTheStateAllows_data()
{
    QTest::addColumn<QString>("offers");
    const auto row = [](const char *state, const char *offers) {
        QTest::newRow(state) << QString::fromUtf8(offers);
    };
    row("idle", "start");
    row("starting", "stop");
    row("preparing", "stop");
    row("running", "pause stop");
    row("paused", "resume stop");
    row("stopping", "");
    row("done", "start");
    row("error", "start");
    row("made up", "start");
}

void RunControlStateTest::offersWhatTheStateAllows()
{
    QFETCH(QString, offers);
    const RunControlState controls = runControlState(factsOf(QTest::currentDataTag()));
    QStringList found;
    if (controls.canStart) {
        found << QStringLiteral("start");
    }
    if (controls.canPause) {
        found << (controls.pauseAction == PauseAction::pause ? QStringLiteral("pause")
                                                             : QStringLiteral("resume"));
    }
    if (controls.canStop) {
        found << QStringLiteral("stop");
    }
    QCOMPARE(found.join(QLatin1Char(' ')), offers);
}

void RunControlStateTest::offersStartWhenTheBackendDiedInARun()
{
    for (const char *state : {"starting", "preparing", "running", "paused", "stopping"}) {
        RunFacts facts = factsOf(state);
        facts.ready = false;
        const RunControlState controls = runControlState(facts);
        QVERIFY(controls.canStart && !controls.canPause && !controls.canStop);
        QCOMPARE(controls.startLabel, startLabel(false));
        QCOMPARE(controls.statusLine, QString());
    }
}

void RunControlStateTest::saysWhatIsGoingOn_data()
{
    QTest::addColumn<ModelFamily>("family");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *state, const char *expected,
                        ModelFamily family = ModelFamily::textLanguage) {
        QTest::newRow(state) << family << QString::fromUtf8(expected);
    };
    row("idle", "Press Start to begin training.");
    row("starting", "Warming up — first step takes ~15–20 s for JIT compile.");
    row("preparing",
        "Preparing data — indexing images in your Training Data folder. This runs once per image corpus.",
        ModelFamily::multimodal);
    row("running", "Running — step 1,234 of 50,000");
    row("paused", "Paused — step 1,234 of 50,000");
    row("stopping", "Stopping — step 1,234 of 50,000");
    row("done", "Done — step 1,234 of 50,000");
    row("error", "Error — step 1,234 of 50,000");
}

void RunControlStateTest::saysWhatIsGoingOn()
{
    QFETCH(ModelFamily, family);
    QFETCH(QString, expected);
    RunFacts facts = factsOf(QTest::currentDataTag());
    facts.family = family;
    QCOMPARE(runControlState(facts).statusLine, expected);
    facts.error = QStringLiteral("the disk is full");
    const bool saysWhatIsWrong =
        facts.state == QLatin1String("error") || facts.state == QLatin1String("idle");
    QCOMPARE(runControlState(facts).statusLine, saysWhatIsWrong ? facts.error : expected);
}

void RunControlStateTest::labelsTheStartBetweenRuns()
{
    QCOMPARE(runControlState(factsOf("idle")).startLabel, startLabel(true));
    QCOMPARE(runControlState({}).startLabel, startLabel(false));
    QVERIFY(runControlState(factsOf("running")).startLabel != startLabel(true));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::RunControlStateTest)
#include "RunControlStateTest.moc"
