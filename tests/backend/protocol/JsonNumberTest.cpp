#include "backend/protocol/JsonNumber.h"

#include <QTest>

#include <limits>

using zorel::backend::protocol::isJsonNumber;
using zorel::backend::protocol::wholeNumber;

class JsonNumberTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeNumbers_data();
    void wholeNumbers();
    void otherNumbers_data();
    void otherNumbers();
    void whatIsNoNumber_data();
    void whatIsNoNumber();
};

void JsonNumberTest::wholeNumbers_data()
{
    QTest::addColumn<QByteArray>("token");
    QTest::addColumn<qint64>("value");
    const auto row = [](const char *token, qint64 value) {
        QTest::newRow(token) << QByteArray(token) << value;
    };
    row("0", 0);
    row("-0", 0);
    row("0.000", 0);
    row("0e99999999999999999999", 0);
    row("5", 5);
    row("5.0", 5);
    row("5e0", 5);
    row("500E-2", 5);
    row("0.05e+2", 5);
    row("-1.20e1", -12);
    row("9223372036854775807", std::numeric_limits<qint64>::max());
    row("9223372036854775807.0", std::numeric_limits<qint64>::max());
    row("9.223372036854775807e18", std::numeric_limits<qint64>::max());
    row("-9223372036854775808", std::numeric_limits<qint64>::min());
    row("1000000000000000000e0", Q_INT64_C(1000000000000000000));
    row("0.0000000000000000000000000001e28", 1);
    row("10000000000000000000000000000e-28", 1);
}

void JsonNumberTest::wholeNumbers()
{
    QFETCH(QByteArray, token);
    QVERIFY(isJsonNumber(token.toStdString()));
    QTEST(qint64(wholeNumber(token.toStdString()).value()), "value");
}

void JsonNumberTest::otherNumbers_data()
{
    QTest::addColumn<QByteArray>("token");
    for (const char *token :
         {"5.5", "1e-1", "0.1", "9223372036854775808", "-9223372036854775809", "1e19", "1e999",
          "1e99999999999999999999", "1e-99999999999999999999", "10e9223372036854775807",
          "1.55e-9223372036854775807", "9223372036854775807.5", "99999999999999999999e-1"}) {
        QTest::newRow(token) << QByteArray(token);
    }
}

void JsonNumberTest::otherNumbers()
{
    QFETCH(QByteArray, token);
    QVERIFY(isJsonNumber(token.toStdString()));
    QVERIFY(!wholeNumber(token.toStdString()));
}

void JsonNumberTest::whatIsNoNumber_data()
{
    QTest::addColumn<QByteArray>("token");
    for (const char *token : {"", "-", "+1", "01", "-01", "1.", ".5", "1e", "1e+", "1.e1", "1 ", " 1", "1x",
                              "0x1", "NaN", "Infinity", "1.5.5", "1e1.0", "--1"}) {
        QTest::newRow(token) << QByteArray(token);
    }
}

void JsonNumberTest::whatIsNoNumber()
{
    QFETCH(QByteArray, token);
    QVERIFY(!isJsonNumber(token.toStdString()));
    QVERIFY(!wholeNumber(token.toStdString()));
}

QTEST_APPLESS_MAIN(JsonNumberTest)
#include "JsonNumberTest.moc"
