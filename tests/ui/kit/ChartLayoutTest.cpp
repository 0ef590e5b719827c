#include "ui/kit/ChartLayout.h"

#include <QFontMetrics>
#include <QTest>

#include <limits>

using namespace zorel::ui::kit;

namespace {

constexpr qint64 lastStep = std::numeric_limits<qint64>::max();

ChartContent contentOf(qint64 firstStep, qint64 finalStep)
{
    ChartContent content;
    content.series.emplace_back(QString());
    content.series.back().assign(std::vector<ChartPoint>{{firstStep, 3}, {finalStep, 2}});
    content.view.setAllSteps(content.allSteps());
    return content;
}

ChartLayout layoutOf(const ChartContent &content, int width)
{
    return layoutChart(content, QRect(0, 0, width, 200), 0, ChartFonts::current(),
                       QLocale(QLocale::English, QLocale::UnitedStates));
}

} // namespace

class ChartLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void labelsOfStepsStandApart_data();
    void labelsOfStepsStandApart();
    void everyLabelStaysWhereThereIsRoom();
};

void ChartLayoutTest::labelsOfStepsStandApart_data()
{
    QTest::addColumn<qint64>("first");
    QTest::addColumn<qint64>("last");
    QTest::newRow("a usual run") << qint64(0) << qint64(50'000);
    QTest::newRow("one step") << qint64(7) << qint64(7);
    QTest::newRow("all digits count") << qint64(20'000'000) << qint64(20'000'020);
    QTest::newRow("the largest, far apart") << lastStep - 200'000'000'000'000'000 << lastStep;
    QTest::newRow("the largest, close together") << lastStep - 100'000 << lastStep;
    QTest::newRow("the largest, closer than a number tells") << lastStep - 4'000 << lastStep;
    QTest::newRow("everything there is") << -lastStep << lastStep;
}

void ChartLayoutTest::labelsOfStepsStandApart()
{
    QFETCH(qint64, first);
    QFETCH(qint64, last);
    const ChartContent content = contentOf(first, last);
    for (int width = 120; width < 1600; width += 37) {
        const ChartLayout layout = layoutOf(content, width);
        const QFontMetrics metrics(layout.fonts.label);
        QVERIFY(!layout.steps.empty());
        int end = -1;
        for (const ChartTick &tick : layout.steps) {
            const QRect label = stepLabelPlace(layout, tick, metrics);
            QVERIFY2(label.left() > end, qPrintable(tick.text));
            end = label.right();
        }
    }
}

void ChartLayoutTest::everyLabelStaysWhereThereIsRoom()
{
    const ChartLayout layout = layoutOf(contentOf(0, 50'000), 800);
    QStringList labels;
    for (const ChartTick &tick : layout.steps) {
        labels << tick.text;
    }
    QCOMPARE(labels.join(u' '), QStringLiteral("0 10,000 20,000 30,000 40,000 50,000"));
}

QTEST_MAIN(ChartLayoutTest)
#include "ChartLayoutTest.moc"
