#include "ui/kit/LineRaster.h"

#include <QPainter>
#include <QPainterPath>
#include <QTest>

#include <cmath>
#include <cstdlib>

using namespace zorel::ui::kit;

namespace {

constexpr int width = 120;
constexpr int height = 60;

QImage blank()
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage drawn(const std::vector<QPointF> &points, double penWidth)
{
    QImage image = blank();
    LineRaster raster(image, image.rect());
    raster.setPen(Qt::black, penWidth, LinePattern::Solid);
    raster.moveTo(points.front().x(), points.front().y());
    for (std::size_t i = 1; i < points.size(); ++i) {
        raster.lineTo(points[i].x(), points[i].y());
    }
    raster.finish();
    return image;
}

/// The same by the toolkit's own strokes.
QImage expected(const std::vector<QPointF> &points, double penWidth)
{
    QImage image = blank();
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, penWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(points.data(), static_cast<int>(points.size()));
    return image;
}

int opacity(const QImage &image, int x, int y)
{
    return qAlpha(image.pixel(x, y));
}

double inkOf(const QImage &image)
{
    double ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ink += opacity(image, x, y) / 255.0;
        }
    }
    return ink;
}

} // namespace

class LineRasterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksLikeAStroke_data();
    void looksLikeAStroke();
    void dotIsRoundAndVisible();
    void nothingBeyondTheArea();
    void lineFromFarAwayIsCutOff();
    void colourIsBlendedOverWhatIsThere();
    void faintColourStaysFaintInADenseLine();
    void patternHasFaintGaps();
    void spikeInAGapOfThePatternIsSeen();
    void areaOfNoSizeIsHarmless();
};

void LineRasterTest::looksLikeAStroke_data()
{
    QTest::addColumn<QList<QPointF>>("points");
    QTest::newRow("level") << QList<QPointF>{{10, 30.5}, {110, 30.5}};
    QTest::newRow("slanted") << QList<QPointF>{{10, 10}, {110, 50}};
    QTest::newRow("steep") << QList<QPointF>{{50, 5}, {56, 55}};
    QTest::newRow("upright") << QList<QPointF>{{50.5, 5}, {50.5, 55}};
    QTest::newRow("corner") << QList<QPointF>{{10, 50}, {60, 10}, {110, 50}};
    QTest::newRow("to the left") << QList<QPointF>{{110, 50}, {60, 10}, {10, 30}};
    QTest::newRow("there and back") << QList<QPointF>{{10, 10}, {100, 20}, {20, 50}, {110, 45}};
    QTest::newRow("teeth") << QList<QPointF>{{10, 50}, {20, 10}, {30, 50}, {40, 10}, {50, 50}, {60, 10}};
}

void LineRasterTest::looksLikeAStroke()
{
    QFETCH(QList<QPointF>, points);
    const std::vector<QPointF> line(points.begin(), points.end());
    for (const double penWidth : {1.5, 2.0, 3.0}) {
        const QImage ours = drawn(line, penWidth);
        const QImage theirs = expected(line, penWidth);
        double difference = 0;
        int worst = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int pixel = std::abs(opacity(ours, x, y) - opacity(theirs, x, y));
                difference += pixel / 255.0;
                worst = std::max(worst, pixel);
            }
        }
        const double share = difference / inkOf(theirs);
        QVERIFY2(share < 0.10, qPrintable(QStringLiteral("%1 differ at %2").arg(share).arg(penWidth)));
        QVERIFY2(worst < 110, qPrintable(QStringLiteral("%1 at %2").arg(worst).arg(penWidth)));
    }
}

void LineRasterTest::dotIsRoundAndVisible()
{
    const QImage image = drawn({{60, 30}}, 2);
    QCOMPARE(opacity(image, 60, 30), 255);
    QCOMPARE(opacity(image, 63, 30), 255);
    QCOMPARE(opacity(image, 64, 34), 0); // outside the disc, inside its square
    QCOMPARE(opacity(image, 60, 36), 0);
    QCOMPARE(drawn({{60, 30}, {60, 30}, {60, 30}}, 2), image); // equal points are one
}

void LineRasterTest::nothingBeyondTheArea()
{
    QImage image = blank();
    LineRaster raster(image, QRect(20, 10, 60, 30));
    raster.setPen(Qt::black, 2, LinePattern::Solid);
    raster.moveTo(-50, -500);
    raster.lineTo(10, 15);
    raster.lineTo(20, 5000);
    raster.lineTo(30, -5000);
    raster.lineTo(500, 20);
    raster.finish();
    QVERIFY(inkOf(image) > 10);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (!QRect(20, 10, 60, 30).contains(x, y)) {
                QCOMPARE(opacity(image, x, y), 0);
            }
        }
    }
}

void LineRasterTest::lineFromFarAwayIsCutOff()
{
    // The line has the height that it has at the edge, not that of its far end.
    const QImage image = drawn({{-1e9, 30}, {1e9, 30}}, 2);
    QCOMPARE(opacity(image, 0, 29), 255);
    QCOMPARE(opacity(image, width - 1, 30), 255);
    QCOMPARE(opacity(image, 0, 10), 0);
    const QImage slanted = drawn({{-120, -60}, {240, 120}}, 2);
    QVERIFY(opacity(slanted, 0, 0) > 200);
    QVERIFY(opacity(slanted, 119, 59) > 200);
    QCOMPARE(opacity(slanted, 0, 30), 0);
}

void LineRasterTest::colourIsBlendedOverWhatIsThere()
{
    QImage image = blank();
    image.fill(Qt::white);
    LineRaster raster(image, image.rect());
    raster.setPen(QColor(255, 0, 0, 128), 4, LinePattern::Solid);
    raster.moveTo(0, 30);
    raster.lineTo(120, 30);
    raster.finish();
    const QColor middle = image.pixelColor(60, 30);
    QCOMPARE(middle.alpha(), 255);
    QVERIFY(std::abs(middle.red() - 255) <= 2);
    QVERIFY(std::abs(middle.green() - 127) <= 2);
    QCOMPARE(image.pixelColor(60, 5), QColor(Qt::white));
}

void LineRasterTest::faintColourStaysFaintInADenseLine()
{
    QImage image = blank();
    LineRaster raster(image, image.rect());
    raster.setPen(QColor(0, 0, 0, 80), 1.5, LinePattern::Solid);
    raster.moveTo(0, 5);
    for (int i = 1; i < 2000; ++i) {
        raster.lineTo(i * 0.06, i % 2 == 0 ? 5 : 55);
    }
    raster.finish();
    QVERIFY(std::abs(opacity(image, 60, 30) - 80) <= 1);
}

void LineRasterTest::patternHasFaintGaps()
{
    for (const LinePattern pattern : {LinePattern::Dashed, LinePattern::Dotted, LinePattern::DashDotted}) {
        QImage image = blank();
        LineRaster raster(image, image.rect());
        raster.setPen(Qt::black, 2, pattern);
        raster.moveTo(0, 30);
        raster.lineTo(120, 30);
        raster.finish();
        int full = 0;
        int faint = 0;
        for (int x = 2; x < width - 2; ++x) {
            full += opacity(image, x, 30) == 255 ? 1 : 0;
            faint += opacity(image, x, 30) > 40 && opacity(image, x, 30) < 128 ? 1 : 0;
        }
        QCOMPARE(full + faint, width - 4);
        QVERIFY(full > width / 3 && faint > width / 5);
    }
}

void LineRasterTest::spikeInAGapOfThePatternIsSeen()
{
    for (int x = 5; x < 100; ++x) {
        QImage image = blank();
        LineRaster raster(image, image.rect());
        raster.setPen(Qt::black, 2, LinePattern::Dashed);
        raster.moveTo(0, 50);
        raster.lineTo(x + 0.25, 50);
        raster.lineTo(x + 0.5, 5);
        raster.lineTo(x + 0.75, 50);
        raster.lineTo(120, 50);
        raster.finish();
        QVERIFY(opacity(image, x, 15) > 60);
    }
}

void LineRasterTest::areaOfNoSizeIsHarmless()
{
    QImage image = blank();
    for (const QRect area : {QRect(), QRect(10, 10, 0, 20), QRect(10, 10, 20, 0), QRect(500, 500, 20, 20)}) {
        LineRaster raster(image, area);
        raster.setPen(Qt::black, 2, LinePattern::Solid);
        raster.moveTo(0, 0);
        raster.lineTo(10, 10);
        raster.moveTo(5, 5);
        raster.finish();
    }
    QCOMPARE(inkOf(image), 0.0);
}

QTEST_APPLESS_MAIN(LineRasterTest)
#include "LineRasterTest.moc"
