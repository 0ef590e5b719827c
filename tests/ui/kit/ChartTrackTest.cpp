#include "ui/kit/ChartTrack.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <random>

using namespace zorel::ui::kit;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// The extent of the points whose steps lie in the range, found by looking at each.
std::optional<ChartTrack::Extent> plainExtent(const ChartTrack &track, ChartRange steps)
{
    std::optional<ChartTrack::Extent> found;
    for (std::uint64_t ordinal = track.firstOrdinal(); ordinal < track.endOrdinal(); ++ordinal) {
        const ChartPoint point = track.at(ordinal);
        const auto step = static_cast<double>(point.step);
        if (step < steps.low || step > steps.high) {
            continue;
        }
        if (!found) {
            found = ChartTrack::Extent{{step, step}, {}, 0, false};
        }
        found->steps = {std::min(found->steps.low, step), std::max(found->steps.high, step)};
        if (!track.canDraw(ordinal)) {
            continue;
        }
        if (!found->hasValues || point.value < found->values.low) {
            found->values.low = point.value;
            found->lowest = ordinal;
        }
        found->values.high = found->hasValues ? std::max(found->values.high, point.value) : point.value;
        found->hasValues = true;
    }
    return found;
}

constexpr ChartRange everyStep{-infinite, infinite};

} // namespace

class ChartTrackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyHasNoExtent();
    void extentEqualsALookAtEachPoint_data();
    void extentEqualsALookAtEachPoint();
    void spikeIsInTheExtent_data();
    void spikeIsInTheExtent();
    void droppingKeepsTheRest();
    void droppingMoreThanThereIsEmpties();
    void pointsStayInListOrder();
    void memoryOfACappedListIsBounded();
    void logarithmicScaleOmitsZeroAndBelow();
    void scaleCanChangeAfterDropping();
    void turnsAreCounted();
    void walkVisitsEveryPointOnce_data();
    void walkVisitsEveryPointOnce();
    void clearStartsAnew();
};

void ChartTrackTest::emptyHasNoExtent()
{
    const ChartTrack track;
    QVERIFY(!track.extent());
    QVERIFY(!track.extent(everyStep));
    QVERIFY(track.isEmpty());
}

void ChartTrackTest::extentEqualsALookAtEachPoint_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("dropped");
    QTest::addColumn<bool>("sorted");
    for (const int count : {1, 15, 16, 17, 255, 256, 257, 4096, 5000, 70000}) {
        for (const int dropped : {0, 1, 15, 16, 300, 4096}) {
            if (dropped < count) {
                QTest::addRow("%d of %d, sorted", dropped, count) << count << dropped << true;
                QTest::addRow("%d of %d, to and fro", dropped, count) << count << dropped << false;
            }
        }
    }
}

void ChartTrackTest::extentEqualsALookAtEachPoint()
{
    QFETCH(int, count);
    QFETCH(int, dropped);
    QFETCH(bool, sorted);
    std::mt19937 random(42);
    std::uniform_real_distribution<double> value(-5, 5);
    std::uniform_int_distribution<int> anyStep(0, count);
    ChartTrack track;
    for (int step = 0; step < count; ++step) {
        const double one = step % 37 == 5 ? notANumber : value(random);
        track.append({sorted ? step : anyStep(random), one});
    }
    track.dropOldest(static_cast<std::size_t>(dropped));
    QCOMPARE(track.size(), static_cast<std::size_t>(count - dropped));
    for (const ChartRange steps : {everyStep, ChartRange{count * 0.3, count * 0.7}, ChartRange{2.5, 2.5},
                                   ChartRange{0, count * 0.9}, ChartRange{count + 5.0, count + 9.0}}) {
        const auto found = track.extent(steps);
        const auto expected = plainExtent(track, steps);
        QCOMPARE(found.has_value(), expected.has_value());
        if (expected) {
            QCOMPARE(found->steps, expected->steps);
            QCOMPARE(found->hasValues, expected->hasValues);
            if (expected->hasValues) {
                QCOMPARE(found->values, expected->values);
                QCOMPARE(found->lowest, expected->lowest);
            }
        }
    }
}

void ChartTrackTest::spikeIsInTheExtent_data()
{
    QTest::addColumn<int>("at");
    for (const int at : {0, 1, 499'999, 524'288, 999'998, 999'999}) {
        QTest::addRow("%d", at) << at;
    }
}

void ChartTrackTest::spikeIsInTheExtent()
{
    QFETCH(int, at);
    ChartTrack track;
    for (int step = 0; step < 1'000'000; ++step) {
        track.append({step, step == at ? 1e6 : 2.0});
    }
    QCOMPARE(track.extent()->values, (ChartRange{2, 1e6}));
}

void ChartTrackTest::droppingKeepsTheRest()
{
    ChartTrack track;
    for (int step = 0; step < 10'000; ++step) {
        track.append({step, 10'000.0 - step});
        if (track.size() > 4000) {
            track.dropOldest(1);
        }
    }
    QCOMPARE(track.size(), std::size_t{4000});
    QCOMPARE(track.points().front().step, std::int64_t{6000});
    QCOMPARE(track.points().back().step, std::int64_t{9999});
    QCOMPARE(track.firstOrdinal(), std::uint64_t{6000});
    QCOMPARE(track.at(7000).step, std::int64_t{7000});
    QCOMPARE(track.extent()->steps, (ChartRange{6000, 9999}));
    QCOMPARE(track.extent()->values, (ChartRange{1, 4000}));
}

void ChartTrackTest::droppingMoreThanThereIsEmpties()
{
    ChartTrack track;
    track.append({1, 1});
    track.append({2, notANumber});
    track.dropOldest(10);
    QVERIFY(track.isEmpty());
    QCOMPARE(track.omittedCount(), std::size_t{0});
    track.append({3, 3});
    QCOMPARE(track.points().front(), (ChartPoint{3, 3}));
    QCOMPARE(track.extent()->steps, (ChartRange{3, 3}));
}

void ChartTrackTest::pointsStayInListOrder()
{
    ChartTrack track;
    const std::vector<ChartPoint> points{{5, 1}, {9, 2}, {9, 2}, {3, 4}, {4, 1}};
    for (const ChartPoint &point : points) {
        track.append(point);
    }
    QVERIFY(std::equal(points.begin(), points.end(), track.points().begin(), track.points().end()));
}

void ChartTrackTest::memoryOfACappedListIsBounded()
{
    ChartTrack track;
    std::size_t most = 0;
    for (int step = 0; step < 100'000; ++step) {
        track.append({step, 1});
        if (track.size() > 4000) {
            track.dropOldest(1);
        }
        most = std::max(most, track.heldCount());
    }
    QVERIFY(most <= 8001);
}

void ChartTrackTest::logarithmicScaleOmitsZeroAndBelow()
{
    ChartTrack track(ChartScaleKind::Logarithmic);
    for (const double value : {0.0, -1.0, 0.5, 3.0, infinite, notANumber}) {
        track.append({1, value});
    }
    QCOMPARE(track.omittedCount(), std::size_t{4});
    QCOMPARE(track.extent()->values, (ChartRange{0.5, 3}));
    track.setScale(ChartScaleKind::Linear);
    QCOMPARE(track.omittedCount(), std::size_t{2});
    QCOMPARE(track.extent()->values, (ChartRange{-1, 3}));
}

void ChartTrackTest::scaleCanChangeAfterDropping()
{
    ChartTrack track;
    for (int step = 0; step < 5003; ++step) {
        track.append({step, step - 4990.0});
    }
    track.dropOldest(777);
    track.setScale(ChartScaleKind::Logarithmic);
    QCOMPARE(track.firstOrdinal(), std::uint64_t{777});
    QCOMPARE(track.at(777).step, std::int64_t{777});
    for (int step = 5003; step < 9000; ++step) {
        track.append({step, 1000.0 + step});
    }
    const auto found = track.extent();
    QCOMPARE(found->values, plainExtent(track, everyStep)->values);
    QCOMPARE(found->steps, plainExtent(track, everyStep)->steps);
    QCOMPARE(found->lowest, std::uint64_t{4991});
    QCOMPARE(track.extent({6000, 7000})->values, (ChartRange{7000, 8000}));
}

void ChartTrackTest::turnsAreCounted()
{
    ChartTrack track;
    for (const int step : {1, 2, 3, 2, 3, 3, 1}) {
        track.append({step, 1});
    }
    QCOMPARE(track.turnCount(), std::size_t{2});
    track.dropOldest(2);
    QCOMPARE(track.turnCount(), std::size_t{2});
    track.dropOldest(1);
    QCOMPARE(track.turnCount(), std::size_t{1});
    track.dropOldest(4);
    QCOMPARE(track.turnCount(), std::size_t{0});
}

void ChartTrackTest::walkVisitsEveryPointOnce_data()
{
    QTest::addColumn<int>("coarsest");
    QTest::newRow("points only") << -1;
    QTest::newRow("smallest blocks") << 0;
    QTest::newRow("all blocks") << ChartPyramid::levelCount;
}

void ChartTrackTest::walkVisitsEveryPointOnce()
{
    QFETCH(int, coarsest);
    ChartTrack track;
    for (int step = 0; step < 9000; ++step) {
        track.append({step, 1});
    }
    track.dropOldest(33);
    std::uint64_t next = 33;
    bool inOrder = true;
    track.walk(
        [&](const ChartPyramid::Block &block, int level, std::uint64_t ordinal) {
            if (level > coarsest) {
                return false;
            }
            inOrder = inOrder && ordinal == next && block.firstStep == static_cast<std::int64_t>(ordinal);
            next = ordinal + ChartPyramid::pointsPerBlock(level);
            return true;
        },
        [&](std::uint64_t first, std::uint64_t end) {
            inOrder = inOrder && first == next && end > first;
            next = end;
        });
    QVERIFY(inOrder);
    QCOMPARE(next, std::uint64_t{9000});
}

void ChartTrackTest::clearStartsAnew()
{
    ChartTrack track(ChartScaleKind::Logarithmic);
    for (int step = 0; step < 100; ++step) {
        track.append({step, -1});
    }
    track.clear();
    QVERIFY(track.isEmpty());
    QCOMPARE(track.omittedCount(), std::size_t{0});
    QCOMPARE(track.endOrdinal(), std::uint64_t{0});
    track.append({7, 7});
    QCOMPARE(track.extent()->values, (ChartRange{7, 7}));
}

QTEST_APPLESS_MAIN(ChartTrackTest)
#include "ChartTrackTest.moc"
