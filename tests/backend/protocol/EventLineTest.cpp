#include "tests/backend/protocol/Decoding.h"

#include <QTest>

namespace zorel::tests {

using backend::protocol::BackendEvent;
using backend::protocol::DecodingError;
using backend::protocol::DoneEvent;
using backend::protocol::ErrorEvent;
using backend::protocol::EventDecoder;
using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSnapshotPayload;
using backend::protocol::TrainStatusPayload;

namespace {

std::string nested(std::string_view open, std::string_view middle, std::string_view close, int depth)
{
    std::string text;
    for (int level = 0; level < depth; ++level) {
        text += open;
    }
    text += middle;
    for (int level = 0; level < depth; ++level) {
        text += close;
    }
    return text;
}

} // namespace

/// An event's line as JSON: what is read from it in whatever form, and what makes it bad.
class EventLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysMayComeInAnyOrder();
    void escapedKeysAndNamesCount();
    void unknownKeysAreIgnored();
    void aKeyGivenTwiceCountsAsGivenLast();
    void anEventNameGivenTwiceCountsAsGivenLast();
    void aKeyInsideAnotherValueIsNotMistaken();
    void longTextsBeforeAnUnusualKeyAreTaken();
    void textIsTakenCharacterForCharacter_data();
    void textIsTakenCharacterForCharacter();
    void whatIsNoJsonObjectIsBad_data();
    void whatIsNoJsonObjectIsBad();
    void brokenJsonBehindUnknownKeysIsBad_data();
    void brokenJsonBehindUnknownKeysIsBad();
    void everyTruncationIsBad();
    void deepNestingIsBadAndHarmless_data();
    void deepNestingIsBadAndHarmless();
    void nestingToAReasonableDepthIsAccepted();
    void bytesAfterTheLineDoNotMatter_data();
    void bytesAfterTheLineDoNotMatter();
    void aBadLineDoesNotDisturbTheNext();
    void aLineOfSixteenMebibytesIsDecoded();
};

void EventLineTest::keysMayComeInAnyOrder()
{
    const auto status = decoded<TrainStatusPayload>(
        R"({"elapsed_s":7,"val_loss":8,"tokens_per_sec":6,"grad_norm":5,"lr":4,"loss":3,"max_steps":2,"step":1,)"
        R"("state":"idle","event":"status"})");
    QVERIFY(status);
    QCOMPARE(*status,
             (TrainStatusPayload{QStringLiteral("idle"), 1, 2, 3, 4, 5, 6, 7, 8.0, {}, 0, {}, 0, 0}));

    const auto snapshot = decoded<NeuronSnapshotPayload>(
        R"({"layers":[{"neurons":[{"tier":"inactive","dim_end":4,"dim_start":3,"activation":2,"index":1}],)"
        R"("layer":9}],"hidden_dim":8,"neurons_per_layer":7,"n_layers":6,"final":false,"step":5,"event":"neurons"})");
    QVERIFY(snapshot);
    const NeuronSnapshotPayload expected{5, false, 6,
                                         7, 8,     {{9, {{1, 2, 3, 4, NeuronActivityTier::inactive}}}}};
    QCOMPARE(*snapshot, expected);
}

void EventLineTest::escapedKeysAndNamesCount()
{
    QCOMPARE(decoded<ErrorEvent>(R"({"ev\u0065nt":"err\u006fr","\u006dsg":"a"})"),
             ErrorEvent{QStringLiteral("a")});
    QCOMPARE(decoded<ErrorEvent>(R"({"event":"error","m\u0073g":"a"})"), ErrorEvent{QStringLiteral("a")});
    const auto snapshot = decoded<NeuronSnapshotPayload>(
        R"({"event":"neurons","step":1,"final":true,"n_layers":1,"neurons_per_layer":1,"hidden_dim":2,"layers":)"
        R"([{"layer":0,"neurons":[{"index":0,"activation":0.5,"dim_start":0,"dim_end":2,"tier":"h\u0069gh"}]}]})");
    QVERIFY(snapshot);
    QCOMPARE(snapshot->layers[0].neurons[0].tier, NeuronActivityTier::high);
}

void EventLineTest::unknownKeysAreIgnored()
{
    QCOMPARE(decoded<ErrorEvent>(
                 R"({"x":{"event":"done"},"event":"error","y":[1,{"msg":"b"},null,true,"\n"],"msg":"a",)"
                 R"("z":-0.5e-3})"),
             ErrorEvent{QStringLiteral("a")});
}

void EventLineTest::aKeyGivenTwiceCountsAsGivenLast()
{
    QCOMPARE(decoded<ErrorEvent>(R"({"event":"error","msg":"a","msg":"b"})"),
             ErrorEvent{QStringLiteral("b")});
    QCOMPARE(decoded<ErrorEvent>(R"({"event":"error","msg":"a","msg":1})"),
             ErrorEvent{QStringLiteral("unknown error")});
    const auto status = decoded<TrainStatusPayload>(
        withKey(statusWithoutValidationLoss, R"("val_loss":1,"val_loss":null,"step":"x","step":5)"));
    QVERIFY(status);
    QVERIFY(!status->valLoss);
    QCOMPARE(status->step, 5);
    QVERIFY(isBad(withKey(statusWithoutValidationLoss, R"("step":"x")")));
}

void EventLineTest::anEventNameGivenTwiceCountsAsGivenLast()
{
    QVERIFY(decoded<DoneEvent>(R"({"event":"error","event":"done"})"));
    QVERIFY(decoded<DoneEvent>(R"({"event":"status","event":"done"})"));
    QVERIFY(decoded<DoneEvent>(R"({"event":"neurons","layers":[{"neurons":[{"index":1}]}],"event":"done"})"));
    QCOMPARE(errorOf(R"({"event":"done","event":"other"})"), std::string("unknown event kind: other"));
    QCOMPARE(errorOf(R"({"event":"done","event":5})"), std::string("no event name"));
}

void EventLineTest::aKeyInsideAnotherValueIsNotMistaken()
{
    std::string line(statusWithoutValidationLoss);
    line.replace(line.find("\"step\":1"), 8, R"("step":{"max_steps":5,"loss":6})");
    QCOMPARE(errorOf(line), std::string("missing or ill-typed key: step"));
    const auto status = decoded<TrainStatusPayload>(withKey(
        statusWithoutValidationLoss, R"("val_loss":{"error":"inner","prep_eta_s":NaN},"error":"outer")"));
    QVERIFY(!status);
    const auto tolerated = decoded<TrainStatusPayload>(
        withKey(statusWithoutValidationLoss, R"("val_loss":[{"error":"inner"}],"error":"outer")"));
    QVERIFY(tolerated);
    QCOMPARE(tolerated->error, QStringLiteral("outer"));
    // Taken for the next key, the inner one would have what is between skipped unseen.
    QVERIFY(isBad(
        withKey(statusWithoutValidationLoss, R"("val_loss":{"error":"inner"},"x":NaN,"error":"outer")")));
}

void EventLineTest::longTextsBeforeAnUnusualKeyAreTaken()
{
    for (const int length : {1, 100, 10'000, 600'000, 2'000'000}) {
        const std::string text(static_cast<std::size_t>(length), 'x');
        std::string line =
            withKey(statusWithoutValidationLoss, R"("error":")" + text + R"(","zzz":[")" + text + "\"]");
        line.replace(line.find("running"), 7, text);
        const auto status = decoded<TrainStatusPayload>(line);
        QVERIFY(status);
        QCOMPARE(status->state.size(), length);
        QCOMPARE(status->error->size(), length);
    }
}

void EventLineTest::textIsTakenCharacterForCharacter_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("text");
    QTest::newRow("escapes") << QByteArray(R"(\"\\\/\b\f\n\r\t)") << QStringLiteral("\"\\/\b\f\n\r\t");
    QTest::newRow("pair") << QByteArray(R"(\ud83d\ude00)") << QString::fromUcs4(U"\U0001F600", 1);
    QTest::newRow("raw") << QByteArray("gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80")
                         << QStringLiteral("grüß ") + QString::fromUcs4(U"\U0001F600", 1);
    QTest::newRow("nul") << QByteArray(R"(a\u0000b)")
                         << QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b"));
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBFx")
                                     << QString(QChar(0xFEFF)) + QStringLiteral("x");
    QTest::newRow("escaped byte order mark")
        << QByteArray(R"(\ufeffx)") << QString(QChar(0xFEFF)) + QStringLiteral("x");
}

void EventLineTest::textIsTakenCharacterForCharacter()
{
    QFETCH(QByteArray, json);
    const auto event = decoded<ErrorEvent>(R"({"event":"error","msg":")" + json.toStdString() + "\"}");
    QVERIFY(event);
    QTEST(event->msg, "text");
}

void EventLineTest::whatIsNoJsonObjectIsBad_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blank") << QByteArray("   ");
    QTest::newRow("traceback") << QByteArray("Traceback (most recent call last):");
    QTest::newRow("array") << QByteArray(R"([{"event":"done"}])");
    QTest::newRow("string") << QByteArray(R"("done")");
    QTest::newRow("number") << QByteArray("5");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("name of another type") << QByteArray(R"({"event":5})");
    QTest::newRow("null name") << QByteArray(R"({"event":null})");
    QTest::newRow("no name") << QByteArray(R"({"msg":"done"})");
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF{\"event\":\"done\"}");
    QTest::newRow("trailing word") << QByteArray(R"({"event":"done"} x)");
    QTest::newRow("trailing bracket") << QByteArray(R"({"event":"done"}})");
    QTest::newRow("trailing object") << QByteArray(R"({"event":"done"}{"event":"done"})");
    QTest::newRow("trailing comma") << QByteArray(R"({"event":"done",})");
    QTest::newRow("trailing nul") << QByteArray("{\"event\":\"done\"}\0", 17);
    QTest::newRow("single quotes") << QByteArray("{'event':'done'}");
    QTest::newRow("name without quotes") << QByteArray(R"({"event":done})");
    QTest::newRow("comment") << QByteArray(R"({"event":"done"/**/})");
    QTest::newRow("missing comma") << QByteArray(R"({"event":"error" "msg":"a"})");
    QTest::newRow("missing colon") << QByteArray(R"({"event" "done"})");
    QTest::newRow("raw nul in a string") << QByteArray("{\"event\":\"error\",\"msg\":\"\0\"}", 27);
    QTest::newRow("raw tab in a string") << QByteArray("{\"event\":\"error\",\"msg\":\"\t\"}");
    QTest::newRow("invalid utf-8") << QByteArray("{\"event\":\"error\",\"msg\":\"\xFF\"}");
    QTest::newRow("surrogate in utf-8") << QByteArray("{\"event\":\"error\",\"msg\":\"\xED\xA0\x80\"}");
    QTest::newRow("lone high surrogate") << QByteArray(R"({"event":"error","msg":"\ud83d"})");
    QTest::newRow("lone low surrogate") << QByteArray(R"({"event":"error","msg":"\ude00"})");
    QTest::newRow("high surrogate and letter") << QByteArray(R"({"event":"error","msg":"\ud83d\u0041"})");
    QTest::newRow("unknown escape") << QByteArray(R"({"event":"error","msg":"\x"})");
}

void EventLineTest::whatIsNoJsonObjectIsBad()
{
    QFETCH(QByteArray, line);
    QVERIFY(isBad(line.toStdString()));
}

void EventLineTest::brokenJsonBehindUnknownKeysIsBad_data()
{
    QTest::addColumn<QByteArray>("value");
    for (const char *value : {"NaN",         "Infinity",  "-Infinity",
                              "nul",         "nullx",     "True",
                              "falsee",      "01",        "1.",
                              ".5",          "+1",        "1e",
                              "1e+",         "-",         "--1",
                              "0x1",         "1 2",       "\"\\x\"",
                              "\"\\ud800\"", "\"\\u12\"", "[1,]",
                              "[,1]",        "[1 2]",     "[1",
                              "1]",          "{\"a\"}",   "{\"a\":}",
                              "{\"a\":1,}",  "{a:1}",     "{\"\\q\":1}",
                              "{\"a\":NaN}", "[[NaN]]",   "[{\"a\":[1e]}]",
                              "{]",          "[}",        "",
                              ":",           ",",         "{\"a\":1 \"b\":2}",
                              "{\"a\" 1}"}) {
        QTest::newRow(value) << QByteArray(value);
    }
}

void EventLineTest::brokenJsonBehindUnknownKeysIsBad()
{
    QFETCH(QByteArray, value);
    const std::string text = value.toStdString();
    QVERIFY(isBad(R"({"event":"done","x":)" + text + "}"));
    QVERIFY(isBad(R"({"x":)" + text + R"(,"event":"done"})"));
    QVERIFY(isBad(R"({"event":"error","msg":)" + text + "}"));
    QVERIFY(isBad(R"({"event":"ready","default_max_steps":)" + text + "}"));
    QVERIFY(isBad(withKey(statusWithoutValidationLoss, "\"val_loss\":" + text)));
    QVERIFY(isBad(withKey(statusWithoutValidationLoss, "\"error\":" + text)));
}

void EventLineTest::everyTruncationIsBad()
{
    const std::string line =
        R"({"event":"neurons","step":1,"final":true,"n_layers":1,"neurons_per_layer":1,"hidden_dim":2,"x":[{}],"layers":)"
        R"([{"layer":0,"neurons":[{"index":0,"activation":0.5,"dim_start":0,"dim_end":2,"tier":"high"}]}]})";
    QVERIFY(decoded<NeuronSnapshotPayload>(line));
    for (std::size_t length = 0; length < line.size(); ++length) {
        QVERIFY2(isBad(line.substr(0, length)), line.substr(0, length).c_str());
    }
}

void EventLineTest::deepNestingIsBadAndHarmless_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("arrays") << QByteArray::fromStdString(nested("[", "1", "]", 10'000));
    QTest::newRow("objects") << QByteArray::fromStdString(nested("{\"a\":", "1", "}", 10'000));
    QTest::newRow("unclosed") << QByteArray(10'000, '[');
}

void EventLineTest::deepNestingIsBadAndHarmless()
{
    QFETCH(QByteArray, value);
    QVERIFY(isBad(R"({"event":"done","x":)" + value.toStdString() + "}"));
    QVERIFY(isBad(R"({"event":"error","msg":)" + value.toStdString() + "}"));
    QVERIFY(isBad(value.toStdString()));
}

void EventLineTest::nestingToAReasonableDepthIsAccepted()
{
    QVERIFY(decoded<DoneEvent>(R"({"event":"done","x":)" + nested("[", "1", "]", 900) + "}"));
    QVERIFY(decoded<DoneEvent>(R"({"event":"done","x":)" + nested("{\"a\":", "1", "}", 900) + "}"));
}

void EventLineTest::bytesAfterTheLineDoNotMatter_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("good");
    QTest::newRow("good") << QByteArray(R"({"event":"error","msg":"a"})") << true;
    QTest::newRow("unclosed object") << QByteArray(R"({"event":"done","x":{"a":1})") << false;
    QTest::newRow("unclosed array") << QByteArray(R"({"event":"done","x":[{})") << false;
    QTest::newRow("unclosed layers") << QByteArray(R"({"event":"neurons","layers":[{"neurons":[{})") << false;
    QTest::newRow("unclosed string") << QByteArray(R"({"event":"done)") << false;
}

void EventLineTest::bytesAfterTheLineDoNotMatter()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, good);
    for (const char after : {'\n', ' ', '\0', '}', ']', ',', ':', '"', '{', '[', '1', 'x', '\xFF'}) {
        const QByteArray buffer = line + QByteArray(EventDecoder::padding, after);
        EventDecoder decoder;
        const auto result = decoder.decode({buffer.constData(), static_cast<std::size_t>(line.size())},
                                           static_cast<std::size_t>(buffer.size()));
        QCOMPARE(std::holds_alternative<BackendEvent>(result), good);
        QCOMPARE(std::holds_alternative<BackendEvent>(decoder.decode(line.toStdString())), good);
    }
}

void EventLineTest::aBadLineDoesNotDisturbTheNext()
{
    EventDecoder decoder;
    for (std::string_view bad :
         {"{", "{\"event\":\"done\",\"x\":[", "x", "{\"event\":\"status\"}", "", "{\"event\":\"\\x\"}"}) {
        QVERIFY(std::holds_alternative<DecodingError>(decoder.decode(bad)));
        QVERIFY(std::holds_alternative<BackendEvent>(decoder.decode(statusWithoutValidationLoss)));
    }
}

void EventLineTest::aLineOfSixteenMebibytesIsDecoded()
{
    const std::string message(16 * 1024 * 1024, 'm');
    EventDecoder decoder;
    const auto result = decoder.decode(R"({"event":"error","msg":")" + message + "\"}");
    const auto *event = std::get_if<BackendEvent>(&result);
    QVERIFY(event);
    QCOMPARE(std::get<ErrorEvent>(*event).msg.size(), static_cast<qsizetype>(message.size()));
    QVERIFY(std::holds_alternative<BackendEvent>(decoder.decode(statusWithoutValidationLoss)));
}

} // namespace zorel::tests

QTEST_APPLESS_MAIN(zorel::tests::EventLineTest)
#include "EventLineTest.moc"
