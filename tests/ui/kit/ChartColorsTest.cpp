#include "ui/kit/ChartColors.h"

#include "ui/kit/Colors.h"
#include "ui/kit/Palettes.h"

#include <QTest>

#include <array>
#include <cmath>
#include <set>

using namespace zorel::ui::kit;

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>;

// What a dichromat sees of linear light, for each of the three kinds: the projections of Viénot, Brettel and
// Mollon (1999) for the first two, and the usual one for the third.
constexpr Matrix normal{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr Matrix protan{{{0.11238, 0.88762, 0}, {0.11238, 0.88762, 0}, {0.00401, -0.00401, 1}}};
constexpr Matrix deutan{{{0.29275, 0.70725, 0}, {0.29275, 0.70725, 0}, {-0.02234, 0.02234, 1}}};
constexpr Matrix tritan{
    {{1.01277, 0.13548, -0.14826}, {-0.01243, 0.86812, 0.14431}, {0.07589, 0.80500, 0.11911}}};

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

Vector times(const Matrix &matrix, const Vector &vector)
{
    Vector result{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            result[row] += matrix[row][column] * vector[column];
        }
    }
    return result;
}

Vector lab(const QColor &color, const Matrix &eye)
{
    constexpr Matrix toXyz{{{0.4124, 0.3576, 0.1805}, {0.2126, 0.7152, 0.0722}, {0.0193, 0.1192, 0.9505}}};
    constexpr Vector white{0.9505, 1, 1.089};
    Vector seen = times(eye, {linear(color.redF()), linear(color.greenF()), linear(color.blueF())});
    for (double &channel : seen) {
        channel = std::clamp(channel, 0.0, 1.0);
    }
    const Vector xyz = times(toXyz, seen);
    Vector f{};
    for (std::size_t i = 0; i < 3; ++i) {
        const double share = xyz[i] / white[i];
        f[i] = share > 0.008856 ? std::cbrt(share) : 7.787 * share + 16.0 / 116;
    }
    return {116 * f[1] - 16, 500 * (f[0] - f[1]), 200 * (f[1] - f[2])};
}

double difference(const QColor &first, const QColor &second, const Matrix &eye)
{
    const Vector a = lab(first, eye);
    const Vector b = lab(second, eye);
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

} // namespace

class ChartColorsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coloursStandOutFromTheCard_data();
    void coloursStandOutFromTheCard();
    void theColourBlindTellThemApart_data();
    void theColourBlindTellThemApart();
    void noLookComesTwiceWithinTwelve();
};

void ChartColorsTest::coloursStandOutFromTheCard_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << lightPalette();
    QTest::newRow("dark") << darkPalette();
}

void ChartColorsTest::coloursStandOutFromTheCard()
{
    QFETCH(QPalette, palette);
    for (int number = 0; number < chartColorCount; ++number) {
        const QColor line = chartSeriesLook(number, palette).color;
        for (const ColorRole surface : {ColorRole::CardBackground, ColorRole::WindowBackground}) {
            const double contrast = contrastRatio(line, color(surface, palette));
            QVERIFY2(contrast >= 3, qPrintable(QStringLiteral("%1: %2").arg(number).arg(contrast)));
        }
    }
}

void ChartColorsTest::theColourBlindTellThemApart_data()
{
    coloursStandOutFromTheCard_data();
}

void ChartColorsTest::theColourBlindTellThemApart()
{
    QFETCH(QPalette, palette);
    for (const Matrix &eye : {normal, protan, deutan, tritan}) {
        for (int first = 0; first < chartColorCount; ++first) {
            for (int second = first + 1; second < chartColorCount; ++second) {
                const QColor one = chartSeriesLook(first, palette).color;
                const QColor other = chartSeriesLook(second, palette).color;
                // The two of a comparison must differ most.
                const double least = second == 1 ? 70 : 15;
                const double found = difference(one, other, eye);
                QVERIFY2(found >= least,
                         qPrintable(QStringLiteral("%1 and %2: %3").arg(first).arg(second).arg(found)));
            }
        }
    }
}

void ChartColorsTest::noLookComesTwiceWithinTwelve()
{
    std::set<std::pair<QRgb, int>> looks;
    for (int number = 0; number < 12; ++number) {
        const ChartSeriesLook look = chartSeriesLook(number, lightPalette());
        looks.insert({look.color.rgb(), static_cast<int>(look.pattern)});
    }
    QCOMPARE(looks.size(), std::size_t{12});
    QVERIFY(chartSeriesLook(1000, lightPalette()).color.isValid());
}

QTEST_MAIN(ChartColorsTest)
#include "ChartColorsTest.moc"
