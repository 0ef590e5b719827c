#include "ui/kit/ChartAxis.h"

#include <QTest>

#include <limits>

using namespace zorel::ui::kit;

Q_DECLARE_METATYPE(zorel::ui::kit::ChartRange)

namespace {

constexpr double largest = std::numeric_limits<double>::max();

QString texts(const std::vector<ChartTick> &ticks)
{
    QStringList all;
    for (const ChartTick &tick : ticks) {
        all.push_back(tick.text);
    }
    return all.join(QLatin1Char(' '));
}

} // namespace

class ChartAxisTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void steps_data();
    void steps();
    void values_data();
    void values();
    void logarithmicValues_data();
    void logarithmicValues();
    void neverMoreThanAskedFor();
    void anyRangeHasTicksInsideIt();
    void noTickComesTwice();
    void stepsFollowTheLocale();
};

void ChartAxisTest::steps_data()
{
    QTest::addColumn<ChartRange>("range");
    QTest::addColumn<int>("most");
    QTest::addColumn<QString>("expected");
    QTest::newRow("small") << ChartRange{1, 10} << 10 << QStringLiteral("1 2 3 4 5 6 7 8 9 10");
    QTest::newRow("never between two steps") << ChartRange{0, 2} << 10 << QStringLiteral("0 1 2");
    QTest::newRow("one step") << ChartRange{6.5, 7.5} << 8 << QStringLiteral("7");
    QTest::newRow("grouped") << ChartRange{0, 50'000} << 6
                             << QStringLiteral("0 10,000 20,000 30,000 40,000 50,000");
    QTest::newRow("millions") << ChartRange{0, 20'000'000} << 4 << QStringLiteral("0 5M 10M 15M 20M");
    QTest::newRow("parts of millions")
        << ChartRange{10'000'000, 11'500'000} << 3 << QStringLiteral("10.0M 10.5M 11.0M 11.5M");
    QTest::newRow("a million is written out")
        << ChartRange{0, 1'000'000} << 2 << QStringLiteral("0 500,000 1,000,000");
    QTest::newRow("billions") << ChartRange{0, 4e9} << 4 << QStringLiteral("0 1B 2B 3B 4B");
    QTest::newRow("no digit is lost")
        << ChartRange{20'000'000, 20'000'020} << 2 << QStringLiteral("20,000,000 20,000,010 20,000,020");
    QTest::newRow("below zero") << ChartRange{-20, 20} << 4 << QStringLiteral("-20 -10 0 10 20");
}

void ChartAxisTest::steps()
{
    QFETCH(ChartRange, range);
    QFETCH(int, most);
    QTEST(texts(stepTicks(range, most, QLocale(QLocale::English))), "expected");
}

void ChartAxisTest::values_data()
{
    QTest::addColumn<ChartRange>("range");
    QTest::addColumn<int>("most");
    QTest::addColumn<QString>("expected");
    QTest::newRow("a loss") << ChartRange{1.6, 11} << 5 << QStringLiteral("2 4 6 8 10");
    QTest::newRow("tenths") << ChartRange{2.05, 2.55} << 6 << QStringLiteral("2.1 2.2 2.3 2.4 2.5");
    QTest::newRow("three tenths are 0.3")
        << ChartRange{0, 0.5} << 5 << QStringLiteral("0.0 0.1 0.2 0.3 0.4 0.5");
    QTest::newRow("no minus before zero") << ChartRange{-0.3, 0.3} << 4 << QStringLiteral("-0.2 0.0 0.2");
    QTest::newRow("thousands") << ChartRange{0, 50'000} << 5
                               << QStringLiteral("0 10000 20000 30000 40000 50000");
    QTest::newRow("huge") << ChartRange{0, 3e9} << 3 << QStringLiteral("0 1e9 2e9 3e9");
    QTest::newRow("tiny") << ChartRange{0, 3e-7} << 3 << QStringLiteral("0.0000000 1e-7 2e-7 3e-7");
    QTest::newRow("far in") << ChartRange{2.1234561, 2.1234564} << 3
                            << QStringLiteral("2.1234561 2.1234562 2.1234563 2.1234564");
}

void ChartAxisTest::values()
{
    QFETCH(ChartRange, range);
    QFETCH(int, most);
    QTEST(texts(valueTicks(range, ChartScaleKind::Linear, most)), "expected");
}

void ChartAxisTest::logarithmicValues_data()
{
    QTest::addColumn<ChartRange>("range");
    QTest::addColumn<int>("most");
    QTest::addColumn<QString>("expected");
    QTest::newRow("decades") << ChartRange{0.0009, 110} << 6 << QStringLiteral("0.001 0.01 0.1 1 10 100");
    QTest::newRow("few decades") << ChartRange{0.09, 11} << 8 << QStringLiteral("0.1 0.2 0.5 1 2 5 10");
    QTest::newRow("less than a decade") << ChartRange{2.1, 4.6} << 6 << QStringLiteral("2.5 3.0 3.5 4.0 4.5");
    QTest::newRow("many decades") << ChartRange{1e-12, 1e12} << 5
                                  << QStringLiteral("1e-11 1e-6 0.1 10000 1e9");
    QTest::newRow("nearly a decade") << ChartRange{1.05, 7.5} << 5 << QStringLiteral("2 3 5");
    QTest::newRow("a decade with room")
        << ChartRange{0.95, 11} << 22 << QStringLiteral("1 2 3 4 5 6 7 8 9 10");
    QTest::newRow("hardly any length") << ChartRange{2.5, 2.53} << 4 << QStringLiteral("2.50 2.51 2.52 2.53");
}

void ChartAxisTest::logarithmicValues()
{
    QFETCH(ChartRange, range);
    QFETCH(int, most);
    QTEST(texts(valueTicks(range, ChartScaleKind::Logarithmic, most)), "expected");
}

void ChartAxisTest::neverMoreThanAskedFor()
{
    for (int most = 2; most < 20; ++most) {
        for (double length = 1e-3; length < 1e12; length *= 1.7) {
            const ChartRange range{length * 0.31, length * 1.31};
            // The ends of n distances are n + 1 ticks.
            const auto limit = static_cast<std::size_t>(most) + 1;
            QVERIFY(stepTicks(range, most, QLocale()).size() <= limit);
            QVERIFY(valueTicks(range, ChartScaleKind::Linear, most).size() <= limit);
            QVERIFY(valueTicks({length * 1e-4, length}, ChartScaleKind::Logarithmic, most).size() <=
                    limit + 2);
        }
    }
}

void ChartAxisTest::anyRangeHasTicksInsideIt()
{
    for (const ChartRange range :
         {ChartRange{-largest, largest}, ChartRange{0, 5e-324}, ChartRange{largest / 2, largest},
          ChartRange{1e15, 1e15 + 8}, ChartRange{-9.3e18, 9.3e18}}) {
        for (const ChartTick &tick : valueTicks(range, ChartScaleKind::Linear, 5)) {
            QVERIFY(tick.value >= range.low && tick.value <= range.high);
        }
        for (const ChartTick &tick : stepTicks(range, 5, QLocale())) {
            QVERIFY(tick.value >= range.low && tick.value <= range.high);
        }
    }
    QVERIFY(!valueTicks({-largest, largest}, ChartScaleKind::Linear, 5).empty());
    QVERIFY(!stepTicks({-9.3e18, 9.3e18}, 5, QLocale()).empty());
    QVERIFY(!valueTicks({1e-307, largest}, ChartScaleKind::Logarithmic, 5).empty());
}

void ChartAxisTest::noTickComesTwice()
{
    // Numbers of this size lie 1,024 apart.
    const std::vector<ChartTick> ticks = stepTicks({9'223'372'036'854'771'712.0, 0x1p63}, 20, QLocale());
    QVERIFY(!ticks.empty());
    for (std::size_t i = 1; i < ticks.size(); ++i) {
        QVERIFY(ticks[i].value > ticks[i - 1].value);
    }
}

void ChartAxisTest::stepsFollowTheLocale()
{
    const QLocale german(QLocale::German, QLocale::Germany);
    QCOMPARE(texts(stepTicks({0, 20'000}, 2, german)), QStringLiteral("0 10.000 20.000"));
}

QTEST_APPLESS_MAIN(ChartAxisTest)
#include "ChartAxisTest.moc"
