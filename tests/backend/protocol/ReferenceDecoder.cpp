#include "tests/backend/protocol/ReferenceDecoder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace zorel::tests {

using backend::protocol::ArchivedModel;
using backend::protocol::BackendEvent;
using backend::protocol::BackendPaths;
using backend::protocol::DoneEvent;
using backend::protocol::ErrorEvent;
using backend::protocol::LayerNeurons;
using backend::protocol::LogEvent;
using backend::protocol::ModelIdentityEvent;
using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSnapshotPayload;
using backend::protocol::ReadyEvent;
using backend::protocol::TrainStatusPayload;
using backend::protocol::VisualNeuron;

namespace {

/// Thrown where a required key is missing or has another type.
struct BadEvent
{};

QJsonValue valueOf(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1StringView(key));
}

std::optional<std::int64_t> integerIn(const QJsonObject &object, const char *key)
{
    const QJsonValue value = valueOf(object, key);
    // Two different answers for two defaults: it is no integer.
    if (value.toInteger(1) != value.toInteger(2)) {
        return std::nullopt;
    }
    return value.toInteger();
}

std::optional<double> numberIn(const QJsonObject &object, const char *key)
{
    const QJsonValue value = valueOf(object, key);
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<QString> textIn(const QJsonObject &object, const char *key)
{
    const QJsonValue value = valueOf(object, key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

template <class Value>
Value required(const std::optional<Value> &value)
{
    if (!value) {
        throw BadEvent();
    }
    return *value;
}

TrainStatusPayload statusOf(const QJsonObject &object)
{
    TrainStatusPayload status;
    status.state = required(textIn(object, "state"));
    status.step = required(integerIn(object, "step"));
    status.maxSteps = required(integerIn(object, "max_steps"));
    status.loss = required(numberIn(object, "loss"));
    status.lr = required(numberIn(object, "lr"));
    status.gradNorm = required(numberIn(object, "grad_norm"));
    status.tokensPerSec = required(numberIn(object, "tokens_per_sec"));
    status.elapsedS = required(numberIn(object, "elapsed_s"));
    status.valLoss = numberIn(object, "val_loss");
    status.error = textIn(object, "error");
    status.prepProgress = numberIn(object, "prep_progress").value_or(0);
    status.prepDetail = textIn(object, "prep_detail").value_or(QString());
    status.prepElapsedS = numberIn(object, "prep_elapsed_s").value_or(0);
    status.prepEtaS = numberIn(object, "prep_eta_s").value_or(0);
    return status;
}

VisualNeuron neuronOf(const QJsonObject &object)
{
    const QString tier = required(textIn(object, "tier"));
    const QStringList tiers{QStringLiteral("inactive"), QStringLiteral("moderate"), QStringLiteral("high")};
    if (!tiers.contains(tier)) {
        throw BadEvent();
    }
    return {required(integerIn(object, "index")), required(numberIn(object, "activation")),
            required(integerIn(object, "dim_start")), required(integerIn(object, "dim_end")),
            static_cast<NeuronActivityTier>(tiers.indexOf(tier))};
}

QJsonArray listIn(const QJsonObject &object, const char *key)
{
    const QJsonValue value = valueOf(object, key);
    if (!value.isArray()) {
        throw BadEvent();
    }
    return value.toArray();
}

QJsonObject entry(const QJsonValue &value)
{
    if (!value.isObject()) {
        throw BadEvent();
    }
    return value.toObject();
}

NeuronSnapshotPayload snapshotOf(const QJsonObject &object)
{
    if (!valueOf(object, "final").isBool()) {
        throw BadEvent();
    }
    NeuronSnapshotPayload snapshot;
    snapshot.step = required(integerIn(object, "step"));
    snapshot.final = valueOf(object, "final").toBool();
    snapshot.nLayers = required(integerIn(object, "n_layers"));
    snapshot.neuronsPerLayer = required(integerIn(object, "neurons_per_layer"));
    snapshot.hiddenDim = required(integerIn(object, "hidden_dim"));
    for (const QJsonValue layerValue : listIn(object, "layers")) {
        const QJsonObject layerObject = entry(layerValue);
        LayerNeurons layer{required(integerIn(layerObject, "layer")), {}};
        for (const QJsonValue neuronValue : listIn(layerObject, "neurons")) {
            layer.neurons.push_back(neuronOf(entry(neuronValue)));
        }
        snapshot.layers.push_back(layer);
    }
    return snapshot;
}

QString lastComponent(const QString &path)
{
    const QStringList components = path.split(u'/', Qt::SkipEmptyParts);
    return components.isEmpty() ? path.left(1) : components.last();
}

ArchivedModel archivedModelOf(const QJsonObject &object)
{
    const QString path = textIn(object, "path").value_or(QString());
    return {path, textIn(object, "folder_name").value_or(lastComponent(path)),
            integerIn(object, "step").value_or(0), numberIn(object, "loss").value_or(0),
            numberIn(object, "elapsed").value_or(0)};
}

BackendPaths pathsOf(const QJsonObject &object)
{
    return {textIn(object, "library_root").value_or(QString()),
            textIn(object, "training_data").value_or(QString()),
            textIn(object, "finished_models").value_or(QString()),
            textIn(object, "model_root").value_or(QString())};
}

BackendEvent eventOf(const QJsonObject &object)
{
    const QString name = required(textIn(object, "event"));
    if (name == QLatin1StringView("ready")) {
        return ReadyEvent{integerIn(object, "default_max_steps").value_or(50000)};
    }
    if (name == QLatin1StringView("status")) {
        return statusOf(object);
    }
    if (name == QLatin1StringView("neurons")) {
        return snapshotOf(object);
    }
    if (name == QLatin1StringView("log")) {
        return LogEvent{textIn(object, "level").value_or(QStringLiteral("INFO")),
                        textIn(object, "msg").value_or(QString())};
    }
    if (name == QLatin1StringView("error")) {
        return ErrorEvent{textIn(object, "msg").value_or(QStringLiteral("unknown error"))};
    }
    if (name == QLatin1StringView("model_archived")) {
        return archivedModelOf(object);
    }
    if (name == QLatin1StringView("paths")) {
        return pathsOf(object);
    }
    if (name == QLatin1StringView("model_identity")) {
        return ModelIdentityEvent();
    }
    if (name == QLatin1StringView("done")) {
        return DoneEvent();
    }
    throw BadEvent();
}

} // namespace

std::optional<BackendEvent> decodeByReference(const QByteArray &line)
{
    try {
        return eventOf(entry(QJsonDocument::fromJson(line).object()));
    } catch (const BadEvent &) {
        return std::nullopt;
    }
}

} // namespace zorel::tests
