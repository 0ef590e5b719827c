#include "ui/kit/Figure.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/FigureValue.h"
#include "ui/kit/TextLabel.h"

#include <QApplication>
#include <QHBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class FigureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void beginsWithADash();
    void tellsLabelAndValue();
    void doesNotMoveItsNeighbours();
    void keepsRoomForItsSample();
    void costsNoLayoutWhenItChanges();
    void drawsItsValue();
    void staysNarrowWithALongValue();
    void followsTheFont();
};

namespace {

class LayoutCounter : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::LayoutRequest ? 1 : 0;
        return false;
    }
};

} // namespace

void FigureTest::beginsWithADash()
{
    const Figure figure(QStringLiteral("Loss"));
    QCOMPARE(figure.value(), QStringLiteral("—"));
}

void FigureTest::tellsLabelAndValue()
{
    Figure figure(QStringLiteral("Loss"));
    figure.setValue(QStringLiteral("2.3457"));
    QCOMPARE(spoken(&figure).role(), QAccessible::Grouping);
    QCOMPARE(spokenName(&figure), QStringLiteral("Loss: 2.3457"));
    QStringList names;
    for (int index = 0; index < spoken(&figure).childCount(); ++index) {
        names.append(spoken(&figure).child(index)->text(QAccessible::Name));
    }
    QVERIFY(names.contains(QStringLiteral("Loss")));
    QVERIFY(names.contains(QStringLiteral("2.3457")));
    figure.setLabel(QStringLiteral("Val loss"));
    QCOMPARE(spokenName(&figure), QStringLiteral("Val loss: 2.3457"));
    QCOMPARE(figure.label(), QStringLiteral("Val loss"));
}

void FigureTest::doesNotMoveItsNeighbours()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *first = new Figure(QStringLiteral("L"));
    auto *second = new Figure(QStringLiteral("R"));
    layout->addWidget(first);
    layout->addWidget(second);
    layout->addStretch(1);
    first->setValue(QStringLiteral("1000.0000"));
    showAt(window, {600, 80});
    const int place = second->x();
    for (const QString &value :
         {QStringLiteral("9.1111"), QStringLiteral("1111.1111"), QStringLiteral("—")}) {
        first->setValue(value);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QCOMPARE(second->x(), place);
    }
}

void FigureTest::keepsRoomForItsSample()
{
    Figure figure(QStringLiteral("L"), QStringLiteral("100,000"));
    const int room = figure.sizeHint().width();
    figure.setValue(QStringLiteral("100,000"));
    QCOMPARE(figure.sizeHint().width(), room);
    QVERIFY(Figure(QStringLiteral("L")).sizeHint().width() < room);
    QCOMPARE(Figure(QStringLiteral("L"), QStringLiteral("100,000")).value(), QStringLiteral("—"));
}

void FigureTest::costsNoLayoutWhenItChanges()
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *figure = new Figure(QStringLiteral("Loss"));
    layout->addWidget(figure);
    figure->setValue(QStringLiteral("8.8888"));
    showAt(window, {300, 80});
    QCoreApplication::sendPostedEvents();
    LayoutCounter layouts;
    window.installEventFilter(&layouts);
    for (int step = 0; step < 100; ++step) {
        figure->setValue(QString::number(1.0001 + step / 1000.0, 'f', 4));
        QCoreApplication::processEvents();
    }
    QCOMPARE(layouts.count, 0);
    figure->setValue(QStringLiteral("123456789.8888"));
    QTRY_VERIFY(layouts.count > 0);
}

void FigureTest::drawsItsValue()
{
    Figure figure(QStringLiteral("Loss"));
    showAt(figure, {200, 60});
    const QImage before = picture(figure);
    figure.setValue(QStringLiteral("2.3457"));
    QVERIFY(picture(figure) != before);
}

void FigureTest::staysNarrowWithALongValue()
{
    Figure figure(QString(10'000, QLatin1Char('m')));
    figure.setValue(QStringLiteral("1\n").repeated(5000));
    QVERIFY(figure.minimumSizeHint().width() < 150);
    showAt(figure, {100, 60});
    QVERIFY(!picture(figure).isNull());
}

void FigureTest::followsTheFont()
{
    Figure figure(QStringLiteral("Loss"));
    figure.setValue(QStringLiteral("2.3457"));
    const QSize before = figure.findChild<FigureValue *>()->sizeHint();
    const QFont font = QApplication::font();
    QFont large = font;
    large.setPointSizeF(2 * font.pointSizeF());
    QApplication::setFont(large);
    QTRY_VERIFY(figure.findChild<FigureValue *>()->sizeHint().width() > 1.5 * before.width());
    QApplication::setFont(font);
    QTRY_COMPARE(figure.findChild<FigureValue *>()->sizeHint(), before);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::FigureTest)
#include "FigureTest.moc"
