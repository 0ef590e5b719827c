#include "ui/kit/ChartSeries.h"

#include <QTest>

#include <cmath>

using namespace zorel::ui::kit;

namespace {

std::vector<ChartPoint> wave(int count)
{
    std::vector<ChartPoint> points;
    for (int step = 0; step < count; ++step) {
        points.push_back({step, 3 + std::sin(step * 0.3)});
    }
    return points;
}

std::vector<ChartPoint> copyOf(std::span<const ChartPoint> points)
{
    return {points.begin(), points.end()};
}

} // namespace

class ChartSeriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void capacityKeepsTheNewest();
    void capacityHoldsWhenSetLater();
    void assigningReplaces();
    void smoothingOfAppendedEqualsThatOfAssigned();
    void appendingNeverRewritesWhatIsSmoothed();
    void droppingNeverRewritesWhatIsSmoothed();
    void smoothingKeepsTheRawPoints();
    void smoothedHasTheOrdinalsOfRaw();
    void clearedSmoothingKnowsNothingOfBefore();
    void scaleReachesBothLines();
};

void ChartSeriesTest::capacityKeepsTheNewest()
{
    ChartSeries series(QStringLiteral("Loss"));
    series.setCapacity(4000);
    series.setSmoothing(0.5);
    for (int step = 0; step < 9000; ++step) {
        series.append({step, 1});
    }
    QCOMPARE(series.raw().size(), std::size_t{4000});
    QCOMPARE(series.smoothed()->size(), std::size_t{4000});
    QCOMPARE(series.raw().points().front().step, std::int64_t{5000});
}

void ChartSeriesTest::capacityHoldsWhenSetLater()
{
    ChartSeries series({});
    series.assign(wave(100));
    series.setCapacity(10);
    QCOMPARE(series.raw().points().front().step, std::int64_t{90});
    series.assign(wave(50));
    QCOMPARE(series.raw().points().front().step, std::int64_t{40});
    QCOMPARE(series.raw().size(), std::size_t{10});
}

void ChartSeriesTest::assigningReplaces()
{
    ChartSeries series({});
    series.assign(wave(100));
    const std::vector<ChartPoint> other{{5, 1}, {4, 2}};
    series.assign(other);
    QCOMPARE(copyOf(series.raw().points()), other);
    series.assign({});
    QVERIFY(series.raw().isEmpty());
}

void ChartSeriesTest::smoothingOfAppendedEqualsThatOfAssigned()
{
    ChartSeries appended({});
    appended.setSmoothing(0.9);
    for (const ChartPoint &point : wave(500)) {
        appended.append(point);
    }
    ChartSeries assigned({});
    assigned.assign(wave(500));
    assigned.setSmoothing(0.9);
    QCOMPARE(copyOf(appended.smoothed()->points()), copyOf(assigned.smoothed()->points()));
}

void ChartSeriesTest::appendingNeverRewritesWhatIsSmoothed()
{
    ChartSeries series({});
    series.setSmoothing(0.95);
    series.assign(wave(300));
    const std::vector<ChartPoint> before = copyOf(series.smoothed()->points());
    for (int step = 300; step < 600; ++step) {
        series.append({step, 1000});
    }
    QCOMPARE(copyOf(series.smoothed()->points().first(300)), before);
}

void ChartSeriesTest::droppingNeverRewritesWhatIsSmoothed()
{
    ChartSeries series({});
    series.setSmoothing(0.95);
    series.assign(wave(3000));
    const std::vector<ChartPoint> before = copyOf(series.smoothed()->points().subspan(2000));
    series.dropOldest(2000);
    QCOMPARE(copyOf(series.smoothed()->points()), before);
}

void ChartSeriesTest::smoothingKeepsTheRawPoints()
{
    ChartSeries series({});
    series.assign(wave(100));
    QVERIFY(series.smoothed() == nullptr);
    series.setSmoothing(0.6);
    QCOMPARE(copyOf(series.raw().points()), wave(100));
    QVERIFY(series.smoothed() != nullptr);
    series.setSmoothing(0);
    QVERIFY(series.smoothed() == nullptr);
}

void ChartSeriesTest::smoothedHasTheOrdinalsOfRaw()
{
    ChartSeries series({});
    series.assign(wave(5000));
    series.dropOldest(1234);
    series.setSmoothing(0.6);
    QCOMPARE(series.smoothed()->firstOrdinal(), series.raw().firstOrdinal());
    QCOMPARE(series.smoothed()->at(4321).step, series.raw().at(4321).step);
}

void ChartSeriesTest::clearedSmoothingKnowsNothingOfBefore()
{
    ChartSeries series({});
    series.setSmoothing(0.9);
    series.append({1, 100});
    series.clear();
    series.append({2, 5});
    QCOMPARE(series.smoothed()->at(0).value, 5.0);
}

void ChartSeriesTest::scaleReachesBothLines()
{
    ChartSeries series({});
    series.setSmoothing(0.5);
    series.append({1, -1});
    series.append({2, 5});
    series.setScale(ChartScaleKind::Logarithmic);
    QCOMPARE(series.raw().omittedCount(), std::size_t{1});
    QCOMPARE(series.smoothed()->omittedCount(), std::size_t{1});
    series.setSmoothing(0.6);
    QCOMPARE(series.smoothed()->omittedCount(), std::size_t{1});
}

QTEST_APPLESS_MAIN(ChartSeriesTest)
#include "ChartSeriesTest.moc"
