#include "service/core/JSONValue.h"
#include "service/core/DecodingError.h"
#include "service/core/EncodingError.h"
#include "service/core/JSONNode.h"

#include <QtTest/QtTest>

#include <limits>

using namespace Qt::StringLiterals;
using caldra::JSONValue;

Q_DECLARE_METATYPE(caldra::JSONValue)

class JSONValueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesEachKind_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<JSONValue>("value");
        QTest::newRow("null") << QByteArray("null") << JSONValue();
        QTest::newRow("boolean") << QByteArray("true") << JSONValue(true);
        QTest::newRow("integer") << QByteArray("-5") << JSONValue(-5);
        QTest::newRow("widest integer")
            << QByteArray("9223372036854775807") << JSONValue(qint64(9223372036854775807));
        QTest::newRow("least integer")
            << QByteArray("-9223372036854775808") << JSONValue(std::numeric_limits<qint64>::min());
        QTest::newRow("whole floating point") << QByteArray("5.0") << JSONValue(5);
        QTest::newRow("exponent") << QByteArray("5e1") << JSONValue(50);
        QTest::newRow("floating point") << QByteArray("5.5") << JSONValue(5.5);
        QTest::newRow("unsigned 64 bits")
            << QByteArray("18446744073709551615") << JSONValue(18446744073709551615.0);
        QTest::newRow("over 64 bits")
            << QByteArray("[123456789012345678901234567890, \"1234567890123456789012\", 0.1]")
            << JSONValue(
                   JSONValue::Array{123456789012345678901234567890.0, u"1234567890123456789012"_s, 0.1});
        QTest::newRow("text") << QByteArray("\"\\u00e4\\ud83d\\ude00\\u0000x\"")
                              << JSONValue(u"\u00e4\U0001f600"_s + QChar(0) + u'x');
        QTest::newRow("array") << QByteArray("[1, null, []]")
                               << JSONValue(JSONValue::Array{1, nullptr, JSONValue::Array{}});
        QTest::newRow("object") << QByteArray("{\"b\": {}, \"a\": \"t\"}")
                                << JSONValue(
                                       JSONValue::Object{{u"a"_s, u"t"_s}, {u"b"_s, JSONValue::Object{}}});
        QTest::newRow("last of equal keys")
            << QByteArray("{\"a\": 1, \"a\": 2}") << JSONValue(JSONValue::Object{{u"a"_s, 2}});
        QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF[]") << JSONValue(JSONValue::Array{});
    }

    void decodesEachKind()
    {
        QFETCH(QByteArray, text);
        QFETCH(JSONValue, value);
        const JSONValue decoded = JSONValue::fromJSON(text);
        QVERIFY2(decoded == value, decoded.toJSON().constData());
        QVERIFY(JSONValue::fromJSON(value.toJSON()) == value);
    }

    void refusesWhatIsNoJSON_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("description");
        const QString noJSON = u"the text is not JSON"_s;
        QTest::newRow("empty") << QByteArray() << u"the answer is empty"_s;
        QTest::newRow("HTML") << QByteArray("<html><body>Sign in</body></html>") << noJSON;
        QTest::newRow("cut off") << QByteArray("{\"a\": [1, 2") << noJSON;
        QTest::newRow("trailing") << QByteArray("{} {}") << noJSON;
        QTest::newRow("NaN") << QByteArray("[NaN]") << noJSON;
        QTest::newRow("out of range") << QByteArray("[1e999]") << u"Unsupported JSON value"_s;
        QTest::newRow("no UTF-8") << QByteArray("\"\xff\"") << u"the text is not UTF-8"_s;
        QTest::newRow("deep") << QByteArray(10000, '[') + QByteArray(10000, ']')
                              << u"the JSON is nested too deeply"_s;
        QTest::newRow("deep objects") << QByteArray("{\"a\":").repeated(10000) + "1" + QByteArray(10000, '}')
                                      << u"the JSON is nested too deeply"_s;
        QTest::newRow("NUL") << QByteArray("[\0]", 3) << noJSON;
    }

    void refusesWhatIsNoJSON()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, description);
        try {
            JSONValue::fromJSON(text);
            QFAIL("decoded");
        } catch (const caldra::DecodingError &error) {
            QCOMPARE(error.description(), description);
        }
    }

    void refusesToEncodeWhatJSONCannotCarry()
    {
        QVERIFY_THROWS_EXCEPTION(caldra::EncodingError,
                                 JSONValue(std::numeric_limits<double>::quiet_NaN()).toJSON());
        QVERIFY_THROWS_EXCEPTION(caldra::EncodingError,
                                 JSONValue(std::numeric_limits<double>::infinity()).toJSON());
        JSONValue deep;
        for (int level = 0; level < 1500; ++level) {
            JSONValue::Array around;
            around.push_back(std::move(deep));
            deep = std::move(around);
        }
        QVERIFY_THROWS_EXCEPTION(caldra::EncodingError, deep.toJSON());
    }

    void seesWhereATextWasCut()
    {
        const QByteArray whole = "{\"a\": [\"\\\"}\", {\"b\": 1}], \"c\": \"]\"}";
        for (qsizetype length = 0; length < whole.size(); ++length) {
            QVERIFY2(caldra::isTruncatedJSON(whole.left(length)), whole.left(length).constData());
        }
        QVERIFY(!caldra::isTruncatedJSON(whole));
        QVERIFY(!caldra::isTruncatedJSON(whole + "  x"));
        QVERIFY(!caldra::isTruncatedJSON("<html>"));
    }
};

QTEST_GUILESS_MAIN(JSONValueTest)
#include "JSONValueTest.moc"
