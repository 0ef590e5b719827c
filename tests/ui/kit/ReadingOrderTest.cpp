#include "ui/kit/ReadingOrder.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/ScrollPage.h"
#include "ui/kit/Sheet.h"

#include <QApplication>
#include <QGridLayout>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class ReadingOrderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsLayoutsNotBirthdays();
    void readsGridsRowByRow();
    void stopsOnceAtACompositeField();
    void followsWhatIsAddedLater();
    void ordersSheets();
    void goesBackAsItCame();
};

namespace {

QStringList names(const QList<QWidget *> &widgets)
{
    QStringList texts;
    for (const QWidget *widget : widgets) {
        texts.append(widget->accessibleName());
    }
    return texts;
}

ActionButton *button(const char *title)
{
    return new ActionButton({}, QString::fromLatin1(title));
}

/// The names of what Tab stops at, from the widget on that has the focus.
QStringList walk(int steps, Qt::Key key = Qt::Key_Tab)
{
    QStringList texts;
    for (int step = 0; step < steps; ++step) {
        QTest::keyClick(QApplication::focusWidget(), key);
        texts.append(QApplication::focusWidget()->accessibleName());
    }
    return texts;
}

} // namespace

void ReadingOrderTest::readsLayoutsNotBirthdays()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *third = button("3");
    auto *first = button("1");
    auto *card = new Card(QStringLiteral("card"));
    auto *second = button("2");
    layout->addWidget(third);
    layout->insertWidget(0, card);
    card->content()->addWidget(second);
    card->addHeaderWidget(first);
    QCOMPARE(names(readingOrder(&window)),
             QStringList({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")}));
}

void ReadingOrderTest::readsGridsRowByRow()
{
    QWidget window;
    auto *grid = new QGridLayout(&window);
    grid->addWidget(button("4"), 1, 1);
    grid->addWidget(button("1"), 0, 0);
    grid->addWidget(button("3"), 1, 0);
    grid->addWidget(button("2"), 0, 1);
    QCOMPARE(names(readingOrder(&window)).join(QString()), QStringLiteral("1234"));
}

void ReadingOrderTest::stopsOnceAtACompositeField()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(new QSpinBox);
    layout->addWidget(new QLineEdit);
    QCOMPARE(readingOrder(&window).size(), 2);
}

void ReadingOrderTest::followsWhatIsAddedLater()
{
    ScrollPage page;
    auto *first = button("1");
    page.content()->addWidget(first);
    page.content()->addWidget(button("4"));
    showAt(page, {300, 300});
    page.content()->insertWidget(1, button("3"));
    page.content()->insertWidget(1, button("2"));
    QCoreApplication::processEvents();
    focusByKeyboard(first);
    QTRY_VERIFY(first->hasFocus());
    QCOMPARE(walk(3).join(QString()), QStringLiteral("234"));
}

void ReadingOrderTest::ordersSheets()
{
    QWidget window;
    Sheet sheet(QStringLiteral("Sheet"), &window);
    sheet.addButton(QStringLiteral("3"));
    sheet.content()->addWidget(button("2"));
    auto *first = button("1");
    sheet.addHeaderWidget(first);
    showAt(sheet, {300, 300});
    focusByKeyboard(first);
    QTRY_VERIFY(first->hasFocus());
    QCOMPARE(walk(3).join(QString()), QStringLiteral("231"));
}

void ReadingOrderTest::goesBackAsItCame()
{
    ScrollPage page;
    auto *last = button("3");
    page.content()->addWidget(last);
    page.content()->insertWidget(0, button("2"));
    page.content()->insertWidget(0, button("1"));
    showAt(page, {300, 300});
    focusByKeyboard(last);
    QTRY_VERIFY(last->hasFocus());
    QCOMPARE(walk(2, Qt::Key_Backtab).join(QString()), QStringLiteral("21"));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ReadingOrderTest)
#include "ReadingOrderTest.moc"
