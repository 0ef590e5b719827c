#include "ui/kit/Painting.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <cstdlib>

using namespace zorel::ui::kit;

namespace {

constexpr QSize imageSize(120, 80);

template <typename Paint>
QImage painted(qreal ratio, Paint &&paint)
{
    QImage image(imageSize * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(QColor(10, 200, 90));
    QPainter painter(&image);
    paint(painter);
    return image;
}

/// Of any channel of any pixel.
int largestDifference(const QImage &one, const QImage &other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QColor a = one.pixelColor(x, y);
            const QColor b = other.pixelColor(x, y);
            largest = std::max({largest, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                                std::abs(a.blue() - b.blue())});
        }
    }
    return largest;
}

} // namespace

class PaintingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void panelLooksAsDrawnInOnePiece_data();
    void panelLooksAsDrawnInOnePiece();
};

void PaintingTest::panelLooksAsDrawnInOnePiece_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<qreal>("radius");
    QTest::addColumn<QColor>("fill");
    QTest::addColumn<QColor>("border");
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<QPointF>("offset");
    const QRectF card(3, 4, 100, 60);
    const QColor paper(250, 250, 250);
    const QColor line(60, 60, 60);
    const QColor glass(200, 30, 30, 100);
    QTest::newRow("card") << card << 10.0 << paper << line << 1.0 << QPointF();
    QTest::newRow("without a line") << card << 10.0 << paper << QColor() << 1.0 << QPointF();
    QTest::newRow("twice the pixels") << card << 10.0 << paper << line << 2.0 << QPointF();
    QTest::newRow("one and a half the pixels") << card << 10.0 << paper << line << 1.5 << QPointF();
    QTest::newRow("moved") << card << 6.0 << paper << line << 1.0 << QPointF(7, 9);
    QTest::newRow("moved between pixels") << card << 6.0 << paper << line << 1.0 << QPointF(0.5, 0.25);
    QTest::newRow("between pixels") << QRectF(3.5, 4.25, 90, 50) << 6.0 << paper << line << 1.0 << QPointF();
    QTest::newRow("broken radius") << card << 5.5 << paper << line << 1.0 << QPointF();
    QTest::newRow("pill") << QRectF(3, 4, 60, 20) << 10.0 << paper << line << 1.0 << QPointF();
    QTest::newRow("disc") << QRectF(3, 4, 9, 9) << 4.5 << paper << QColor() << 1.0 << QPointF();
    QTest::newRow("tiny") << QRectF(3, 4, 3, 2) << 6.0 << paper << line << 1.0 << QPointF();
    QTest::newRow("translucent") << card << 10.0 << glass << line << 1.0 << QPointF();
    QTest::newRow("translucent line") << card << 10.0 << paper << glass << 1.0 << QPointF();
}

void PaintingTest::panelLooksAsDrawnInOnePiece()
{
    QFETCH(QRectF, rect);
    QFETCH(qreal, radius);
    QFETCH(QColor, fill);
    QFETCH(QColor, border);
    QFETCH(qreal, ratio);
    QFETCH(QPointF, offset);
    const QImage panel = painted(ratio, [&](QPainter &painter) {
        painter.translate(offset);
        paintPanel(painter, rect, radius, fill, border);
    });
    const QImage onePiece = painted(ratio, [&](QPainter &painter) {
        painter.translate(offset);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(fill);
        painter.setPen(border.isValid() ? QPen(border, 1) : QPen(Qt::NoPen));
        const qreal inset = border.isValid() ? 0.5 : 0;
        painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
    });
    // Mixing a corner in two steps rounds twice.
    const int difference = largestDifference(panel, onePiece);
    QVERIFY2(difference <= 2, qPrintable(QString::number(difference)));
}

QTEST_MAIN(PaintingTest)
#include "PaintingTest.moc"
