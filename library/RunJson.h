#pragma once

#include "library/CurveSummary.h"
#include "library/ModelRunComparison.h"

#include <QJsonObject>
#include <QJsonValue>

namespace zorel::library {

/// A run's figures under the keys of its manifest, with "path", "folder_name", "has_loss_curve" and
/// "has_neuron_snapshot". What there is none of is null.
QJsonObject toJson(const ArchivedModelRecord &run);

/// "points", "first_step", "last_step", "first_loss", "last_loss", "lowest_loss" and "lowest_step"; null for
/// a curve without points.
QJsonValue toJson(const std::optional<CurveSummary> &curve);

/// The count of blocks and neurons of each tier, and the snapshot's step; null when there is none.
QJsonValue toJson(const std::optional<backend::protocol::NeuronSnapshotPayload> &snapshot);

/// Every figure of a comparison: both runs, the three differences, the curves in few figures with the steps
/// that they have in common, and each activation's difference.
QJsonObject toJson(const ModelRunComparison &comparison, const ComparisonData &data);

} // namespace zorel::library
