#include "backend/protocol/EventDecoder.h"
#include "backend/protocol/Overloaded.h"

#include <QTest>
#include <QVariant>

using zorel::backend::protocol::ArchivedModel;
using zorel::backend::protocol::BackendEvent;
using zorel::backend::protocol::BackendPaths;
using zorel::backend::protocol::DoneEvent;
using zorel::backend::protocol::ErrorEvent;
using zorel::backend::protocol::EventDecoder;
using zorel::backend::protocol::LogEvent;
using zorel::backend::protocol::ModelIdentityEvent;
using zorel::backend::protocol::NeuronSnapshotPayload;
using zorel::backend::protocol::Overloaded;
using zorel::backend::protocol::ReadyEvent;
using zorel::backend::protocol::TrainStatusPayload;

namespace {

enum class Type { integer, number, text, flag, list, tier };

struct Key
{
    const char *event;
    const char *name;
    Type type;
    const char *usual;  ///< its JSON in the event's sample line
    QVariant otherwise; ///< the value when missing, null or of another type; invalid for a required key
};

/// A value for "none" that differs from "required".
const QVariant none = QVariant::fromValue(nullptr);

constexpr const char *sampleLines[]{
    R"({"event":"ready","default_max_steps":11})",
    R"({"event":"status","state":"running","step":12,"max_steps":13,"loss":1.5,"lr":2.5,"grad_norm":3.5,)"
    R"("tokens_per_sec":4.5,"elapsed_s":5.5,"val_loss":6.5,"error":"e","prep_progress":7.5,"prep_detail":"d",)"
    R"("prep_elapsed_s":8.5,"prep_eta_s":9.5})",
    R"({"event":"neurons","step":14,"final":true,"n_layers":15,"neurons_per_layer":16,"hidden_dim":17,)"
    R"("layers":[{"layer":18,"neurons":[{"index":19,"activation":0.5,"dim_start":20,"dim_end":21,"tier":"high"}]}]})",
    R"({"event":"log","level":"WARN","msg":"m"})",
    R"({"event":"error","msg":"m"})",
    R"({"event":"model_archived","path":"/p/q","folder_name":"f","step":22,"loss":10.5,"elapsed":11.5})",
    R"({"event":"paths","library_root":"l","training_data":"t","finished_models":"f","model_root":"r"})",
};

const std::vector<Key> keys{
    {"ready", "default_max_steps", Type::integer, "11", 50000},
    {"status", "state", Type::text, "\"running\"", {}},
    {"status", "step", Type::integer, "12", {}},
    {"status", "max_steps", Type::integer, "13", {}},
    {"status", "loss", Type::number, "1.5", {}},
    {"status", "lr", Type::number, "2.5", {}},
    {"status", "grad_norm", Type::number, "3.5", {}},
    {"status", "tokens_per_sec", Type::number, "4.5", {}},
    {"status", "elapsed_s", Type::number, "5.5", {}},
    {"status", "val_loss", Type::number, "6.5", none},
    {"status", "error", Type::text, "\"e\"", none},
    {"status", "prep_progress", Type::number, "7.5", 0.0},
    {"status", "prep_detail", Type::text, "\"d\"", QString()},
    {"status", "prep_elapsed_s", Type::number, "8.5", 0.0},
    {"status", "prep_eta_s", Type::number, "9.5", 0.0},
    {"neurons", "step", Type::integer, "14", {}},
    {"neurons", "final", Type::flag, "true", {}},
    {"neurons", "n_layers", Type::integer, "15", {}},
    {"neurons", "neurons_per_layer", Type::integer, "16", {}},
    {"neurons", "hidden_dim", Type::integer, "17", {}},
    {"neurons",
     "layers",
     Type::list,
     R"([{"layer":18,"neurons":[{"index":19,"activation":0.5,"dim_start":20,"dim_end":21,"tier":"high"}]}])",
     {}},
    {"neurons", "layer", Type::integer, "18", {}},
    {"neurons",
     "neurons",
     Type::list,
     R"([{"index":19,"activation":0.5,"dim_start":20,"dim_end":21,"tier":"high"}])",
     {}},
    {"neurons", "index", Type::integer, "19", {}},
    {"neurons", "activation", Type::number, "0.5", {}},
    {"neurons", "dim_start", Type::integer, "20", {}},
    {"neurons", "dim_end", Type::integer, "21", {}},
    {"neurons", "tier", Type::tier, "\"high\"", {}},
    {"log", "level", Type::text, "\"WARN\"", QStringLiteral("INFO")},
    {"log", "msg", Type::text, "\"m\"", QString()},
    {"error", "msg", Type::text, "\"m\"", QStringLiteral("unknown error")},
    {"model_archived", "path", Type::text, "\"/p/q\"", QString()},
    {"model_archived", "folder_name", Type::text, "\"f\"", QStringLiteral("q")},
    {"model_archived", "step", Type::integer, "22", 0},
    {"model_archived", "loss", Type::number, "10.5", 0.0},
    {"model_archived", "elapsed", Type::number, "11.5", 0.0},
    {"paths", "library_root", Type::text, "\"l\"", QString()},
    {"paths", "training_data", Type::text, "\"t\"", QString()},
    {"paths", "finished_models", Type::text, "\"f\"", QString()},
    {"paths", "model_root", Type::text, "\"r\"", QString()},
};

template <class Value>
QVariant orNone(const std::optional<Value> &value)
{
    return value ? QVariant::fromValue(*value) : none;
}

QVariantMap fieldsOf(const TrainStatusPayload &status)
{
    return {{QStringLiteral("state"), status.state},
            {QStringLiteral("step"), qint64(status.step)},
            {QStringLiteral("max_steps"), qint64(status.maxSteps)},
            {QStringLiteral("loss"), status.loss},
            {QStringLiteral("lr"), status.lr},
            {QStringLiteral("grad_norm"), status.gradNorm},
            {QStringLiteral("tokens_per_sec"), status.tokensPerSec},
            {QStringLiteral("elapsed_s"), status.elapsedS},
            {QStringLiteral("val_loss"), orNone(status.valLoss)},
            {QStringLiteral("error"), orNone(status.error)},
            {QStringLiteral("prep_progress"), status.prepProgress},
            {QStringLiteral("prep_detail"), status.prepDetail},
            {QStringLiteral("prep_elapsed_s"), status.prepElapsedS},
            {QStringLiteral("prep_eta_s"), status.prepEtaS}};
}

QVariantMap fieldsOf(const NeuronSnapshotPayload &snapshot)
{
    QVariantMap fields{{QStringLiteral("step"), qint64(snapshot.step)},
                       {QStringLiteral("final"), snapshot.final},
                       {QStringLiteral("n_layers"), qint64(snapshot.nLayers)},
                       {QStringLiteral("neurons_per_layer"), qint64(snapshot.neuronsPerLayer)},
                       {QStringLiteral("hidden_dim"), qint64(snapshot.hiddenDim)},
                       {QStringLiteral("layers"), qint64(snapshot.layers.size())}};
    if (snapshot.layers.empty()) {
        return fields;
    }
    fields[QStringLiteral("layer")] = qint64(snapshot.layers[0].layer);
    fields[QStringLiteral("neurons")] = qint64(snapshot.layers[0].neurons.size());
    if (snapshot.layers[0].neurons.empty()) {
        return fields;
    }
    const auto &neuron = snapshot.layers[0].neurons[0];
    fields[QStringLiteral("index")] = qint64(neuron.index);
    fields[QStringLiteral("activation")] = neuron.activation;
    fields[QStringLiteral("dim_start")] = qint64(neuron.dimStart);
    fields[QStringLiteral("dim_end")] = qint64(neuron.dimEnd);
    fields[QStringLiteral("tier")] = static_cast<int>(neuron.tier);
    return fields;
}

QVariantMap fieldsOf(const BackendEvent &event)
{
    return std::visit(
        Overloaded{
            [](const ReadyEvent &ready) {
                return QVariantMap{{QStringLiteral("default_max_steps"), qint64(ready.defaultMaxSteps)}};
            },
            [](const TrainStatusPayload &status) { return fieldsOf(status); },
            [](const NeuronSnapshotPayload &snapshot) { return fieldsOf(snapshot); },
            [](const LogEvent &log) {
                return QVariantMap{{QStringLiteral("level"), log.level}, {QStringLiteral("msg"), log.msg}};
            },
            [](const ErrorEvent &error) {
                return QVariantMap{{QStringLiteral("msg"), error.msg}};
            },
            [](const ArchivedModel &model) {
                return QVariantMap{{QStringLiteral("path"), model.path},
                                   {QStringLiteral("folder_name"), model.folderName},
                                   {QStringLiteral("step"), qint64(model.step)},
                                   {QStringLiteral("loss"), model.loss},
                                   {QStringLiteral("elapsed"), model.elapsedS}};
            },
            [](const BackendPaths &paths) {
                return QVariantMap{{QStringLiteral("library_root"), paths.libraryRoot},
                                   {QStringLiteral("training_data"), paths.trainingData},
                                   {QStringLiteral("finished_models"), paths.finishedModels},
                                   {QStringLiteral("model_root"), paths.modelRoot}};
            },
            [](const ModelIdentityEvent &) { return QVariantMap(); },
            [](const DoneEvent &) { return QVariantMap(); },
        },
        event);
}

/// The fields of the decoded line; nothing when the line is bad.
std::optional<QVariantMap> decodedFields(const QByteArray &line)
{
    const auto result = EventDecoder().decode({line.constData(), static_cast<std::size_t>(line.size())});
    const auto *event = std::get_if<BackendEvent>(&result);
    return event ? std::optional(fieldsOf(*event)) : std::nullopt;
}

QByteArray sampleLine(const char *event)
{
    for (const char *line : sampleLines) {
        if (QByteArray(line).startsWith("{\"event\":\"" + QByteArray(event) + "\"")) {
            return line;
        }
    }
    qFatal("no sample of %s", event);
}

QByteArray quoted(const char *name)
{
    return '"' + QByteArray(name) + "\":";
}

/// The sample line with other JSON for one key.
QByteArray lineWith(const Key &key, const QByteArray &json)
{
    QByteArray line = sampleLine(key.event);
    const QByteArray usual = quoted(key.name) + key.usual;
    Q_ASSERT(line.count(usual) == 1);
    return line.replace(usual, quoted(key.name) + json);
}

QByteArray lineWithout(const Key &key)
{
    QByteArray line = sampleLine(key.event);
    return line.replace(quoted(key.name) + key.usual, "\"unused\":0");
}

struct Good
{
    QByteArray json;
    QVariant value;
};

std::vector<Good> goodValues(Type type)
{
    switch (type) {
    case Type::integer:
        return {{"7", 7},
                {"-7", -7},
                {"7.0", 7},
                {"7e0", 7},
                {"70e-1", 7},
                {"0.7E+1", 7},
                {"0", 0},
                {"-0.0", 0},
                {"9223372036854775807", Q_INT64_C(9223372036854775807)},
                {"-9223372036854775808", std::numeric_limits<qint64>::min()},
                {"9007199254740993.0", Q_INT64_C(9007199254740993)}};
    case Type::number:
        return {{"7", 7.0},
                {"-7.25", -7.25},
                {"7e2", 700.0},
                {"1E-2", 0.01},
                {"0", 0.0},
                {"9223372036854775808", 9223372036854775808.0},
                {"123456789012345678901234567890", 123456789012345678901234567890.0},
                {"1e-999", 0.0},
                {"1.7976931348623157e308", 1.7976931348623157e308}};
    case Type::text:
        return {{"\"x\"", QStringLiteral("x")},
                {"\"\"", QString()},
                {R"("\u00fc\n\"")", QStringLiteral("ü\n\"")}};
    case Type::flag:
        return {{"true", true}, {"false", false}};
    case Type::list:
        return {{"[]", 0}};
    case Type::tier:
        return {{"\"inactive\"", 0}, {"\"moderate\"", 1}, {"\"high\"", 2}};
    }
    return {};
}

QByteArrayList wrongValues(Type type)
{
    QByteArrayList wrong{"null", "{}", "{\"a\":[1]}"};
    if (type != Type::list) {
        wrong << "[]"
              << "[1]";
    }
    if (type != Type::flag) {
        wrong << "true"
              << "false";
    }
    if (type != Type::text && type != Type::tier) {
        wrong << "\"\""
              << "\"7\""
              << "\"true\"";
    }
    if (type == Type::integer) {
        wrong << "5.5"
              << "7e-1"
              << "9223372036854775808"
              << "-9223372036854775809"
              << "18446744073709551616"
              << "1e30";
    }
    if (type == Type::integer || type == Type::number) {
        wrong << "1e999"
              << "-1e999";
    } else {
        wrong << "0"
              << "1"
              << "1.5"
              << "1e999";
    }
    if (type == Type::list) {
        wrong << "[1]"
              << "[null]"
              << "[{}]"
              << "[[]]";
    }
    if (type == Type::tier) {
        wrong << "\"\""
              << "\"High\""
              << "\"high \""
              << "\"highest\""
              << "\"low\"";
    }
    return wrong;
}

} // namespace

class EventFieldsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySampleLineDecodes();
    void everyKey_data();
    void everyKey();
};

void EventFieldsTest::everySampleLineDecodes()
{
    for (const char *line : sampleLines) {
        QVERIFY2(decodedFields(line), line);
    }
}

void EventFieldsTest::everyKey_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("expected"); // invalid: the line is bad
    for (const Key &key : keys) {
        const QByteArray prefix = QByteArray(key.event) + '.' + key.name + ": ";
        const QString name = QString::fromLatin1(key.name);
        QTest::newRow((prefix + "missing").constData()) << lineWithout(key) << name << key.otherwise;
        for (const QByteArray &json : wrongValues(key.type)) {
            QTest::newRow((prefix + json).constData()) << lineWith(key, json) << name << key.otherwise;
        }
        for (const Good &good : goodValues(key.type)) {
            QTest::newRow((prefix + good.json).constData()) << lineWith(key, good.json) << name << good.value;
        }
    }
}

void EventFieldsTest::everyKey()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, key);
    QFETCH(QVariant, expected);
    const std::optional<QVariantMap> fields = decodedFields(line);
    QCOMPARE(fields.has_value(), expected.isValid());
    if (fields) {
        QCOMPARE(fields->value(key), expected);
    }
}

QTEST_APPLESS_MAIN(EventFieldsTest)
#include "EventFieldsTest.moc"
