#include "backend/protocol/EventDecoder.h"

#include <QTest>

#include <optional>

using zorel::backend::protocol::ArchivedModel;
using zorel::backend::protocol::BackendEvent;
using zorel::backend::protocol::BackendPaths;
using zorel::backend::protocol::DecodingError;
using zorel::backend::protocol::DoneEvent;
using zorel::backend::protocol::ErrorEvent;
using zorel::backend::protocol::EventDecoder;
using zorel::backend::protocol::LogEvent;
using zorel::backend::protocol::ModelIdentityEvent;
using zorel::backend::protocol::NeuronActivityTier;
using zorel::backend::protocol::NeuronSnapshotPayload;
using zorel::backend::protocol::ReadyEvent;
using zorel::backend::protocol::TrainStatusPayload;

namespace {

constexpr std::string_view statusWithoutValidationLoss =
    R"({"event":"status","state":"running","step":1,"max_steps":2,"loss":3,"lr":4,"grad_norm":5,)"
    R"("tokens_per_sec":6,"elapsed_s":7})";

template <class Event>
std::optional<Event> decoded(std::string_view line)
{
    const auto result = EventDecoder().decode(line);
    const auto *event = std::get_if<BackendEvent>(&result);
    const Event *wanted = event ? std::get_if<Event>(event) : nullptr;
    return wanted ? std::optional(*wanted) : std::nullopt;
}

std::string errorOf(std::string_view line)
{
    const auto result = EventDecoder().decode(line);
    const auto *error = std::get_if<DecodingError>(&result);
    return error ? error->message : std::string();
}

bool isBad(std::string_view line)
{
    return !errorOf(line).empty();
}

std::string withKey(std::string_view line, std::string_view keyAndValue)
{
    return std::string(line.substr(0, line.size() - 1)).append(",").append(keyAndValue).append("}");
}

std::string nested(std::string_view open, std::string_view middle, std::string_view close, int depth)
{
    std::string text;
    for (int level = 0; level < depth; ++level)
        text += open;
    text += middle;
    for (int level = 0; level < depth; ++level)
        text += close;
    return text;
}

} // namespace

class EventDecoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aReadyEventWithoutAnotherKeyMeans50000Steps();
    void anErrorEventWithoutAnotherKeySaysUnknownError();
    void aLogEventWithoutAnotherKeyIsAnEmptyInfo();
    void anArchivedModelTakesItsFolderNameFromThePath();
    void theFolderNameIsTheLastComponentOfAPath_data();
    void theFolderNameIsTheLastComponentOfAPath();
    void anEmptyFolderNameIsKept();
    void aStatusWithoutValidationLossHasNone();
    void aStatusWithNullValidationLossHasNone();
    void aStatusWithoutLearningRateIsBad();
    void aStateOutsideTheKnownOnesIsCarriedThrough();
    void knownStatesAreSharedAndNotAllocated();
    void aSnapshotWithOneUnknownTierIsBadAsAWhole();
    void anUnknownNameIsBadAndNamed();
    void theEventsWithoutPayloadAreAccepted();
    void pathsAreTaken();
    void keysMayComeInAnyOrder();
    void escapedKeysAndNamesCount();
    void unknownKeysAreIgnored();
    void aKeyGivenTwiceCountsAsGivenLast();
    void anEventNameGivenTwiceCountsAsGivenLast();
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

void EventDecoderTest::aReadyEventWithoutAnotherKeyMeans50000Steps()
{
    QCOMPARE(decoded<ReadyEvent>(R"({"event":"ready"})"), ReadyEvent{50000});
    QCOMPARE(decoded<ReadyEvent>(R"({"event": "ready", "default_max_steps": 7})"), ReadyEvent{7});
}

void EventDecoderTest::anErrorEventWithoutAnotherKeySaysUnknownError()
{
    QCOMPARE(decoded<ErrorEvent>(R"({"event":"error"})"), ErrorEvent{QStringLiteral("unknown error")});
}

void EventDecoderTest::aLogEventWithoutAnotherKeyIsAnEmptyInfo()
{
    QCOMPARE(decoded<LogEvent>(R"({"event":"log"})"), (LogEvent{QStringLiteral("INFO"), QString()}));
}

void EventDecoderTest::anArchivedModelTakesItsFolderNameFromThePath()
{
    const ArchivedModel expected{QStringLiteral("/models/run-7"), QStringLiteral("run-7"), 0, 0, 0};
    QCOMPARE(decoded<ArchivedModel>(R"({"event":"model_archived","path":"/models/run-7"})"), expected);
}

void EventDecoderTest::theFolderNameIsTheLastComponentOfAPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("folderName");
    QTest::newRow("relative") << "run"
                              << "run";
    QTest::newRow("two components") << "a/b"
                                    << "b";
    QTest::newRow("slash at the end") << "a/b/"
                                      << "b";
    QTest::newRow("slashes at the end") << "/a/b//"
                                        << "b";
    QTest::newRow("slashes between") << "a//b"
                                     << "b";
    QTest::newRow("below the root") << "/a"
                                    << "a";
    QTest::newRow("root") << "/"
                          << "/";
    QTest::newRow("root twice") << "//"
                                << "/";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("blanks") << "/a/ b c "
                            << " b c ";
}

void EventDecoderTest::theFolderNameIsTheLastComponentOfAPath()
{
    QFETCH(QString, path);
    const std::string line =
        R"({"event":"model_archived","folder_name":null,"path":")" + path.toStdString() + "\"}";
    const auto model = decoded<ArchivedModel>(line);
    QVERIFY(model);
    QCOMPARE(model->path, path);
    QTEST(model->folderName, "folderName");
}

void EventDecoderTest::anEmptyFolderNameIsKept()
{
    const auto model = decoded<ArchivedModel>(R"({"event":"model_archived","path":"/a/b","folder_name":""})");
    QVERIFY(model);
    QCOMPARE(model->folderName, QString());
}

void EventDecoderTest::aStatusWithoutValidationLossHasNone()
{
    const auto status = decoded<TrainStatusPayload>(statusWithoutValidationLoss);
    QVERIFY(status);
    QVERIFY(!status->valLoss);
    QCOMPARE(*status,
             (TrainStatusPayload{QStringLiteral("running"), 1, 2, 3, 4, 5, 6, 7, {}, {}, 0, {}, 0, 0}));
}

void EventDecoderTest::aStatusWithNullValidationLossHasNone()
{
    const auto status =
        decoded<TrainStatusPayload>(withKey(statusWithoutValidationLoss, R"("val_loss":null)"));
    QVERIFY(status);
    QVERIFY(!status->valLoss);
}

void EventDecoderTest::aStatusWithoutLearningRateIsBad()
{
    const std::string line(statusWithoutValidationLoss);
    const std::size_t rate = line.find("\"lr\":4,");
    QCOMPARE(errorOf(std::string(line).erase(rate, 7)), std::string("missing or ill-typed key: lr"));
}

void EventDecoderTest::aStateOutsideTheKnownOnesIsCarriedThrough()
{
    std::string line(statusWithoutValidationLoss);
    line.replace(line.find("running"), 7, "w\\u00e4rmt auf");
    const auto status = decoded<TrainStatusPayload>(line);
    QVERIFY(status);
    QCOMPARE(status->state, QStringLiteral("wärmt auf"));
}

void EventDecoderTest::knownStatesAreSharedAndNotAllocated()
{
    const auto first = decoded<TrainStatusPayload>(statusWithoutValidationLoss);
    const auto second = decoded<TrainStatusPayload>(statusWithoutValidationLoss);
    QVERIFY(first && second);
    QCOMPARE(first->state.constData(), second->state.constData());
}

void EventDecoderTest::aSnapshotWithOneUnknownTierIsBadAsAWhole()
{
    const std::string line =
        R"({"event":"neurons","step":1,"final":true,"n_layers":1,"neurons_per_layer":2,"hidden_dim":32,"layers":)"
        R"([{"layer":0,"neurons":[{"index":0,"activation":0.5,"dim_start":0,"dim_end":16,"tier":"high"},)"
        R"({"index":1,"activation":0.25,"dim_start":16,"dim_end":32,"tier":"moderate"}]}]})";
    const auto snapshot = decoded<NeuronSnapshotPayload>(line);
    QVERIFY(snapshot);
    const NeuronSnapshotPayload expected{
        1,
        true,
        1,
        2,
        32,
        {{0, {{0, 0.5, 0, 16, NeuronActivityTier::high}, {1, 0.25, 16, 32, NeuronActivityTier::moderate}}}}};
    QCOMPARE(*snapshot, expected);

    std::string unknown = line;
    unknown.replace(unknown.find("moderate"), 8, "medium");
    QVERIFY(isBad(unknown));
}

void EventDecoderTest::anUnknownNameIsBadAndNamed()
{
    QCOMPARE(errorOf(R"({"event":"telemetry"})"), std::string("unknown event kind: telemetry"));
    QCOMPARE(errorOf(R"({"event":"Ready"})"), std::string("unknown event kind: Ready"));
    QCOMPARE(errorOf(R"({"event":""})"), std::string("unknown event kind: "));
}

void EventDecoderTest::theEventsWithoutPayloadAreAccepted()
{
    QVERIFY(decoded<DoneEvent>(R"({"event":"done"})"));
    QVERIFY(decoded<ModelIdentityEvent>(R"({"event":"model_identity","name":"x","version":1})"));
}

void EventDecoderTest::pathsAreTaken()
{
    const BackendPaths expected{QStringLiteral("/l"), QStringLiteral("/t"), QStringLiteral("/f"),
                                QStringLiteral("/m")};
    QCOMPARE(decoded<BackendPaths>(R"({"event":"paths","library_root":"/l","training_data":"/t",)"
                                   R"("finished_models":"/f","model_root":"/m"})"),
             expected);
    QCOMPARE(decoded<BackendPaths>(R"({"event":"paths"})"), BackendPaths());
}

void EventDecoderTest::keysMayComeInAnyOrder()
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

void EventDecoderTest::escapedKeysAndNamesCount()
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

void EventDecoderTest::unknownKeysAreIgnored()
{
    QCOMPARE(decoded<ErrorEvent>(
                 R"({"x":{"event":"done"},"event":"error","y":[1,{"msg":"b"},null,true,"\n"],"msg":"a",)"
                 R"("z":-0.5e-3})"),
             ErrorEvent{QStringLiteral("a")});
}

void EventDecoderTest::aKeyGivenTwiceCountsAsGivenLast()
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

void EventDecoderTest::anEventNameGivenTwiceCountsAsGivenLast()
{
    QVERIFY(decoded<DoneEvent>(R"({"event":"error","event":"done"})"));
    QVERIFY(decoded<DoneEvent>(R"({"event":"status","event":"done"})"));
    QVERIFY(decoded<DoneEvent>(R"({"event":"neurons","layers":[{"neurons":[{"index":1}]}],"event":"done"})"));
    QCOMPARE(errorOf(R"({"event":"done","event":"other"})"), std::string("unknown event kind: other"));
    QCOMPARE(errorOf(R"({"event":"done","event":5})"), std::string("no event name"));
}

void EventDecoderTest::textIsTakenCharacterForCharacter_data()
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

void EventDecoderTest::textIsTakenCharacterForCharacter()
{
    QFETCH(QByteArray, json);
    const auto event = decoded<ErrorEvent>(R"({"event":"error","msg":")" + json.toStdString() + "\"}");
    QVERIFY(event);
    QTEST(event->msg, "text");
}

void EventDecoderTest::whatIsNoJsonObjectIsBad_data()
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

void EventDecoderTest::whatIsNoJsonObjectIsBad()
{
    QFETCH(QByteArray, line);
    QVERIFY(isBad(line.toStdString()));
}

void EventDecoderTest::brokenJsonBehindUnknownKeysIsBad_data()
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
                              "{\"a\" 1}"})
        QTest::newRow(value) << QByteArray(value);
}

void EventDecoderTest::brokenJsonBehindUnknownKeysIsBad()
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

void EventDecoderTest::everyTruncationIsBad()
{
    const std::string line =
        R"({"event":"neurons","step":1,"final":true,"n_layers":1,"neurons_per_layer":1,"hidden_dim":2,"x":[{}],"layers":)"
        R"([{"layer":0,"neurons":[{"index":0,"activation":0.5,"dim_start":0,"dim_end":2,"tier":"high"}]}]})";
    QVERIFY(decoded<NeuronSnapshotPayload>(line));
    for (std::size_t length = 0; length < line.size(); ++length)
        QVERIFY2(isBad(line.substr(0, length)), line.substr(0, length).c_str());
}

void EventDecoderTest::deepNestingIsBadAndHarmless_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("arrays") << QByteArray::fromStdString(nested("[", "1", "]", 10'000));
    QTest::newRow("objects") << QByteArray::fromStdString(nested("{\"a\":", "1", "}", 10'000));
    QTest::newRow("unclosed") << QByteArray(10'000, '[');
}

void EventDecoderTest::deepNestingIsBadAndHarmless()
{
    QFETCH(QByteArray, value);
    QVERIFY(isBad(R"({"event":"done","x":)" + value.toStdString() + "}"));
    QVERIFY(isBad(R"({"event":"error","msg":)" + value.toStdString() + "}"));
    QVERIFY(isBad(value.toStdString()));
}

void EventDecoderTest::nestingToAReasonableDepthIsAccepted()
{
    QVERIFY(decoded<DoneEvent>(R"({"event":"done","x":)" + nested("[", "1", "]", 900) + "}"));
    QVERIFY(decoded<DoneEvent>(R"({"event":"done","x":)" + nested("{\"a\":", "1", "}", 900) + "}"));
}

void EventDecoderTest::bytesAfterTheLineDoNotMatter_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("good");
    QTest::newRow("good") << QByteArray(R"({"event":"error","msg":"a"})") << true;
    QTest::newRow("unclosed object") << QByteArray(R"({"event":"done","x":{"a":1})") << false;
    QTest::newRow("unclosed array") << QByteArray(R"({"event":"done","x":[{})") << false;
    QTest::newRow("unclosed layers") << QByteArray(R"({"event":"neurons","layers":[{"neurons":[{})") << false;
    QTest::newRow("unclosed string") << QByteArray(R"({"event":"done)") << false;
}

void EventDecoderTest::bytesAfterTheLineDoNotMatter()
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

void EventDecoderTest::aBadLineDoesNotDisturbTheNext()
{
    EventDecoder decoder;
    for (std::string_view bad :
         {"{", "{\"event\":\"done\",\"x\":[", "x", "{\"event\":\"status\"}", "", "{\"event\":\"\\x\"}"}) {
        QVERIFY(std::holds_alternative<DecodingError>(decoder.decode(bad)));
        QVERIFY(std::holds_alternative<BackendEvent>(decoder.decode(statusWithoutValidationLoss)));
    }
}

void EventDecoderTest::aLineOfSixteenMebibytesIsDecoded()
{
    const std::string message(16 * 1024 * 1024, 'm');
    EventDecoder decoder;
    const auto result = decoder.decode(R"({"event":"error","msg":")" + message + "\"}");
    const auto *event = std::get_if<BackendEvent>(&result);
    QVERIFY(event);
    QCOMPARE(std::get<ErrorEvent>(*event).msg.size(), static_cast<qsizetype>(message.size()));
    QVERIFY(std::holds_alternative<BackendEvent>(decoder.decode(statusWithoutValidationLoss)));
}

QTEST_APPLESS_MAIN(EventDecoderTest)
#include "EventDecoderTest.moc"
