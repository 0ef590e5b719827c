#include "ui/dashboard/PinnedPlace.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>

namespace zorel::tests {

using ui::dashboard::PinnedPlace;

class PinnedPlaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void standsAtItsPlaceInSight();
    void staysAtTheLowerEdgeAbove();
    void staysAtTheUpperEdgeBelow();
    void followsWhatGrowsAboveIt();
    void followsTheSizeOfTheView();
    void makesRoomForWhatTheBarNeeds();
    void uncoversWhatItHides();
    void standsApartFromWhatScrollsBeneath();
    void leavesItsOwnButtonsAlone();

private:
    static constexpr int gap = 8;

    void scrollTo(int y) { m_page->verticalScrollBar()->setValue(y); }
    QRect inView(const QWidget *widget) const
    {
        return {widget->mapTo(m_page->viewport(), QPoint(0, 0)), widget->size()};
    }

    std::unique_ptr<QScrollArea> m_page;
    QWidget *m_above = nullptr;
    QWidget *m_below = nullptr;
    QLabel *m_text = nullptr;
    QWidget *m_bar = nullptr;
    PinnedPlace *m_place = nullptr;
};

void PinnedPlaceTest::init()
{
    m_page = std::make_unique<QScrollArea>();
    m_page->setFrameShape(QFrame::NoFrame);
    m_page->setWidgetResizable(true);
    m_page->setWidget(new QWidget);
    m_bar = new QWidget;
    m_text = new QLabel(QStringLiteral("text"));
    auto *barLayout = new QVBoxLayout(m_bar);
    barLayout->addWidget(m_text);
    barLayout->addWidget(new QPushButton(QStringLiteral("press")));
    m_above = new QWidget;
    m_above->setFixedHeight(500);
    m_below = new QWidget;
    m_below->setFixedHeight(700);
    // The place lies in a column of its own, as on the page.
    auto *column = new QWidget;
    auto *columnLayout = new QVBoxLayout(column);
    columnLayout->setContentsMargins({});
    auto *layout = new QVBoxLayout(m_page->widget());
    layout->addWidget(m_above);
    layout->addWidget(column);
    layout->addWidget(m_below);
    m_place = new PinnedPlace(m_bar, m_page.get());
    columnLayout->addWidget(m_place);
    m_page->resize(400, 300);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
}

void PinnedPlaceTest::cleanup()
{
    m_page.reset();
}

void PinnedPlaceTest::standsAtItsPlaceInSight()
{
    scrollTo(400);
    QCOMPARE(inView(m_bar), inView(m_place));
    QCOMPARE(m_bar->width(), m_place->width());
    QVERIFY(m_page->viewport()->rect().contains(inView(m_bar)));
}

void PinnedPlaceTest::staysAtTheLowerEdgeAbove()
{
    for (const int y : {0, 50, 100}) {
        scrollTo(y);
        QCOMPARE(inView(m_bar).bottom(), m_page->viewport()->rect().bottom() - gap);
    }
}

void PinnedPlaceTest::staysAtTheUpperEdgeBelow()
{
    for (const int y : {700, 800, m_page->verticalScrollBar()->maximum()}) {
        scrollTo(y);
        QCOMPARE(inView(m_bar).top(), gap);
    }
}

void PinnedPlaceTest::followsWhatGrowsAboveIt()
{
    scrollTo(400);
    m_above->setFixedHeight(550);
    QTRY_COMPARE(inView(m_place).top() - inView(m_above).top(), 550 + m_page->widget()->layout()->spacing());
    QCOMPARE(inView(m_bar), inView(m_place));
    m_above->setFixedHeight(2000);
    QTRY_COMPARE(inView(m_bar).bottom(), m_page->viewport()->rect().bottom() - gap);
}

void PinnedPlaceTest::followsTheSizeOfTheView()
{
    scrollTo(0);
    m_page->resize(350, 200);
    QTRY_COMPARE(inView(m_bar).bottom(), m_page->viewport()->rect().bottom() - gap);
    QCOMPARE(m_bar->width(), m_place->width());
    m_page->resize(350, 30); // less than the bar takes: its top is seen
    QTRY_COMPARE(inView(m_bar).top(), 0);
}

void PinnedPlaceTest::makesRoomForWhatTheBarNeeds()
{
    scrollTo(400);
    const int before = m_place->height();
    m_text->setText(QStringLiteral("one\ntwo\nthree"));
    QTRY_VERIFY(m_place->height() > before);
    QCOMPARE(m_bar->height(), m_bar->sizeHint().height());
    QCOMPARE(inView(m_bar), inView(m_place));
}

void PinnedPlaceTest::uncoversWhatItHides()
{
    QWidget above(m_above);
    above.setGeometry(0, 0, 50, 20);
    QWidget below(m_below);
    below.setGeometry(0, 0, 50, 20);
    above.show();
    below.show();
    scrollTo(0);
    above.move(0, inView(m_bar).top() + 5);
    m_place->uncover(&above);
    QVERIFY(!inView(&above).intersects(inView(m_bar)));
    QVERIFY(m_page->viewport()->rect().contains(inView(&above)));
    scrollTo(800);
    below.move(0, -inView(m_below).top() + 5);
    QVERIFY(inView(&below).intersects(inView(m_bar)));
    m_place->uncover(&below);
    QVERIFY(!inView(&below).intersects(inView(m_bar)));
    QVERIFY(m_page->viewport()->rect().contains(inView(&below)));
}

void PinnedPlaceTest::standsApartFromWhatScrollsBeneath()
{
    QPalette loud = m_page->palette();
    loud.setColor(QPalette::Window, Qt::red);
    for (QWidget *beneath : {m_above, m_below}) {
        beneath->setPalette(loud);
        beneath->setAutoFillBackground(true);
    }
    const auto isLoud = [this](int y) {
        const QColor color = m_page->viewport()->grab().toImage().pixelColor(inView(m_bar).center().x(), y);
        return color.red() > 200 && color.green() < 100;
    };
    const QRect view = m_page->viewport()->rect();
    scrollTo(0);
    QVERIFY(isLoud(inView(m_bar).top() - 40));
    QVERIFY(!isLoud(inView(m_bar).top() - 1));
    QVERIFY(!isLoud(view.bottom()));
    scrollTo(900);
    QVERIFY(!isLoud(view.top()));
    QVERIFY(!isLoud(inView(m_bar).bottom() + 1));
    QVERIFY(isLoud(inView(m_bar).bottom() + 40));
    // At its place there is nothing beneath it.
    scrollTo(400);
    QVERIFY(isLoud(inView(m_place).top() - m_page->widget()->layout()->spacing() - 2));
}

void PinnedPlaceTest::leavesItsOwnButtonsAlone()
{
    scrollTo(100);
    m_place->uncover(m_bar->findChild<QPushButton *>());
    QWidget elsewhere;
    m_place->uncover(&elsewhere);
    QCOMPARE(m_page->verticalScrollBar()->value(), 100);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::PinnedPlaceTest)
#include "PinnedPlaceTest.moc"
