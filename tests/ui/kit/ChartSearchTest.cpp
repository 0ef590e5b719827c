#include "ui/kit/ChartSearch.h"

#include "tests/ui/kit/ChartPlot.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <random>

using namespace zorel::tests;
using namespace zorel::ui::kit;

class ChartSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nearestEqualsALookAtEachPoint_data();
    void nearestEqualsALookAtEachPoint();
    void nearestStepIsTheNewestOfSeveral_data();
    void nearestStepIsTheNewestOfSeveral();
    void nearestOfNothing();
    void nearestOfEqualPointsIsFoundAtOnce();
};

void ChartSearchTest::nearestEqualsALookAtEachPoint_data()
{
    QTest::addColumn<bool>("sorted");
    QTest::newRow("steps that grow") << true;
    QTest::newRow("steps to and fro") << false;
}

void ChartSearchTest::nearestEqualsALookAtEachPoint()
{
    QFETCH(bool, sorted);
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(-1, 1);
    std::uniform_int_distribution<int> anyStep(0, 20'000);
    ChartTrack track;
    for (int step = 0; step < 20'000; ++step) {
        track.append({sorted ? step : anyStep(random), step % 11 == 0 ? notANumber : value(random)});
    }
    track.dropOldest(777);
    const ChartProjection projection = projectionOf(track);
    const auto costOf = [&](std::uint64_t ordinal, QPointF at) {
        const ChartPoint &point = track.at(ordinal);
        return std::pair(std::floor(std::abs(projection.x(static_cast<double>(point.step)) - at.x())),
                         std::abs(projection.y(point.value) - at.y()));
    };
    for (const QPointF at :
         {QPointF(0, 0), QPointF(150, 50), QPointF(299, 99), QPointF(-50, 10), QPointF(77, 5)}) {
        auto best = std::pair(1e9, 1e9);
        for (std::uint64_t ordinal = track.firstOrdinal(); ordinal < track.endOrdinal(); ++ordinal) {
            if (track.canDraw(ordinal)) {
                best = std::min(best, costOf(ordinal, at));
            }
        }
        const auto found = nearestPoint(track, projection, at);
        QVERIFY(found && track.canDraw(*found));
        QCOMPARE(costOf(*found, at), best);
    }
}

void ChartSearchTest::nearestStepIsTheNewestOfSeveral_data()
{
    QTest::addColumn<int>("dropped");
    QTest::newRow("all points") << 0;
    QTest::newRow("the oldest dropped") << 5;
}

void ChartSearchTest::nearestStepIsTheNewestOfSeveral()
{
    QFETCH(int, dropped);
    // Four runs over the same steps, in full blocks.
    constexpr int runLength = 64;
    ChartTrack track;
    for (int point = 0; point < 4 * runLength; ++point) {
        track.append({point % runLength, point % 7 == 0 ? notANumber : 1.0});
    }
    track.dropOldest(static_cast<std::size_t>(dropped));
    for (int step = 0; step < runLength; ++step) {
        std::uint64_t newest = track.endOrdinal() - runLength + static_cast<std::uint64_t>(step);
        while (!track.canDraw(newest)) {
            newest -= runLength;
        }
        QCOMPARE(nearestStep(track, step), newest);
    }
}

void ChartSearchTest::nearestOfNothing()
{
    ChartTrack track;
    const ChartProjection projection{ChartScale(), ChartScale(), plotSize};
    QVERIFY(!nearestPoint(track, projection, {10, 10}));
    track.append({1, notANumber});
    QVERIFY(!nearestPoint(track, projection, {10, 10}));
}

void ChartSearchTest::nearestOfEqualPointsIsFoundAtOnce()
{
    ChartTrack track;
    for (int i = 0; i < 1'000'000; ++i) {
        track.append({5, 2.5});
    }
    const ChartProjection projection{ChartScale({0, 10}), ChartScale({0, 5}), plotSize};
    QVERIFY(nearestPoint(track, projection, {150, 50}));
}

QTEST_APPLESS_MAIN(ChartSearchTest)
#include "ChartSearchTest.moc"
