#include "bench/protocol/QtJsonDecoder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace zorel::bench {

using backend::protocol::LayerNeurons;
using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSnapshotPayload;
using backend::protocol::TrainStatusPayload;
using backend::protocol::VisualNeuron;

namespace {

std::optional<QJsonObject> parsed(const QByteArray &line, QLatin1StringView event)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject() || document[QLatin1StringView("event")] != QJsonValue(event)) {
        return std::nullopt;
    }
    return document.object();
}

NeuronActivityTier tierOf(const QString &name)
{
    if (name == QLatin1StringView("inactive")) {
        return NeuronActivityTier::inactive;
    }
    return name == QLatin1StringView("moderate") ? NeuronActivityTier::moderate : NeuronActivityTier::high;
}

VisualNeuron neuronOf(const QJsonObject &object)
{
    return {
        object[QLatin1StringView("index")].toInteger(), object[QLatin1StringView("activation")].toDouble(),
        object[QLatin1StringView("dim_start")].toInteger(), object[QLatin1StringView("dim_end")].toInteger(),
        tierOf(object[QLatin1StringView("tier")].toString())};
}

LayerNeurons layerOf(const QJsonObject &object)
{
    const QJsonArray neurons = object[QLatin1StringView("neurons")].toArray();
    LayerNeurons layer{object[QLatin1StringView("layer")].toInteger(), {}};
    layer.neurons.reserve(static_cast<std::size_t>(neurons.size()));
    for (const QJsonValue neuron : neurons) {
        layer.neurons.push_back(neuronOf(neuron.toObject()));
    }
    return layer;
}

} // namespace

std::optional<NeuronSnapshotPayload> neuronsByQtJson(const QByteArray &line)
{
    const std::optional<QJsonObject> object = parsed(line, QLatin1StringView("neurons"));
    if (!object) {
        return std::nullopt;
    }
    NeuronSnapshotPayload snapshot;
    snapshot.step = (*object)[QLatin1StringView("step")].toInteger();
    snapshot.final = (*object)[QLatin1StringView("final")].toBool();
    snapshot.nLayers = (*object)[QLatin1StringView("n_layers")].toInteger();
    snapshot.neuronsPerLayer = (*object)[QLatin1StringView("neurons_per_layer")].toInteger();
    snapshot.hiddenDim = (*object)[QLatin1StringView("hidden_dim")].toInteger();
    const QJsonArray layers = (*object)[QLatin1StringView("layers")].toArray();
    snapshot.layers.reserve(static_cast<std::size_t>(layers.size()));
    for (const QJsonValue layer : layers) {
        snapshot.layers.push_back(layerOf(layer.toObject()));
    }
    return snapshot;
}

std::optional<TrainStatusPayload> statusByQtJson(const QByteArray &line)
{
    const std::optional<QJsonObject> object = parsed(line, QLatin1StringView("status"));
    if (!object) {
        return std::nullopt;
    }
    TrainStatusPayload status;
    status.state = (*object)[QLatin1StringView("state")].toString();
    status.step = (*object)[QLatin1StringView("step")].toInteger();
    status.maxSteps = (*object)[QLatin1StringView("max_steps")].toInteger();
    status.loss = (*object)[QLatin1StringView("loss")].toDouble();
    status.lr = (*object)[QLatin1StringView("lr")].toDouble();
    status.gradNorm = (*object)[QLatin1StringView("grad_norm")].toDouble();
    status.tokensPerSec = (*object)[QLatin1StringView("tokens_per_sec")].toDouble();
    status.elapsedS = (*object)[QLatin1StringView("elapsed_s")].toDouble();
    if (const QJsonValue loss = (*object)[QLatin1StringView("val_loss")]; loss.isDouble()) {
        status.valLoss = loss.toDouble();
    }
    if (const QJsonValue error = (*object)[QLatin1StringView("error")]; error.isString()) {
        status.error = error.toString();
    }
    status.prepProgress = (*object)[QLatin1StringView("prep_progress")].toDouble();
    status.prepDetail = (*object)[QLatin1StringView("prep_detail")].toString();
    status.prepElapsedS = (*object)[QLatin1StringView("prep_elapsed_s")].toDouble();
    status.prepEtaS = (*object)[QLatin1StringView("prep_eta_s")].toDouble();
    return status;
}

} // namespace zorel::bench
