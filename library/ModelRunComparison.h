#pragma once

#include "backend/protocol/LossPoint.h"
#include "backend/protocol/NeuronSnapshotPayload.h"
#include "library/ArchivedModelRecord.h"

#include <optional>
#include <vector>

namespace zorel::library {

class ModelLibraryStore;

/// Two archived runs side by side.
struct ModelRunComparison
{
    ArchivedModelRecord baseline; ///< the run of reference
    ArchivedModelRecord candidate;

    bool operator==(const ModelRunComparison &) const = default;

    /// Whether both have the same name and family, letter by letter; version, author and capability may
    /// differ.
    bool isOfOneModel() const;
    /// From the baseline to the candidate.
    double lossChange() const { return candidate.finalLoss - baseline.finalLoss; }
    /// In seconds, from the baseline to the candidate.
    double elapsedChange() const { return candidate.elapsedS - baseline.elapsedS; }
};

/// What the files of two compared runs hold.
struct ComparisonData
{
    std::optional<backend::protocol::NeuronSnapshotPayload> baselineNeurons;
    std::optional<backend::protocol::NeuronSnapshotPayload> candidateNeurons;
    std::vector<backend::protocol::LossPoint> baselineLoss;
    std::vector<backend::protocol::LossPoint> candidateLoss;

    static ComparisonData load(const ModelLibraryStore &store, const ModelRunComparison &comparison);
};

} // namespace zorel::library
