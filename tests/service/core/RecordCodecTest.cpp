#include "service/core/RecordDecoder.h"
#include "service/core/RecordEncoder.h"

#include "service/core/Envelope.h"

#include <QtTest/QtTest>

using namespace Qt::StringLiterals;

namespace {

enum class Colour { red, darkGreen };

constexpr auto wireTexts(Colour)
{
    return std::array{caldra::WireText{Colour::red, "red"}, caldra::WireText{Colour::darkGreen, "darkGreen"}};
}

struct Inner
{
    QString name;
    std::optional<Colour> colour;

    bool operator==(const Inner &) const = default;
    static constexpr auto fields =
        std::tuple{caldra::field("name", &Inner::name), caldra::field("colour", &Inner::colour)};
};

struct Outer
{
    qint64 count = 0;
    double share = 0;
    bool isOn = false;
    std::vector<Inner> list;
    std::optional<std::map<QString, Inner>> map;
    caldra::JSONValue anything;

    bool operator==(const Outer &) const = default;
    static constexpr auto fields =
        std::tuple{caldra::field("count", &Outer::count), caldra::field("share", &Outer::share),
                   caldra::field("isOn", &Outer::isOn),   caldra::field("list", &Outer::list),
                   caldra::field("map", &Outer::map),     caldra::field("anything", &Outer::anything)};
};

const Outer sample{-3, 0.5, true, {{u"a"_s, Colour::darkGreen}, {u"b"_s, {}}}, {{{u"k"_s, {u"c"_s, {}}}}}, 7};
const QByteArray sampleText = R"({"anything":7,"count":-3,"isOn":true,)"
                              R"("list":[{"colour":"darkGreen","name":"a"},{"name":"b"}],)"
                              R"("map":{"k":{"name":"c"}},"share":0.5})";

template <class T>
QString failure(const QByteArray &text)
{
    try {
        caldra::decodeJSON<T>(text);
    } catch (const caldra::DecodingError &error) {
        return error.description();
    }
    return u"decoded"_s;
}

} // namespace

class RecordCodecTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodesWithoutAbsentFields() { QCOMPARE(caldra::encodeJSON(sample), sampleText); }

    void decodesWhatItEncoded() { QVERIFY(caldra::decodeJSON<Outer>(sampleText) == sample); }

    void ignoresUnknownKeysAndTakesNullForAbsent()
    {
        const auto inner = caldra::decodeJSON<Inner>(R"({"new": {"a": [1e5]}, "name": "n", "colour": null})");
        QVERIFY((inner == Inner{u"n"_s, {}}));
    }

    void takesTheLastOfEqualKeysWhole()
    {
        const auto outer = caldra::decodeJSON<caldra::Envelope<Inner>>(
            R"({"data": {"name": "first"}, "data": {"name": "last", "colour": "red"}})");
        QVERIFY((outer.data == Inner{u"last"_s, Colour::red}));
    }

    void takesWholeNumbersForIntegersHoweverWritten()
    {
        for (const char *text : {"5", "5.0", "5e0", "50e-1"}) {
            const QByteArray record =
                R"({"share":1,"isOn":false,"list":[],"anything":null,"count":)" + QByteArray(text) + '}';
            QCOMPARE(caldra::decodeJSON<Outer>(record).count, 5);
        }
    }

    void namesTheFieldThatFails_data()
    {
        QTest::addColumn<QByteArray>("replaced");
        QTest::addColumn<QByteArray>("replacement");
        QTest::addColumn<QString>("description");
        const auto row = [](const char *name, const char *from, const char *to, const QString &description) {
            QTest::newRow(name) << QByteArray(from) << QByteArray(to) << description;
        };
        row("missing", "\"count\":-3,", "", u"count: the value is missing"_s);
        row("null", "-3", "null", u"count: expected an integer, found null"_s);
        row("fraction", "-3", "5.5", u"count: expected an integer of 64 bits, found 5.5"_s);
        row("too large", "-3", "9223372036854775808",
            u"count: expected an integer of 64 bits, found 9.22337e+18"_s);
        row("boolean", "true", "1", u"isOn: expected a boolean, found a number"_s);
        row("number", "0.5", "\"0.5\"", u"share: expected a number, found a text"_s);
        row("text", "\"a\"", "[]", u"list[0].name: expected a text, found a list"_s);
        row("enumeration", "darkGreen", "blue", u"list[0].colour: unknown value \"blue\""_s);
        row("enumeration's case", "darkGreen", "DarkGreen", u"list[0].colour: unknown value \"DarkGreen\""_s);
        row("list", R"([{"colour":"darkGreen","name":"a"},{"name":"b"}])", "{}",
            u"list: expected a list, found an object"_s);
        row("in a map", "\"c\"", "false", u"map.k.name: expected a text, found a boolean"_s);
        row("missing in a list", R"({"name":"b"})", "{}", u"list[1].name: the value is missing"_s);
    }

    void namesTheFieldThatFails()
    {
        QFETCH(QByteArray, replaced);
        QFETCH(QByteArray, replacement);
        QFETCH(QString, description);
        QByteArray text = sampleText;
        QVERIFY(text.contains(replaced));
        QCOMPARE(failure<Outer>(text.replace(replaced, replacement)), description);
    }

    void takesAnythingForAnEmptyPayload()
    {
        for (const char *text :
             {R"({"data":null})", R"({"data":{"a":1}})", R"({"data":[]})", R"({"data":true})"}) {
            QCOMPARE(failure<caldra::Envelope<caldra::EmptyResponse>>(text), u"decoded"_s);
        }
        QCOMPARE(failure<caldra::Envelope<caldra::EmptyResponse>>("{}"), u"data: the value is missing"_s);
        QCOMPARE(failure<caldra::Envelope<caldra::EmptyResponse>>("[]"),
                 u"expected an object, found a list"_s);
    }
};

QTEST_GUILESS_MAIN(RecordCodecTest)
#include "RecordCodecTest.moc"
