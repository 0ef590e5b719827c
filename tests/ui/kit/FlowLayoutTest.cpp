#include "ui/kit/FlowLayout.h"

#include "tests/ui/kit/Screen.h"
#include "ui/kit/TextLabel.h"

namespace zorel::tests {

using namespace ui::kit;

class FlowLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void standsInOneLineWhereThereIsRoom();
    void wraps();
    void runsFromTheRight();
    void leavesHiddenItemsOut();
    void cutsWhatIsWiderThanTheLine();
    void takesItemsOut();

private:
    QWidget *box(int width, int height);

    std::unique_ptr<QWidget> m_window;
    FlowLayout *m_layout = nullptr;
};

void FlowLayoutTest::init()
{
    m_window = std::make_unique<QWidget>();
    m_layout = new FlowLayout(m_window.get());
}

QWidget *FlowLayoutTest::box(int width, int height)
{
    auto *widget = new QWidget;
    widget->setFixedSize(width, height);
    m_layout->addWidget(widget);
    return widget;
}

void FlowLayoutTest::standsInOneLineWhereThereIsRoom()
{
    const QWidget *first = box(100, 20);
    const QWidget *second = box(100, 40);
    showAt(*m_window, {300, 100});
    QCOMPARE(first->geometry(), QRect(0, 10, 100, 20));
    QCOMPARE(second->geometry(), QRect(108, 0, 100, 40));
    QCOMPARE(m_layout->sizeHint(), QSize(208, 40));
}

void FlowLayoutTest::wraps()
{
    box(100, 20);
    const QWidget *second = box(100, 30);
    const QWidget *third = box(60, 20);
    showAt(*m_window, {180, 200});
    QCOMPARE(second->pos(), QPoint(0, 28));
    QCOMPARE(third->pos(), QPoint(108, 33));
    QCOMPARE(m_layout->heightForWidth(180), 58);
    QCOMPARE(m_layout->heightForWidth(400), 30);
    QCOMPARE(m_layout->heightForWidth(100), 20 + 8 + 30 + 8 + 20);
    m_layout->setGaps(4, 2);
    QCOMPARE(m_layout->heightForWidth(180), 52);
}

void FlowLayoutTest::runsFromTheRight()
{
    const QWidget *first = box(100, 20);
    const QWidget *second = box(100, 20);
    m_window->setLayoutDirection(Qt::RightToLeft);
    showAt(*m_window, {300, 100});
    QCOMPARE(first->x(), 200);
    QCOMPARE(second->x(), 92);
}

void FlowLayoutTest::leavesHiddenItemsOut()
{
    QWidget *first = box(100, 20);
    const QWidget *second = box(100, 20);
    showAt(*m_window, {300, 100});
    first->hide();
    QTRY_COMPARE(second->x(), 0);
    QCOMPARE(m_layout->heightForWidth(100), 20);
}

void FlowLayoutTest::cutsWhatIsWiderThanTheLine()
{
    auto *label = new TextLabel(QString(500, QLatin1Char('m')));
    m_layout->addWidget(label);
    showAt(*m_window, {200, 400});
    QVERIFY(label->geometry().right() < 200);
    QVERIFY(label->height() >= label->heightForWidth(label->width()));
}

void FlowLayoutTest::takesItemsOut()
{
    QWidget *first = box(100, 20);
    const QWidget *second = box(100, 20);
    QCOMPARE(m_layout->count(), 2);
    m_layout->removeWidget(first);
    delete first;
    QCOMPARE(m_layout->count(), 1);
    QCOMPARE(m_layout->itemAt(0)->widget(), second);
    QVERIFY(!m_layout->itemAt(1));
    QVERIFY(!m_layout->takeAt(-1));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::FlowLayoutTest)
#include "FlowLayoutTest.moc"
