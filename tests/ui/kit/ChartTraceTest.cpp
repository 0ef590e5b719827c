#include "ui/kit/ChartTrace.h"

#include "tests/ui/kit/ChartPlot.h"
#include "ui/kit/LineRaster.h"

#include <QImage>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <random>

using namespace zorel::tests;
using namespace zorel::ui::kit;

namespace {

QImage blank()
{
    QImage image(plotSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage traced(const ChartTrack &track, const ChartProjection &projection)
{
    QImage image = blank();
    LineRaster raster(image, image.rect());
    raster.setPen(Qt::black, 2, LinePattern::Solid);
    traceLine(track, projection, raster);
    return image;
}

/// Every point handed over, none left out.
QImage plainlyTraced(const ChartTrack &track, const ChartProjection &projection)
{
    QImage image = blank();
    LineRaster raster(image, image.rect());
    raster.setPen(Qt::black, 2, LinePattern::Solid);
    bool isBegun = false;
    for (std::uint64_t ordinal = track.firstOrdinal(); ordinal < track.endOrdinal(); ++ordinal) {
        const double x = projection.x(static_cast<double>(track.at(ordinal).step));
        const double y = projection.y(track.at(ordinal).value);
        const bool goesBack =
            ordinal > track.firstOrdinal() && track.at(ordinal).step < track.at(ordinal - 1).step;
        if (!track.canDraw(ordinal)) {
            isBegun = false;
        } else if (isBegun && !goesBack) {
            raster.lineTo(x, y);
        } else {
            raster.moveTo(x, y);
            isBegun = true;
        }
    }
    raster.finish();
    return image;
}

/// The greatest difference of two pixels' opacities.
int difference(const QImage &first, const QImage &second)
{
    int most = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            most = std::max(most, std::abs(qAlpha(first.pixel(x, y)) - qAlpha(second.pixel(x, y))));
        }
    }
    return most;
}

int opacity(const QImage &image, int x, int y)
{
    return qAlpha(image.pixel(x, y));
}

ChartTrack noise(int count)
{
    std::mt19937 random(7);
    std::normal_distribution<double> value(3, 0.4);
    ChartTrack track;
    for (int step = 0; step < count; ++step) {
        track.append({step, value(random)});
    }
    return track;
}

} // namespace

class ChartTraceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavingPointsOutChangesNothing_data();
    void leavingPointsOutChangesNothing();
    void oneSampleSpikeIsPainted_data();
    void oneSampleSpikeIsPainted();
    void zoomedLineEntersAndLeavesWhereItShould();
    void whereStepsGoBackAnotherLineBegins();
    void manyRunsAreDrawnOneByOne_data();
    void manyRunsAreDrawnOneByOne();
    void gapsInterruptTheLine();
    void gapBetweenBlocksIsAGap();
    void pointBetweenGapsIsADot();
    void toAndFroShowsTheExtremes();
};

void ChartTraceTest::leavingPointsOutChangesNothing_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {1, 2, 3, 50, 1000, 4000, 50'000}) {
        QTest::addRow("%d", count) << count;
    }
}

void ChartTraceTest::leavingPointsOutChangesNothing()
{
    QFETCH(int, count);
    const ChartTrack track = noise(count);
    const ChartProjection projection = projectionOf(track);
    // Within a column a line between two points may bulge by what a quarter of a pixel's slope is.
    QVERIFY(difference(traced(track, projection), plainlyTraced(track, projection)) <= 3);
}

void ChartTraceTest::oneSampleSpikeIsPainted_data()
{
    QTest::addColumn<int>("at");
    QTest::addColumn<double>("value");
    for (const int at : {0, 1, 333'333, 524'287, 524'288, 999'999}) {
        QTest::addRow("up at %d", at) << at << 100.0;
        QTest::addRow("down at %d", at) << at << -100.0;
    }
}

void ChartTraceTest::oneSampleSpikeIsPainted()
{
    QFETCH(int, at);
    QFETCH(double, value);
    ChartTrack track;
    for (int step = 0; step < 1'000'000; ++step) {
        track.append({step, step == at ? value : 2 + 0.01 * (step % 3)});
    }
    const ChartProjection projection = projectionOf(track);
    const QImage image = traced(track, projection);
    const int x = std::clamp(static_cast<int>(projection.x(at)), 0, plotSize.width() - 1);
    const double tip = projection.y(value);
    const int y = static_cast<int>(value > 0 ? tip + 2 : tip - 2);
    int darkest = 0;
    for (int beside = std::max(0, x - 1); beside <= std::min(plotSize.width() - 1, x + 1); ++beside) {
        darkest = std::max(darkest, opacity(image, beside, y));
    }
    QVERIFY2(darkest > 120, qPrintable(QString::number(darkest)));
}

void ChartTraceTest::zoomedLineEntersAndLeavesWhereItShould()
{
    ChartTrack track;
    for (int step = 0; step <= 100'000; ++step) {
        track.append({step, static_cast<double>(step)});
    }
    // Between two points, so that both ends of what is seen lie outside.
    const ChartProjection projection{ChartScale({50'000.2, 50'000.8}), ChartScale({50'000.2, 50'000.8}),
                                     plotSize};
    const QImage image = traced(track, projection);
    QVERIFY(opacity(image, 0, 99) > 200);
    QVERIFY(opacity(image, 150, 49) > 200);
    QVERIFY(opacity(image, 299, 0) > 200);
    QCOMPARE(opacity(image, 10, 10), 0);
}

void ChartTraceTest::whereStepsGoBackAnotherLineBegins()
{
    ChartTrack track;
    for (const ChartPoint point :
         {ChartPoint{0, 0}, ChartPoint{100, 0}, ChartPoint{0, 10}, ChartPoint{100, 10}}) {
        track.append(point);
    }
    const ChartProjection projection{ChartScale({0, 100}), ChartScale({-1, 11}), plotSize};
    const QImage image = traced(track, projection);
    QCOMPARE(difference(image, plainlyTraced(track, projection)), 0);
    QVERIFY(opacity(image, 150, static_cast<int>(projection.y(0))) > 100);
    QVERIFY(opacity(image, 150, static_cast<int>(projection.y(10))) > 100);
    QCOMPARE(opacity(image, 150, static_cast<int>(projection.y(5))), 0); // nothing leads back
}

void ChartTraceTest::manyRunsAreDrawnOneByOne_data()
{
    QTest::addColumn<int>("runs");
    QTest::addColumn<int>("points");
    QTest::newRow("of fewer points than columns") << 3 << 100;
    QTest::newRow("of whole blocks in a column") << 3 << 1'000'000;
    QTest::newRow("a hundred") << 100 << 500;
}

void ChartTraceTest::manyRunsAreDrawnOneByOne()
{
    QFETCH(int, runs);
    QFETCH(int, points);
    ChartTrack track;
    for (int run = 0; run < runs; ++run) {
        for (int point = 0; point < points; ++point) {
            // Falls and stays low: a line from the end to the next start would cross the upper half.
            track.append({point, point < points / 10 ? 10.0 - 100.0 * point / points : 0.0});
        }
    }
    const ChartProjection projection = projectionOf(track);
    const QImage image = traced(track, projection);
    QVERIFY(opacity(image, 5, static_cast<int>(projection.y(8.5))) > 50);
    QVERIFY(opacity(image, 200, static_cast<int>(projection.y(0)) - 1) > 100);
    QCOMPARE(opacity(image, 150, static_cast<int>(projection.y(5))), 0);
}

void ChartTraceTest::gapsInterruptTheLine()
{
    ChartTrack track;
    for (int step = 0; step <= 300; ++step) {
        track.append({step, step > 100 && step < 200 ? notANumber : 5.0});
    }
    const ChartProjection projection = projectionOf(track);
    const QImage image = traced(track, projection);
    QVERIFY(opacity(image, 50, 49) > 200);
    QCOMPARE(opacity(image, 150, 49), 0);
    QVERIFY(opacity(image, 250, 49) > 200);
}

void ChartTraceTest::gapBetweenBlocksIsAGap()
{
    // Each column of the raster holds whole blocks; the points that cannot be drawn are at a border of two.
    ChartTrack track;
    constexpr int count = 256 * 1200;
    constexpr int middle = count / 2;
    for (int step = 0; step < count; ++step) {
        const bool isGap = step >= middle - 2560 && step < middle + 2560;
        track.append({step, isGap ? notANumber : 5.0});
    }
    const QImage image = traced(track, projectionOf(track));
    QCOMPARE(opacity(image, 150, 49), 0);
    QVERIFY(opacity(image, 140, 49) > 200);
    QVERIFY(opacity(image, 160, 49) > 200);
}

void ChartTraceTest::pointBetweenGapsIsADot()
{
    ChartTrack track;
    for (const double value : {5.0, notANumber, 5.0, notANumber, 5.0}) {
        track.append({static_cast<std::int64_t>(track.size()), value});
    }
    const QImage image = traced(track, projectionOf(track));
    QVERIFY(opacity(image, 150, 50) > 200);
    QVERIFY(opacity(image, 153, 50) > 100);
    QCOMPARE(opacity(image, 100, 50), 0);
}

void ChartTraceTest::toAndFroShowsTheExtremes()
{
    ChartTrack track;
    for (int i = 0; i < 200'000; ++i) {
        track.append({i % 2 == 0 ? i / 2 : 100'000 - i / 2, i == 123'456 ? 50.0 : i == 50'000 ? -50.0 : 0.0});
    }
    const ChartProjection projection = projectionOf(track);
    const QImage image = traced(track, projection);
    const auto darkestIn = [&image](double y) {
        int darkest = 0;
        for (int x = 0; x < image.width(); ++x) {
            darkest = std::max(darkest, opacity(image, x, static_cast<int>(y)));
        }
        return darkest;
    };
    QVERIFY(darkestIn(projection.y(50) + 1) > 100);
    QVERIFY(darkestIn(projection.y(-50) - 1) > 100);
}

QTEST_APPLESS_MAIN(ChartTraceTest)
#include "ChartTraceTest.moc"
