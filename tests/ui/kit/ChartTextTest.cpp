#include "ui/kit/ChartText.h"

#include <QTest>

#include <limits>

using namespace zorel::ui::kit;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);

ChartContent contentOf(const std::vector<ChartPoint> &points)
{
    ChartContent content;
    content.stepTitle = QStringLiteral("Step");
    content.valueTitle = QStringLiteral("Loss");
    content.series.emplace_back(QString());
    content.series.back().assign(points);
    return content;
}

} // namespace

class ChartTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stepsAreGrouped();
    void valuesHaveFourDecimals_data();
    void valuesHaveFourDecimals();
    void markNamesTheSeriesWhereThereAreSeveral();
    void summaryHasFirstLastLowestAndCount();
    void summaryOfOnePoint();
    void summaryOfNothing();
    void summaryTellsTheLegend();
    void omissionsAreCounted_data();
    void omissionsAreCounted();
};

void ChartTextTest::stepsAreGrouped()
{
    QCOMPARE(chartStepText(1'234'567, english), QStringLiteral("1,234,567"));
    QCOMPARE(chartStepText(-12'000, english), QStringLiteral("-12,000"));
    QCOMPARE(chartStepText(7, QLocale(QLocale::German)), QStringLiteral("7"));
}

void ChartTextTest::valuesHaveFourDecimals_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("rounded") << 2.53125 << QStringLiteral("2.5312"); // as printf
    QTest::newRow("filled") << 3.0 << QStringLiteral("3.0000");
    QTest::newRow("tiny") << 1e-9 << QStringLiteral("0.0000");
    QTest::newRow("large") << 12345.5 << QStringLiteral("12345.5000");
    QTest::newRow("huge") << 1.5e300 << QStringLiteral("1.5000e+300");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << QStringLiteral("not a number");
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << QStringLiteral("infinite");
}

void ChartTextTest::valuesHaveFourDecimals()
{
    QFETCH(double, value);
    QTEST(chartValueText(value), "text");
}

void ChartTextTest::markNamesTheSeriesWhereThereAreSeveral()
{
    ChartContent content = contentOf({{1200, 2.5}});
    QCOMPARE(chartMarkText(content, {0, 0}, english), QStringLiteral("Step 1,200, Loss 2.5000"));
    content.series.front().setName(QStringLiteral("Baseline"));
    content.series.emplace_back(QStringLiteral("Candidate"));
    QCOMPARE(chartMarkText(content, {0, 0}, english), QStringLiteral("Baseline: Step 1,200, Loss 2.5000"));
}

void ChartTextTest::summaryHasFirstLastLowestAndCount()
{
    std::vector<ChartPoint> points{{10, 10.5}, {5000, 2.25}};
    for (int step = 5001; step < 6000; ++step) {
        points.push_back({step, 3});
    }
    QCOMPARE(chartSummary(contentOf(points), english),
             QStringLiteral(
                 "Line chart of Loss by Step. Loss: 1,001 points; first 10.5000 at step 10; last 3.0000 at "
                 "step 5,999; lowest 2.2500 at step 5,000."));
}

void ChartTextTest::summaryOfOnePoint()
{
    QVERIFY(chartSummary(contentOf({{7, 1.5}}), english)
                .contains(QLatin1String("Loss: 1 point; first 1.5000 at step 7; last 1.5000 at step 7")));
}

void ChartTextTest::summaryOfNothing()
{
    QVERIFY(chartSummary(contentOf({}), english).contains(QLatin1String("Loss: no points.")));
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const QString text = chartSummary(contentOf({{7, notANumber}}), english);
    QVERIFY(text.contains(QLatin1String("first not a number at step 7")));
    QVERIFY(!text.contains(QLatin1String("lowest")));
}

void ChartTextTest::summaryTellsTheLegend()
{
    ChartContent content = contentOf({{1, 2}});
    content.series.front().setName(QStringLiteral("Baseline"));
    content.series.emplace_back(QStringLiteral("Candidate"));
    content.legendKey = QStringLiteral("Run");
    content.scale = ChartScaleKind::Logarithmic;
    const QString text = chartSummary(content, english);
    QVERIFY(text.contains(QLatin1String("Run: Baseline, Candidate.")));
    QVERIFY(text.contains(QLatin1String("Candidate: no points.")));
    QVERIFY(text.contains(QLatin1String("Logarithmic scale.")));
}

void ChartTextTest::omissionsAreCounted_data()
{
    QTest::addColumn<QList<double>>("values");
    QTest::addColumn<bool>("isLogarithmic");
    QTest::addColumn<QString>("text");
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("none") << QList<double>{1, 2} << true << QString();
    QTest::newRow("linear shows zero and below") << QList<double>{0, -1} << false << QString();
    QTest::newRow("one") << QList<double>{1, 0} << true
                         << QStringLiteral("Not drawn: 1 value of zero or below.");
    QTest::newRow("several") << QList<double>{0, -1, 2} << true
                             << QStringLiteral("Not drawn: 2 values of zero or below.");
    QTest::newRow("no number") << QList<double>{notANumber, 1} << false
                               << QStringLiteral("Not drawn: 1 value that is no finite number.");
    QTest::newRow("both") << QList<double>{notANumber, 0, notANumber} << true
                          << QStringLiteral(
                                 "Not drawn: 1 value of zero or below, 2 values that are no finite "
                                 "numbers.");
}

void ChartTextTest::omissionsAreCounted()
{
    QFETCH(QList<double>, values);
    QFETCH(bool, isLogarithmic);
    std::vector<ChartPoint> points;
    for (const double value : values) {
        points.push_back({static_cast<std::int64_t>(points.size()), value});
    }
    ChartContent content = contentOf(points);
    content.scale = isLogarithmic ? ChartScaleKind::Logarithmic : ChartScaleKind::Linear;
    content.series.front().setScale(content.scale);
    QTEST(chartOmissionText(content, english), "text");
}

QTEST_APPLESS_MAIN(ChartTextTest)
#include "ChartTextTest.moc"
