#include "ui/kit/ChartScale.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace zorel::ui::kit;

Q_DECLARE_METATYPE(zorel::ui::kit::ChartRange)
Q_DECLARE_METATYPE(zorel::ui::kit::ChartScaleKind)

namespace {

constexpr double largest = std::numeric_limits<double>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr auto linear = ChartScaleKind::Linear;
constexpr auto logarithmic = ChartScaleKind::Logarithmic;

} // namespace

class ChartScaleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsAreZeroAndOne_data();
    void endsAreZeroAndOne();
    void logarithmicScaleGivesEachDecadeTheSame();
    void valueUndoesFraction();
    void anythingHasAFraction();
    void roomAround_data();
    void roomAround();
};

void ChartScaleTest::endsAreZeroAndOne_data()
{
    QTest::addColumn<ChartRange>("range");
    QTest::addColumn<ChartScaleKind>("kind");
    QTest::newRow("usual") << ChartRange{2, 10} << linear;
    QTest::newRow("below zero") << ChartRange{-7, -3} << linear;
    QTest::newRow("largest numbers") << ChartRange{-largest, largest} << linear;
    QTest::newRow("tiny") << ChartRange{1e-300, 3e-300} << linear;
    QTest::newRow("steps of 64 bits") << ChartRange{-9.2e18, 9.2e18} << linear;
    QTest::newRow("logarithmic") << ChartRange{1e-3, 1e4} << logarithmic;
    QTest::newRow("all of a logarithmic scale") << ChartRange{1e-307, largest} << logarithmic;
}

void ChartScaleTest::endsAreZeroAndOne()
{
    QFETCH(ChartRange, range);
    QFETCH(ChartScaleKind, kind);
    const ChartScale scale(range, kind);
    QVERIFY(std::abs(scale.fraction(range.low)) < 1e-9);
    QVERIFY(std::abs(scale.fraction(range.high) - 1) < 1e-9);
    const double middle = scale.value(0.5);
    QVERIFY(middle > range.low && middle < range.high);
}

void ChartScaleTest::logarithmicScaleGivesEachDecadeTheSame()
{
    const ChartScale scale({0.01, 100}, logarithmic);
    QCOMPARE(scale.fraction(0.1), 0.25);
    QCOMPARE(scale.fraction(1), 0.5);
    QCOMPARE(scale.fraction(10), 0.75);
}

void ChartScaleTest::valueUndoesFraction()
{
    for (const ChartScaleKind kind : {linear, logarithmic}) {
        const ChartScale scale({0.5, 12}, kind);
        for (const double value : {0.5, 0.7, 3.0, 11.0, 12.0, 20.0}) {
            QCOMPARE(scale.value(scale.fraction(value)), value);
        }
    }
}

void ChartScaleTest::anythingHasAFraction()
{
    for (const ChartRange range : {ChartRange{0, 0}, ChartRange{5, 5}, ChartRange{largest, largest},
                                   ChartRange{-largest, largest}, ChartRange{0, 5e-324}}) {
        for (const ChartScaleKind kind : {linear, logarithmic}) {
            const ChartScale scale(range, kind);
            for (const double value : {0.0, -1.0, 5.0, largest, -largest, 5e-324}) {
                QVERIFY(std::isfinite(scale.fraction(value)));
                QVERIFY(std::abs(scale.fraction(value)) <= 1e6);
            }
            for (const double fraction : {-1e6, 0.0, 0.5, 1.0, 1e6}) {
                QVERIFY(std::isfinite(scale.value(fraction)));
            }
        }
    }
    QVERIFY(!std::isnan(ChartScale().fraction(std::numeric_limits<double>::quiet_NaN())));
    QVERIFY(!std::isnan(ChartScale().fraction(infinite)));
}

void ChartScaleTest::roomAround_data()
{
    QTest::addColumn<ChartRange>("data");
    QTest::addColumn<ChartScaleKind>("kind");
    QTest::addColumn<ChartRange>("shown");
    QTest::newRow("usual") << ChartRange{2, 12} << linear << ChartRange{1.5, 12.5};
    QTest::newRow("none below zero for what is not negative")
        << ChartRange{0.1, 10.1} << linear << ChartRange{0, 10.6};
    QTest::newRow("negative") << ChartRange{-10, -0.1} << linear << ChartRange{-10.495, 0.395};
    QTest::newRow("equal") << ChartRange{2, 2} << linear << ChartRange{1.9, 2.1};
    QTest::newRow("equal and negative") << ChartRange{-2, -2} << linear << ChartRange{-2.1, -1.9};
    QTest::newRow("zeros") << ChartRange{0, 0} << linear << ChartRange{0, 1};
    QTest::newRow("largest") << ChartRange{-largest, largest} << linear << ChartRange{-largest, largest};
    QTest::newRow("logarithmic") << ChartRange{1, 100} << logarithmic
                                 << ChartRange{std::pow(10, -0.1), std::pow(10, 2.1)};
}

void ChartScaleTest::roomAround()
{
    QFETCH(ChartRange, data);
    QFETCH(ChartScaleKind, kind);
    QFETCH(ChartRange, shown);
    const ChartRange found = zorel::ui::kit::roomAround(data, kind);
    QCOMPARE(found.low, shown.low);
    QCOMPARE(found.high, shown.high);
}

QTEST_APPLESS_MAIN(ChartScaleTest)
#include "ChartScaleTest.moc"
