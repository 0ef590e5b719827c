#include "tests/updater/CheckerFixture.h"

using namespace zorel::tests;
using namespace zorel::updater;
using namespace std::chrono_literals;

class UpdateScheduleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingHappensBeforeTheStart();
    void theFirstCheckComesTwoSecondsAfterTheStart();
    void checksRepeatEveryDay();
    void aSecondStartSchedulesNothing();
    void theRealTimersWork();
};

void UpdateScheduleTest::nothingHappensBeforeTheStart()
{
    CheckerFixture fixture;
    QVERIFY(!fixture.checker().isChecking());
    QVERIFY(!fixture.checker().available());
    QVERIFY(!fixture.checker().presentedUpdate());
    QVERIFY(!fixture.checker().lastError());
    QVERIFY(!fixture.checker().lastCheckedAt());
    QVERIFY(fixture.checker().install().is<InstallState::Idle>());
    QVERIFY(fixture.timers.empty());
}

void UpdateScheduleTest::theFirstCheckComesTwoSecondsAfterTheStart()
{
    CheckerFixture fixture;
    fixture.checker().startSchedule();
    QCOMPARE(fixture.timers.size(), 1U);
    QCOMPARE(fixture.timers[0].delay, 2'000ms);
    QVERIFY(!fixture.timers[0].repeats);
    QVERIFY(!fixture.checker().isChecking());
    QVERIFY(fixture.service.requests().empty());
    fixture.timers[0].action();
    QVERIFY(fixture.checker().isChecking());
    QVERIFY(fixture.waitForCheck());
    QVERIFY(fixture.checker().available());
}

void UpdateScheduleTest::checksRepeatEveryDay()
{
    CheckerFixture fixture;
    QVERIFY(fixture.checkAutomatically());
    QCOMPARE(fixture.timers.size(), 2U);
    QCOMPARE(fixture.timers[1].delay, 86'400'000ms);
    QVERIFY(fixture.timers[1].repeats);
    for (std::size_t checks = 2; checks < 4; ++checks) {
        fixture.timers[1].action();
        QVERIFY(fixture.waitForCheck());
        QCOMPARE(fixture.service.requests().size(), checks);
    }
    QCOMPARE(fixture.timers.size(), 2U);
}

void UpdateScheduleTest::aSecondStartSchedulesNothing()
{
    CheckerFixture fixture;
    fixture.checker().startSchedule();
    fixture.checker().startSchedule();
    QCOMPARE(fixture.timers.size(), 1U);
    QVERIFY(fixture.checkAutomatically());
    fixture.checker().startSchedule();
    QCOMPARE(fixture.timers.size(), 2U);
    QCOMPARE(fixture.service.requests().size(), 1U);
}

void UpdateScheduleTest::theRealTimersWork()
{
    const UpdateChecker::Surroundings real = UpdateChecker::Surroundings::system({});
    int once = 0;
    int repeated = 0;
    QObject context;
    real.runAfter(1ms, &context, [&once] { ++once; });
    auto other = std::make_unique<QObject>();
    real.runAfter(1ms, other.get(), [&once] { once = 100; });
    other.reset();
    auto timer = real.runEvery(1ms, [&repeated] { ++repeated; });
    QTRY_VERIFY(once == 1 && repeated >= 2);
    timer.reset();
    const int before = repeated;
    int later = 0;
    const auto anotherTimer = real.runEvery(1ms, [&later] { ++later; });
    QTRY_VERIFY(later >= 5);
    QCOMPARE(repeated, before);
    QCOMPARE(once, 1);
}

QTEST_GUILESS_MAIN(UpdateScheduleTest)
#include "UpdateScheduleTest.moc"
