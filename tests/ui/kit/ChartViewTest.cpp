#include "ui/kit/ChartView.h"

#include <QTest>

using namespace zorel::ui::kit;

class ChartViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_view = ChartView();
        m_view.setAllSteps({0, 1000});
    }
    void showsEverythingAtFirst();
    void zoomStaysWhenPointsAreAppended();
    void withoutZoomNewStepsAreShown();
    void zoomNeverLeavesWhatThereIs();
    void zoomShowsAStepAtLeast();
    void zoomKeepsThePlaceOfTheStep();
    void zoomingOutEndsTheZoom();
    void resetShowsEverything();
    void showMovesOnlyWhatHidesTheStep();
    void droppedStepsPushTheZoom();

private:
    ChartView m_view;
};

void ChartViewTest::showsEverythingAtFirst()
{
    QVERIFY(!m_view.isZoomed());
    QCOMPARE(m_view.steps(), (ChartRange{0, 1000}));
    QVERIFY(!m_view.values());
}

void ChartViewTest::zoomStaysWhenPointsAreAppended()
{
    m_view.zoomTo({100, 200}, ChartRange{1, 2});
    m_view.setAllSteps({0, 5000});
    QCOMPARE(m_view.steps(), (ChartRange{100, 200}));
    QCOMPARE(m_view.values(), (ChartRange{1, 2}));
}

void ChartViewTest::withoutZoomNewStepsAreShown()
{
    m_view.setAllSteps({0, 5000});
    QCOMPARE(m_view.steps(), (ChartRange{0, 5000}));
}

void ChartViewTest::zoomNeverLeavesWhatThereIs()
{
    m_view.zoomTo({-100, 100});
    QCOMPARE(m_view.steps(), (ChartRange{0, 200}));
    m_view.zoomTo({950, 1050});
    QCOMPARE(m_view.steps(), (ChartRange{900, 1000}));
}

void ChartViewTest::zoomShowsAStepAtLeast()
{
    m_view.zoomTo({500, 500});
    QCOMPARE(m_view.steps(), (ChartRange{499.5, 500.5}));
}

void ChartViewTest::zoomKeepsThePlaceOfTheStep()
{
    m_view.zoomBy(0.5, 250);
    QCOMPARE(m_view.steps(), (ChartRange{125, 625}));
}

void ChartViewTest::zoomingOutEndsTheZoom()
{
    m_view.zoomBy(0.5, 250);
    QVERIFY(m_view.isZoomed());
    m_view.zoomBy(2, 250);
    QVERIFY(!m_view.isZoomed());
    m_view.zoomBy(2, 250);
    QCOMPARE(m_view.steps(), (ChartRange{0, 1000}));
}

void ChartViewTest::resetShowsEverything()
{
    m_view.zoomTo({100, 200}, ChartRange{1, 2});
    m_view.reset();
    QVERIFY(!m_view.isZoomed());
    QVERIFY(!m_view.values());
}

void ChartViewTest::showMovesOnlyWhatHidesTheStep()
{
    m_view.show(900);
    QVERIFY(!m_view.isZoomed());
    m_view.zoomTo({100, 200}, ChartRange{1, 2});
    m_view.show(150);
    QCOMPARE(m_view.steps(), (ChartRange{100, 200}));
    m_view.show(500);
    QCOMPARE(m_view.steps(), (ChartRange{450, 550}));
    QCOMPARE(m_view.values(), (ChartRange{1, 2}));
}

void ChartViewTest::droppedStepsPushTheZoom()
{
    m_view.zoomTo({100, 200});
    m_view.setAllSteps({500, 2000});
    QCOMPARE(m_view.steps(), (ChartRange{500, 600}));
}

QTEST_APPLESS_MAIN(ChartViewTest)
#include "ChartViewTest.moc"
