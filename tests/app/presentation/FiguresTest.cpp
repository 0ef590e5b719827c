#include "app/presentation/Figures.h"
#include "app/presentation/StatusText.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace zorel::tests {

using namespace app::presentation;
using app::settings::ModelFamily;

class FiguresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsDurations_data();
    void cutsDurations();
    void writesFigures();
    void writesADashForWhatIsNotFinite();
    void hidesMeaninglessPerplexities();
    void groupsDigits();
    void saysWhatIsPrepared();
};

void FiguresTest::cutsDurations_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");
    const auto row = [](double seconds, const char *expected) {
        QTest::newRow(expected) << seconds << QString::fromUtf8(expected);
    };
    row(0, "0s");
    row(42.99, "42s");
    row(59.999, "59s");
    row(60, "1m00s");
    row(3599.9, "59m59s");
    row(3600, "1h00m");
    row(3659, "1h00m");
    row(90'061, "25h01m");
    row(-5.5, "-5s");
    row(-7200, "-7200s");
    row(1e300, "—");
    row(std::numeric_limits<double>::quiet_NaN(), "—");
}

void FiguresTest::cutsDurations()
{
    QFETCH(double, seconds);
    QFETCH(QString, expected);
    QCOMPARE(durationText(seconds), expected);
}

void FiguresTest::writesFigures()
{
    QCOMPARE(lossText(2.34567), QStringLiteral("2.3457"));
    QCOMPARE(learningRateText(0.0003), QStringLiteral("3.00e-04"));
    QCOMPARE(gradNormText(0.98765), QStringLiteral("0.988"));
    QCOMPARE(throughputText(12345.6), QStringLiteral("12346"));
    QCOMPARE(perplexityText(1), QStringLiteral("2.7"));
}

void FiguresTest::writesADashForWhatIsNotFinite()
{
    for (const double value :
         {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::quiet_NaN()}) {
        for (const auto format :
             {&lossText, &learningRateText, &gradNormText, &throughputText, &perplexityText}) {
            QCOMPARE(format(value), QStringLiteral("—"));
        }
    }
}

void FiguresTest::hidesMeaninglessPerplexities()
{
    QCOMPARE(perplexityText(0), QStringLiteral("—"));
    QCOMPARE(perplexityText(-1), QStringLiteral("—"));
    QCOMPARE(perplexityText(20), QStringLiteral("—"));
    QCOMPARE(perplexityText(19.999), QString::asprintf("%.1f", std::exp(19.999)));
}

void FiguresTest::groupsDigits()
{
    QCOMPARE(groupedText(0), QStringLiteral("0"));
    QCOMPARE(groupedText(999), QStringLiteral("999"));
    QCOMPARE(groupedText(1000), QStringLiteral("1,000"));
    QCOMPARE(groupedText(10'000'000), QStringLiteral("10,000,000"));
    QCOMPARE(groupedText(-1234), QStringLiteral("-1,234"));
}

void FiguresTest::saysWhatIsPrepared()
{
    QCOMPARE(preparationDetail(QStringLiteral("a.txt"), ModelFamily::multimodal), QStringLiteral("a.txt"));
    QCOMPARE(preparationDetail(QString(), ModelFamily::textLanguage),
             QStringLiteral("Working on your corpus…"));
    for (const ModelFamily family : {ModelFamily::imageGeneration, ModelFamily::multimodal}) {
        QCOMPARE(preparationDetail(QString(), family),
                 QStringLiteral("Indexing images in your training folder…"));
        QCOMPARE(throughputLabel(family), QStringLiteral("Samples/sec"));
    }
    QCOMPARE(throughputLabel(ModelFamily::textLanguage), QStringLiteral("Tokens/sec"));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::FiguresTest)
#include "FiguresTest.moc"
