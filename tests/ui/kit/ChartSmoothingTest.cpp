#include "ui/kit/ChartSmoothing.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <vector>

using namespace zorel::ui::kit;

class ChartSmoothingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstValueStandsForItself();
    void averageOfWhatCameBefore();
    void equalValuesStayEqual();
    void weightIsHeldInItsBounds_data();
    void weightIsHeldInItsBounds();
    void whatIsNotFiniteLeavesNoTrace();
    void goingBackInStepsStartsAnew();
    void largestNumbersStayFinite();
};

void ChartSmoothingTest::firstValueStandsForItself()
{
    ChartSmoothing smoothing(0.98);
    QCOMPARE(smoothing.next({0, 10.8}), 10.8);
}

void ChartSmoothingTest::averageOfWhatCameBefore()
{
    ChartSmoothing smoothing(0.5);
    smoothing.next({0, 8});
    // Weights 1/2 and 1, then 1/4, 1/2 and 1.
    QCOMPARE(smoothing.next({1, 2}), (8 * 0.5 + 2) / 1.5);
    QCOMPARE(smoothing.next({2, 5}), (8 * 0.25 + 2 * 0.5 + 5) / 1.75);
}

void ChartSmoothingTest::equalValuesStayEqual()
{
    ChartSmoothing smoothing(0.9);
    for (int step = 0; step < 1000; ++step) {
        QVERIFY(std::abs(smoothing.next({step, 2.5}) - 2.5) < 1e-12);
    }
}

void ChartSmoothingTest::weightIsHeldInItsBounds_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("held");
    QTest::newRow("negative") << -1.0 << 0.0;
    QTest::newRow("one") << 1.0 << ChartSmoothing::greatestWeight;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0.0;
    QTest::newRow("within") << 0.6 << 0.6;
}

void ChartSmoothingTest::weightIsHeldInItsBounds()
{
    QFETCH(double, given);
    QTEST(ChartSmoothing(given).weight(), "held");
}

void ChartSmoothingTest::whatIsNotFiniteLeavesNoTrace()
{
    ChartSmoothing with(0.8);
    ChartSmoothing without(0.8);
    with.next({0, 3});
    without.next({0, 3});
    QVERIFY(std::isnan(with.next({1, std::numeric_limits<double>::quiet_NaN()})));
    QCOMPARE(with.next({1, std::numeric_limits<double>::infinity()}),
             std::numeric_limits<double>::infinity());
    QCOMPARE(with.next({2, 4}), without.next({2, 4}));
}

void ChartSmoothingTest::goingBackInStepsStartsAnew()
{
    ChartSmoothing smoothing(0.9);
    smoothing.next({100, 2});
    smoothing.next({101, 2});
    QCOMPARE(smoothing.next({1, 10}), 10.0);
    QVERIFY(smoothing.next({1, 0}) > 0); // the same step is no other run
}

void ChartSmoothingTest::largestNumbersStayFinite()
{
    constexpr double largest = std::numeric_limits<double>::max();
    ChartSmoothing smoothing(0.99);
    for (int step = 0; step < 100; ++step) {
        QVERIFY(std::isfinite(smoothing.next({step, step % 3 == 0 ? -largest : largest})));
    }
}

QTEST_APPLESS_MAIN(ChartSmoothingTest)
#include "ChartSmoothingTest.moc"
