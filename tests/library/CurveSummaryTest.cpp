#include "library/CurveSummary.h"

#include <QTest>

using zorel::backend::protocol::LossPoint;
using zorel::library::commonSteps;
using zorel::library::CurveSummary;
using zorel::library::StepRange;
using zorel::library::summary;

class CurveSummaryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyCurveHasNoSummary();
    void theOrderOfThePointsDoesNotMatter();
    void findsTheStepsInCommon();
};

void CurveSummaryTest::anEmptyCurveHasNoSummary()
{
    QVERIFY(!summary({}));
}

void CurveSummaryTest::theOrderOfThePointsDoesNotMatter()
{
    const CurveSummary expected{4, {1, 40}, 9, 3, 2.5, 20};
    QVERIFY(summary({{1, 9}, {20, 2.5}, {30, 2.5}, {40, 3}}) == expected);
    QVERIFY(summary({{20, 2.5}, {40, 3}, {30, 2.5}, {1, 9}}) == expected);
    QVERIFY(summary({{7, 1}}) == (CurveSummary{1, {7, 7}, 1, 1, 1, 7}));
}

void CurveSummaryTest::findsTheStepsInCommon()
{
    const auto over = [](std::int64_t first, std::int64_t last) {
        CurveSummary curve;
        curve.steps = {first, last};
        return curve;
    };
    QVERIFY(commonSteps(over(1, 10), over(1, 20)) == (StepRange{1, 10}));
    QVERIFY(commonSteps(over(5, 10), over(1, 7)) == (StepRange{5, 7}));
    QVERIFY(commonSteps(over(1, 5), over(5, 9)) == (StepRange{5, 5}));
    QVERIFY(!commonSteps(over(1, 4), over(5, 9)));
}

QTEST_APPLESS_MAIN(CurveSummaryTest)
#include "CurveSummaryTest.moc"
