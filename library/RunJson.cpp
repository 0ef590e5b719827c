#include "library/RunJson.h"

#include "library/ActivationDelta.h"

#include <QJsonArray>

#include <array>
#include <cmath>

namespace zorel::library {

namespace {

using backend::protocol::NeuronSnapshotPayload;

/// Null for what JSON has no number for.
QJsonValue number(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonValue number(std::int64_t value)
{
    return QJsonValue(static_cast<qint64>(value));
}

QJsonValue difference(std::int64_t from, std::int64_t to)
{
    const double approximate = static_cast<double>(to) - static_cast<double>(from);
    constexpr double exactlyKnown = 9e18; // within 64 bits
    return std::abs(approximate) < exactlyKnown ? number(to - from) : QJsonValue(approximate);
}

QJsonValue toJson(const std::optional<StepRange> &steps)
{
    if (!steps) {
        return {};
    }
    return QJsonObject{{QStringLiteral("first"), number(steps->first)},
                       {QStringLiteral("last"), number(steps->last)}};
}

QJsonObject curvesToJson(const ComparisonData &data)
{
    const std::optional<CurveSummary> baseline = summary(data.baselineLoss);
    const std::optional<CurveSummary> candidate = summary(data.candidateLoss);
    const auto common = baseline && candidate ? commonSteps(*baseline, *candidate) : std::nullopt;
    return {{QStringLiteral("baseline"), toJson(baseline)},
            {QStringLiteral("candidate"), toJson(candidate)},
            {QStringLiteral("common_steps"), toJson(common)}};
}

QJsonValue deltasToJson(const ComparisonData &data)
{
    if (!data.baselineNeurons || !data.candidateNeurons) {
        return {};
    }
    std::array<qint64, 3> counts{};
    QJsonArray layers;
    for (const DeltaRow &row : activationDeltas(*data.baselineNeurons, *data.candidateNeurons)) {
        QJsonArray deltas;
        for (const double delta : row.deltas) {
            ++counts.at(static_cast<std::size_t>(activityChange(delta)));
            deltas.append(number(delta));
        }
        layers.append(
            QJsonObject{{QStringLiteral("layer"), number(row.layer)}, {QStringLiteral("deltas"), deltas}});
    }
    return QJsonObject{
        {QStringLiteral("same_shape"), haveSameShape(*data.baselineNeurons, *data.candidateNeurons)},
        {QStringLiteral("more_active"), counts[std::size_t(ActivityChange::moreActive)]},
        {QStringLiteral("less_active"), counts[std::size_t(ActivityChange::lessActive)]},
        {QStringLiteral("similar"), counts[std::size_t(ActivityChange::similar)]},
        {QStringLiteral("layers"), layers}};
}

} // namespace

QJsonObject toJson(const ArchivedModelRecord &run)
{
    return {{QStringLiteral("path"), run.path},
            {QStringLiteral("folder_name"), run.folderName},
            {QStringLiteral("name"), run.name},
            {QStringLiteral("version"), run.version},
            {QStringLiteral("author"), run.author},
            {QStringLiteral("step"), number(run.step)},
            {QStringLiteral("max_steps"), number(run.maxSteps)},
            {QStringLiteral("final_loss"), number(run.finalLoss)},
            {QStringLiteral("val_loss"), run.valLoss ? number(*run.valLoss) : QJsonValue()},
            {QStringLiteral("elapsed_seconds"), number(run.elapsedS)},
            {QStringLiteral("tokens_per_sec"), number(run.tokensPerSec)},
            {QStringLiteral("archived_at"),
             run.archivedAt ? QJsonValue(toIsoText(*run.archivedAt)) : QJsonValue()},
            {QStringLiteral("model_family"), run.modelFamily},
            {QStringLiteral("training_capability"), run.trainingCapability},
            {QStringLiteral("has_loss_curve"), run.hasLossCurve},
            {QStringLiteral("has_neuron_snapshot"), run.hasNeuronSnapshot}};
}

QJsonValue toJson(const std::optional<CurveSummary> &curve)
{
    if (!curve) {
        return {};
    }
    return QJsonObject{{QStringLiteral("points"), number(curve->points)},
                       {QStringLiteral("first_step"), number(curve->steps.first)},
                       {QStringLiteral("last_step"), number(curve->steps.last)},
                       {QStringLiteral("first_loss"), number(curve->firstLoss)},
                       {QStringLiteral("last_loss"), number(curve->lastLoss)},
                       {QStringLiteral("lowest_loss"), number(curve->lowestLoss)},
                       {QStringLiteral("lowest_step"), number(curve->lowestStep)}};
}

QJsonValue toJson(const std::optional<NeuronSnapshotPayload> &snapshot)
{
    if (!snapshot) {
        return {};
    }
    std::array<qint64, 3> tiers{};
    for (const backend::protocol::LayerNeurons &layer : snapshot->layers) {
        for (const backend::protocol::VisualNeuron &neuron : layer.neurons) {
            ++tiers.at(static_cast<std::size_t>(neuron.tier));
        }
    }
    using backend::protocol::NeuronActivityTier;
    return QJsonObject{{QStringLiteral("step"), number(snapshot->step)},
                       {QStringLiteral("layers"), qint64(snapshot->layers.size())},
                       {QStringLiteral("neurons_per_layer"), number(snapshot->neuronsPerLayer)},
                       {QStringLiteral("hidden_dim"), number(snapshot->hiddenDim)},
                       {QStringLiteral("high"), tiers[std::size_t(NeuronActivityTier::high)]},
                       {QStringLiteral("moderate"), tiers[std::size_t(NeuronActivityTier::moderate)]},
                       {QStringLiteral("inactive"), tiers[std::size_t(NeuronActivityTier::inactive)]}};
}

QJsonObject toJson(const ModelRunComparison &comparison, const ComparisonData &data)
{
    return {{QStringLiteral("baseline"), toJson(comparison.baseline)},
            {QStringLiteral("candidate"), toJson(comparison.candidate)},
            {QStringLiteral("same_model"), comparison.isOfOneModel()},
            {QStringLiteral("final_loss_change"), number(comparison.lossChange())},
            {QStringLiteral("step_change"), difference(comparison.baseline.step, comparison.candidate.step)},
            {QStringLiteral("elapsed_seconds_change"), number(comparison.elapsedChange())},
            {QStringLiteral("loss_curves"), curvesToJson(data)},
            {QStringLiteral("activation_change"), deltasToJson(data)}};
}

} // namespace zorel::library
