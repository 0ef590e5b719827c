#include "app/presentation/DecimalText.h"

#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <cstdio>
#include <limits>

using zorel::app::presentation::fixedText;
using zorel::app::presentation::scientificText;

class DecimalTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tiesGoToTheEvenDigit();
    void agreesWithPrintf();
    void writesWhatIsNotFinite();
};

void DecimalTextTest::tiesGoToTheEvenDigit()
{
    QCOMPARE(fixedText(1234.5, 0), QStringLiteral("1234"));
    QCOMPARE(fixedText(1235.5, 0), QStringLiteral("1236"));
    QCOMPARE(fixedText(0.03125, 4), QStringLiteral("0.0312"));
    QCOMPARE(fixedText(-0.5, 0), QStringLiteral("-0"));
    QCOMPARE(scientificText(0.0003, 2), QStringLiteral("3.00e-04"));
}

void DecimalTextTest::agreesWithPrintf()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 20'000; ++round) {
        const int decimals = random.bounded(6);
        // Halves, quarters, ... are what is rounded differently; exponents go up to the largest number.
        const double value = round % 2 == 0
                                 ? random.bounded(-20'000, 20'000) / std::ldexp(1.0, random.bounded(12))
                                 : std::ldexp(random.generateDouble() - 0.5, random.bounded(-1000, 1024));
        char expected[512];
        std::snprintf(expected, sizeof expected, "%.*f", decimals, value);
        QCOMPARE(fixedText(value, decimals), QString::fromLatin1(expected));
        std::snprintf(expected, sizeof expected, "%.*e", decimals, value);
        QCOMPARE(scientificText(value, decimals), QString::fromLatin1(expected));
    }
    QCOMPARE(fixedText(std::numeric_limits<double>::max(), 4).size(), 309 + 5);
}

void DecimalTextTest::writesWhatIsNotFinite()
{
    QCOMPARE(fixedText(std::numeric_limits<double>::infinity(), 2), QStringLiteral("inf"));
    QCOMPARE(fixedText(std::numeric_limits<double>::quiet_NaN(), 2), QStringLiteral("nan"));
}

QTEST_APPLESS_MAIN(DecimalTextTest)
#include "DecimalTextTest.moc"
