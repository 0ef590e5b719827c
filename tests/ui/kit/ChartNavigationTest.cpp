#include "ui/kit/ChartNavigation.h"

#include "ui/kit/ChartCrosshair.h"

#include <QTest>

#include <limits>

using namespace zorel::ui::kit;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr auto back = ChartDirection::Back;
constexpr auto forward = ChartDirection::Forward;

ChartContent contentOf(const std::vector<std::vector<ChartPoint>> &lists)
{
    ChartContent content;
    for (const auto &points : lists) {
        content.series.emplace_back(QString());
        content.series.back().assign(points);
    }
    content.view.setAllSteps(content.allSteps());
    return content;
}

ChartProjection projectionOf(const ChartContent &content)
{
    return {ChartScale(content.view.steps()), ChartScale(content.shownValues()), QSizeF(100, 100)};
}

} // namespace

class ChartNavigationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void neighboursFollowTheList();
    void neighboursPassOverGaps();
    void manyPointsAtOnceStopAtTheEnd();
    void endsOfASeries();
    void entryIsAtTheEdgeOfTheView();
    void acrossGoesToTheNearestStep();
    void nothingToGoTo();
    void followingCrosshairIsAtTheNearestPointOfAllSeries();
    void chosenPointStaysWhenOthersAreAppended();
    void chosenPointThatWasDroppedGivesWayToTheOldest();
    void leavingPointerKeepsWhatWasChosen();
};

void ChartNavigationTest::neighboursFollowTheList()
{
    const ChartContent content = contentOf({{{5, 1}, {9, 1}, {2, 1}}});
    QCOMPARE(neighbourOf(content, {0, 0}, forward, 1), (ChartMark{0, 1}));
    QCOMPARE(neighbourOf(content, {0, 1}, forward, 1), (ChartMark{0, 2}));
    QCOMPARE(neighbourOf(content, {0, 2}, back, 1), (ChartMark{0, 1}));
    QVERIFY(!neighbourOf(content, {0, 2}, forward, 1));
    QVERIFY(!neighbourOf(content, {0, 0}, back, 1));
}

void ChartNavigationTest::neighboursPassOverGaps()
{
    const ChartContent content =
        contentOf({{{0, notANumber}, {1, 1}, {2, notANumber}, {3, notANumber}, {4, 1}, {5, notANumber}}});
    QCOMPARE(neighbourOf(content, {0, 1}, forward, 1), (ChartMark{0, 4}));
    QCOMPARE(neighbourOf(content, {0, 4}, back, 1), (ChartMark{0, 1}));
    QVERIFY(!neighbourOf(content, {0, 4}, forward, 1));
    QVERIFY(!neighbourOf(content, {0, 1}, back, 1));
}

void ChartNavigationTest::manyPointsAtOnceStopAtTheEnd()
{
    const ChartContent content = contentOf({{{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, notANumber}}});
    QCOMPARE(neighbourOf(content, {0, 0}, forward, 100), (ChartMark{0, 3}));
    QCOMPARE(neighbourOf(content, {0, 3}, back, 2), (ChartMark{0, 1}));
}

void ChartNavigationTest::endsOfASeries()
{
    ChartContent content = contentOf({{{0, notANumber}, {1, 1}, {2, 1}, {3, notANumber}}});
    QCOMPARE(endOf(content, 0, back), (ChartMark{0, 1}));
    QCOMPARE(endOf(content, 0, forward), (ChartMark{0, 2}));
    content.series[0].dropOldest(2);
    QCOMPARE(endOf(content, 0, back), (ChartMark{0, 2}));
}

void ChartNavigationTest::entryIsAtTheEdgeOfTheView()
{
    ChartContent content = contentOf({{}, {{0, 1}, {10, 1}, {20, 1}, {30, 1}}});
    QCOMPARE(entryFrom(content, forward), (ChartMark{1, 0}));
    QCOMPARE(entryFrom(content, back), (ChartMark{1, 3}));
    content.view.zoomTo({9, 21});
    QCOMPARE(entryFrom(content, forward), (ChartMark{1, 1}));
    QCOMPARE(entryFrom(content, back), (ChartMark{1, 2}));
}

void ChartNavigationTest::acrossGoesToTheNearestStep()
{
    const ChartContent content = contentOf({{{0, 1}, {100, 1}}, {}, {{0, 2}, {90, 2}, {130, 2}}});
    QCOMPARE(acrossFrom(content, {0, 1}, forward), (ChartMark{2, 1}));
    QCOMPARE(acrossFrom(content, {2, 2}, back), (ChartMark{0, 1}));
    QVERIFY(!acrossFrom(content, {2, 2}, forward));
}

void ChartNavigationTest::nothingToGoTo()
{
    const ChartContent content = contentOf({{}, {{1, notANumber}}});
    QVERIFY(!endOf(content, 0, back));
    QVERIFY(!endOf(content, 1, forward));
    QVERIFY(!entryFrom(content, forward));
    QVERIFY(!entryFrom(ChartContent(), forward));
}

void ChartNavigationTest::followingCrosshairIsAtTheNearestPointOfAllSeries()
{
    const ChartContent content = contentOf({{{0, 0}, {100, 0}}, {{0, 10}, {100, 10}}});
    ChartCrosshair crosshair;
    crosshair.follow({95, 5});
    QCOMPARE(crosshair.mark(content, projectionOf(content)), (ChartMark{1, 1}));
    crosshair.follow({5, 95});
    QCOMPARE(crosshair.mark(content, projectionOf(content)), (ChartMark{0, 0}));
}

void ChartNavigationTest::chosenPointStaysWhenOthersAreAppended()
{
    ChartContent content = contentOf({{{0, 0}, {100, 0}}});
    ChartCrosshair crosshair;
    crosshair.choose({0, 1});
    content.series[0].append({200, 1});
    QCOMPARE(crosshair.mark(content, projectionOf(content)), (ChartMark{0, 1}));
}

void ChartNavigationTest::chosenPointThatWasDroppedGivesWayToTheOldest()
{
    ChartContent content = contentOf({{{0, 0}, {100, 0}, {200, 0}}});
    ChartCrosshair crosshair;
    crosshair.choose({0, 0});
    content.series[0].dropOldest(1);
    QCOMPARE(crosshair.mark(content, projectionOf(content)), (ChartMark{0, 1}));
    content.series[0].dropOldest(2);
    QVERIFY(!crosshair.mark(content, projectionOf(content)));
    crosshair.choose({5, 0});
    QVERIFY(!crosshair.mark(content, projectionOf(content)));
}

void ChartNavigationTest::leavingPointerKeepsWhatWasChosen()
{
    ChartCrosshair crosshair;
    crosshair.follow({1, 1});
    crosshair.leave();
    QVERIFY(crosshair.isHidden());
    crosshair.choose({0, 0});
    crosshair.leave();
    QVERIFY(crosshair.isChosen());
}

QTEST_APPLESS_MAIN(ChartNavigationTest)
#include "ChartNavigationTest.moc"
