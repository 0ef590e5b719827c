#include "ui/kit/ScrollPage.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/ActionButton.h"
#include "ui/kit/Card.h"
#include "ui/kit/KitStyle.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/TextLabel.h"

#include <QScrollBar>
#include <QVBoxLayout>

namespace zorel::tests {

using namespace ui::kit;

class ScrollPageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fitsItsWidth();
    void scrollsTheFocusIntoView();
    void scrollsForTheKeyboardAsWell();
    void showsThePlaceInWhichTheFocusScrolls();
    void leavesWhatIsHigherThanItselfWhereItIs();
    void hasRoomForWhatIsHigh();
    void scrollBarMovesNothing_data();
    void scrollBarMovesNothing();
    void beginsWhereItIsTold_data();
    void beginsWhereItIsTold();
};

namespace {

ActionButton *addMany(ScrollPage &page)
{
    ActionButton *last = nullptr;
    for (int index = 0; index < 60; ++index) {
        last = new ActionButton({}, QStringLiteral("Button %1").arg(index));
        page.content()->addWidget(last);
    }
    return last;
}

bool isInView(const ScrollPage &page, const QWidget *widget)
{
    const QRect place(widget->mapTo(page.viewport(), QPoint()), widget->size());
    return page.viewport()->rect().contains(place);
}

} // namespace

void ScrollPageTest::fitsItsWidth()
{
    ScrollPage page;
    auto *card = new Card(QString(10'000, QLatin1Char('m')));
    card->content()->addWidget(new TextLabel(QString(10'000, QLatin1Char('m'))));
    page.content()->addWidget(card);
    showAt(page, {320, 300});
    QCOMPARE(page.widget()->width(), page.viewport()->width());
    QVERIFY(!page.horizontalScrollBar()->isVisible());
    QVERIFY(page.verticalScrollBar()->maximum() > 0);
    page.resize(900, 300);
    QTRY_COMPARE(page.widget()->width(), page.viewport()->width());
}

void ScrollPageTest::scrollsTheFocusIntoView()
{
    ScrollPage page;
    QWidget *last = addMany(page);
    showAt(page, {300, 200});
    QVERIFY(!isInView(page, last));
    page.activateWindow();
    last->setFocus(Qt::ShortcutFocusReason);
    QTRY_VERIFY(isInView(page, last));
}

void ScrollPageTest::scrollsForTheKeyboardAsWell()
{
    ScrollPage page;
    addMany(page);
    showAt(page, {300, 200});
    QWidget *first = page.findChild<ActionButton *>();
    focusByKeyboard(first);
    QTRY_VERIFY(first->hasFocus());
    for (int step = 0; step < 30; ++step) {
        QTest::keyClick(page.window()->focusWidget(), Qt::Key_Tab);
        QTRY_VERIFY(isInView(page, page.window()->focusWidget()));
    }
    QVERIFY(page.verticalScrollBar()->value() > 0);
}

void ScrollPageTest::showsThePlaceInWhichTheFocusScrolls()
{
    ScrollPage page;
    page.content()->addWidget(new ActionButton({}, QStringLiteral("First")));
    auto *inner = new QScrollArea;
    inner->setFocusPolicy(Qt::NoFocus);
    inner->setFixedHeight(100);
    auto *high = new QWidget;
    high->setFocusPolicy(Qt::StrongFocus);
    high->setFixedSize(50, 1000);
    inner->setWidget(high);
    page.content()->addWidget(inner);
    addMany(page);
    showAt(page, {300, 200});
    page.activateWindow();
    high->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(high->hasFocus());
    QVERIFY(isInView(page, inner));
}

void ScrollPageTest::leavesWhatIsHigherThanItselfWhereItIs()
{
    ScrollPage page;
    addMany(page);
    auto *high = new QWidget;
    high->setFocusPolicy(Qt::StrongFocus);
    high->setFixedHeight(2000);
    page.content()->addWidget(high);
    addMany(page);
    showAt(page, {300, 200});
    page.activateWindow();
    high->setFocus(Qt::TabFocusReason);
    QTRY_VERIFY(high->hasFocus());
    // It was out of sight.
    QCOMPARE(high->mapTo(page.viewport(), QPoint()).y(), spacing::two);
    page.findChild<ActionButton *>()->setFocus();
    page.verticalScrollBar()->setValue(high->y() + 1500);
    high->setFocus(Qt::MouseFocusReason);
    QCOMPARE(page.verticalScrollBar()->value(), high->y() + 1500);
}

void ScrollPageTest::scrollBarMovesNothing_data()
{
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("left to right") << Qt::LeftToRight;
    QTest::newRow("right to left") << Qt::RightToLeft;
}

void ScrollPageTest::scrollBarMovesNothing()
{
    QFETCH(Qt::LayoutDirection, direction);
    KitStyle style;
    ScrollPage page;
    page.verticalScrollBar()->setStyle(&style);
    page.setLayoutDirection(direction);
    auto *card = new Card(QStringLiteral("Card"));
    page.content()->addWidget(card);
    page.content()->addStretch(1);
    showAt(page, {400, 600});
    const auto place = [&] {
        return QRect(card->mapTo(&page, QPoint(0, 0)), card->size());
    };
    QTRY_COMPARE(place().left(), spacing::two);
    const QRect before = place();
    QVERIFY(!page.verticalScrollBar()->isVisible());
    QCOMPARE(before.width(), page.width() - 2 * spacing::two);
    page.widget()->setMinimumHeight(2000);
    QTRY_VERIFY(page.verticalScrollBar()->isVisible());
    QTRY_COMPARE(place(), before);
}

void ScrollPageTest::beginsWhereItIsTold_data()
{
    scrollBarMovesNothing_data();
}

void ScrollPageTest::beginsWhereItIsTold()
{
    QFETCH(Qt::LayoutDirection, direction);
    ScrollPage page;
    page.setLayoutDirection(direction);
    auto *card = new Card(QStringLiteral("Card"));
    page.content()->addWidget(card);
    showAt(page, {400, 600});
    const auto leadingRoom = [&] {
        const int left = card->mapTo(&page, QPoint(0, 0)).x();
        return direction == Qt::LeftToRight ? left : page.width() - left - card->width();
    };
    QTRY_COMPARE(leadingRoom(), spacing::two);
    page.setLeadingMargin(0);
    QTRY_COMPARE(leadingRoom(), 0);
    page.resize(500, 500);
    QTRY_COMPARE(page.widget()->width(), page.viewport()->width());
    QCOMPARE(leadingRoom(), 0);
}

void ScrollPageTest::hasRoomForWhatIsHigh()
{
    ScrollPage page;
    addMany(page);
    QVERIFY(page.minimumSizeHint().height() < 200);
    QVERIFY(page.minimumSizeHint().width() >= page.widget()->minimumSizeHint().width());
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::ScrollPageTest)
#include "ScrollPageTest.moc"
