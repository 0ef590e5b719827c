#include "app/presentation/StepCount.h"

#include <QTest>

#include <limits>

namespace zorel::tests {

using namespace app::presentation;

class StepCountTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWholeNumbers_data();
    void readsWholeNumbers();
    void refusesEverythingElse_data();
    void refusesEverythingElse();
    void movesByTheSizeOfTheCount_data();
    void movesByTheSizeOfTheCount();
};

void StepCountTest::readsWholeNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("expected");
    const auto row = [](const char *text, qint64 expected) {
        QTest::newRow(text) << QString::fromUtf8(text) << expected;
    };
    row("0", 0);
    row("500", 500);
    row("+500", 500);
    row("-5", -5);
    row("-0", 0);
    row("007", 7);
    row("9223372036854775807", std::numeric_limits<qint64>::max());
    row("-9223372036854775808", std::numeric_limits<qint64>::min());
}

void StepCountTest::readsWholeNumbers()
{
    QFETCH(QString, text);
    QFETCH(qint64, expected);
    QCOMPARE(parseStepCount(text), std::optional<std::int64_t>(expected));
}

void StepCountTest::refusesEverythingElse_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"",
                             "+",
                             "-",
                             "+-5",
                             "--5",
                             "5-",
                             "5+",
                             "a",
                             "5a",
                             "0x10",
                             "1,000",
                             "1.000",
                             "1 000",
                             "1'000",
                             "1_000",
                             " 500",
                             "500 ",
                             "5\n",
                             "1e3",
                             "5.0",
                             "9223372036854775808",
                             "-9223372036854775809",
                             "99999999999999999999999",
                             "٥٠٠",
                             "５００",
                             "−5"}) {
        QTest::newRow(text) << QString::fromUtf8(text);
    }
    QTest::newRow("10,000 digits") << QString(10'000, QLatin1Char('9'));
    QTest::newRow("a NUL") << QStringLiteral("5") + QChar(0) + QStringLiteral("0");
}

void StepCountTest::refusesEverythingElse()
{
    QFETCH(QString, text);
    QVERIFY(!parseStepCount(text));
}

void StepCountTest::movesByTheSizeOfTheCount_data()
{
    QTest::addColumn<qint64>("current");
    QTest::addColumn<qint64>("expected");
    const auto row = [](qint64 current, qint64 expected) {
        QTest::addRow("%lld", static_cast<long long>(current)) << current << expected;
    };
    row(0, 10);
    row(1, 10);
    row(99, 10);
    row(100, 100);
    row(999, 100);
    row(1000, 1000);
    row(99'999, 1000);
    row(100'000, 10'000);
    row(10'000'000, 10'000);
}

void StepCountTest::movesByTheSizeOfTheCount()
{
    QFETCH(qint64, current);
    QFETCH(qint64, expected);
    QCOMPARE(stepperIncrement(current), expected);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::StepCountTest)
#include "StepCountTest.moc"
