#include "backend/protocol/SnapshotDecoder.h"

#include <QTest>

using zorel::backend::protocol::decodeSnapshot;
using zorel::backend::protocol::NeuronActivityTier;
using zorel::backend::protocol::NeuronSnapshotPayload;

namespace {

const std::string head =
    R"({"step":1,"final":true,"n_layers":2,"neurons_per_layer":2,"hidden_dim":32,"layers":)";
const std::string neuron = R"({"index":0,"activation":0.5,"dim_start":0,"dim_end":16,"tier":"high"})";

} // namespace

class SnapshotDecoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileIsReadWhole();
    void anEventNameIsIgnored();
    void countsNeedNotAgree();
    void layersMayBeEmpty();
    void aLayerMayHaveTenThousandNeurons();
    void oneBadEntryFailsTheWhole_data();
    void oneBadEntryFailsTheWhole();
    void aListGivenTwiceCountsAsGivenLast();
};

void SnapshotDecoderTest::aFileIsReadWhole()
{
    const std::string json = R"({
  "final": false, "hidden_dim": 32, "step": 7,
  "layers": [
    {"neurons": [{"tier": "moderate", "index": 3, "dim_end": 16, "dim_start": 8, "activation": 2}], "layer": 1},
    {"layer": 0, "neurons": []}
  ],
  "n_layers": 2, "neurons_per_layer": 1
}
)";
    const NeuronSnapshotPayload expected{
        7, false, 2, 1, 32, {{1, {{3, 2.0, 8, 16, NeuronActivityTier::moderate}}}, {0, {}}}};
    QCOMPARE(decodeSnapshot(json), expected);
}

void SnapshotDecoderTest::anEventNameIsIgnored()
{
    QVERIFY(decodeSnapshot(head + "[],\"event\":\"neurons\"}"));
    QVERIFY(decodeSnapshot(head + "[],\"event\":5}"));
}

void SnapshotDecoderTest::countsNeedNotAgree()
{
    const auto snapshot = decodeSnapshot(head + "[{\"layer\":9,\"neurons\":[" + neuron + "]}]}");
    QVERIFY(snapshot);
    QCOMPARE(snapshot->nLayers, 2);
    QCOMPARE(snapshot->layers.size(), std::size_t(1));
}

void SnapshotDecoderTest::layersMayBeEmpty()
{
    const auto snapshot = decodeSnapshot(head + "[]}");
    QVERIFY(snapshot);
    QVERIFY(snapshot->layers.empty());
}

void SnapshotDecoderTest::aLayerMayHaveTenThousandNeurons()
{
    std::string list = neuron;
    for (int index = 1; index < 10'000; ++index) {
        list += ", " + neuron;
    }
    const auto snapshot = decodeSnapshot(head + "[{\"layer\":0,\"neurons\":[" + list + "]}]}");
    QVERIFY(snapshot);
    QCOMPARE(snapshot->layers[0].neurons.size(), std::size_t(10'000));
    QCOMPARE(snapshot->layers[0].neurons[9'999].dimEnd, 16);
}

void SnapshotDecoderTest::oneBadEntryFailsTheWhole_data()
{
    QTest::addColumn<QByteArray>("layers");
    const QByteArray good = QByteArray::fromStdString(neuron);
    const auto neurons = [](const QByteArray &list) {
        return "[{\"layer\":0,\"neurons\":[" + list + "]}]";
    };
    const auto replaced = [&](const char *from, const char *to) {
        return neurons(good + "," + QByteArray(good).replace(from, to));
    };
    QTest::newRow("tier") << replaced("high", "low");
    QTest::newRow("escaped unknown tier") << replaced("high", "lo\\u0077");
    QTest::newRow("index") << replaced("\"index\":0", "\"index\":0.5");
    QTest::newRow("missing key") << replaced("\"dim_end\":16,", "");
    QTest::newRow("misspelt key") << replaced("dim_end", "dimEnd");
    QTest::newRow("activation") << replaced("0.5", "\"0.5\"");
    QTest::newRow("broken value of an unknown key") << replaced("\"tier\"", "\"x\":01,\"tier\"");
    QTest::newRow("broken value at the end") << replaced("\"high\"", "\"high\",\"x\":NaN");
    QTest::newRow("missing colon") << replaced("\"dim_end\":", "\"dim_end\" ");
    QTest::newRow("double comma") << replaced(",\"dim_end\"", ",,\"dim_end\"");
    QTest::newRow("leading comma") << replaced("{\"index\"", "{,\"index\"");
    QTest::newRow("no comma") << replaced(",\"dim_end\"", " \"dim_end\"");
    QTest::newRow("trailing comma") << replaced("\"high\"", "\"high\",");
    QTest::newRow("number as neuron") << neurons(good + ",5");
    QTest::newRow("null as neuron") << neurons("null," + good);
    QTest::newRow("list as neuron") << neurons("[]");
    QTest::newRow("empty neuron") << neurons("{}");
    QTest::newRow("layer without number") << QByteArray("[{\"neurons\":[]}]");
    QTest::newRow("layer without neurons") << QByteArray("[{\"layer\":0}]");
    QTest::newRow("number as layer") << QByteArray("[5]");
    QTest::newRow("object as layers") << QByteArray("{}");
}

void SnapshotDecoderTest::oneBadEntryFailsTheWhole()
{
    QFETCH(QByteArray, layers);
    QVERIFY(decodeSnapshot(head + "[{\"layer\":0,\"neurons\":[" + neuron + "," + neuron + "]}]}"));
    QVERIFY(!decodeSnapshot(head + layers.toStdString() + "}"));
}

void SnapshotDecoderTest::aListGivenTwiceCountsAsGivenLast()
{
    const auto snapshot =
        decodeSnapshot(head + "[5],\"layers\":[{\"layer\":0,\"neurons\":[" + neuron + "],\"neurons\":[]}]}");
    QVERIFY(snapshot);
    QCOMPARE(snapshot->layers.size(), std::size_t(1));
    QVERIFY(snapshot->layers[0].neurons.empty());
    QVERIFY(!decodeSnapshot(head + "[],\"layers\":5}"));
}

QTEST_APPLESS_MAIN(SnapshotDecoderTest)
#include "SnapshotDecoderTest.moc"
