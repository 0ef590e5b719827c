#include "backend/protocol/EventDecoder.h"

#include "tests/backend/protocol/Decoding.h"

#include <QTest>

namespace zorel::tests {

using backend::protocol::ArchivedModel;
using backend::protocol::BackendPaths;
using backend::protocol::DoneEvent;
using backend::protocol::ErrorEvent;
using backend::protocol::LogEvent;
using backend::protocol::ModelIdentityEvent;
using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSnapshotPayload;
using backend::protocol::ReadyEvent;
using backend::protocol::TrainStatusPayload;

/// What the application knows of each event, given its line.
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

} // namespace zorel::tests

QTEST_APPLESS_MAIN(zorel::tests::EventDecoderTest)
#include "EventDecoderTest.moc"
