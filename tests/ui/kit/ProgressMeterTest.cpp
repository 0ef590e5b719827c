#include "ui/kit/ProgressMeter.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/Colors.h"

#include <QAbstractEventDispatcher>
#include <QVBoxLayout>

#include <cmath>
#include <limits>

namespace zorel::tests {

using namespace ui::kit;

class ProgressMeterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fillsInProportion();
    void fillsFromTheRightWhereTextDoes();
    void cutsWhatLiesOutside();
    void tellsItsValue();
    void movesWhileUnknown();
    void hasNoTimerWhenKnown();
    void hasNoTimerWhenHidden();
};

namespace {

bool hasTimer(QObject *object)
{
    return !QAbstractEventDispatcher::instance()->registeredTimers(object).isEmpty();
}

} // namespace

void ProgressMeterTest::fillsInProportion()
{
    ProgressMeter meter;
    showAt(meter, {400, 6});
    const QColor fill = color(ColorRole::AccentFill, meter.palette());
    int before = 0;
    for (const double fraction : {0.25, 0.5, 1.0}) {
        meter.setFraction(fraction);
        const int filled = pixelsOf(picture(meter), fill);
        QVERIFY(std::abs(filled - fraction * 400 * 6) < 60);
        QVERIFY(filled > before);
        before = filled;
    }
    meter.setFraction(0);
    QCOMPARE(pixelsOf(picture(meter), fill), 0);
}

void ProgressMeterTest::fillsFromTheRightWhereTextDoes()
{
    ProgressMeter meter;
    meter.setLayoutDirection(Qt::RightToLeft);
    meter.setFraction(0.5);
    showAt(meter, {400, 6});
    const QColor fill = color(ColorRole::AccentFill, meter.palette());
    QCOMPARE(picture(meter).pixelColor(300, 3).rgb(), fill.rgb());
    QVERIFY(picture(meter).pixelColor(100, 3).rgb() != fill.rgb());
}

void ProgressMeterTest::cutsWhatLiesOutside()
{
    ProgressMeter meter;
    meter.setFraction(7);
    QCOMPARE(meter.fraction(), 1.0);
    meter.setFraction(-1);
    QCOMPARE(meter.fraction(), 0.0);
    meter.setFraction(std::numeric_limits<double>::infinity());
    QCOMPARE(meter.fraction(), 1.0);
    meter.setFraction(std::nan(""));
    QVERIFY(!meter.fraction());
}

void ProgressMeterTest::tellsItsValue()
{
    ProgressMeter meter(QStringLiteral("Preparing data"));
    QCOMPARE(spoken(&meter).role(), QAccessible::ProgressBar);
    QCOMPARE(spokenName(&meter), QStringLiteral("Preparing data"));
    meter.setFraction(0.5);
    QAccessibleValueInterface *value = spoken(&meter).valueInterface();
    QVERIFY(value);
    QCOMPARE(value->currentValue().toInt(), 500);
    QCOMPARE(value->maximumValue().toInt(), 1000);
}

void ProgressMeterTest::movesWhileUnknown()
{
    ProgressMeter meter;
    showAt(meter, {400, 6});
    const QImage before = picture(meter);
    QTRY_VERIFY(picture(meter) != before);
}

void ProgressMeterTest::hasNoTimerWhenKnown()
{
    ProgressMeter meter;
    showAt(meter, {400, 6});
    QTRY_VERIFY(hasTimer(&meter));
    meter.setFraction(0.3);
    QTRY_VERIFY(!hasTimer(&meter));
    meter.repaint();
    QVERIFY(!hasTimer(&meter));
}

void ProgressMeterTest::hasNoTimerWhenHidden()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *meter = new ProgressMeter;
    layout->addWidget(meter);
    QVERIFY(!hasTimer(meter));
    showAt(window, {400, 60});
    QTRY_VERIFY(hasTimer(meter));
    meter->hide();
    QTRY_VERIFY(!hasTimer(meter));
    meter->show();
    QTRY_VERIFY(hasTimer(meter));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ProgressMeterTest)
#include "ProgressMeterTest.moc"
