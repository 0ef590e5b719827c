#include "library/ModelRunComparison.h"

#include "library/ModelLibraryStore.h"

namespace zorel::library {

bool ModelRunComparison::isOfOneModel() const
{
    return baseline.name == candidate.name && baseline.modelFamily == candidate.modelFamily;
}

ComparisonData ComparisonData::load(const ModelLibraryStore &store, const ModelRunComparison &comparison)
{
    ComparisonData data;
    data.baselineNeurons = store.loadNeuronSnapshot(comparison.baseline);
    data.candidateNeurons = store.loadNeuronSnapshot(comparison.candidate);
    data.baselineLoss = store.loadLossCurve(comparison.baseline);
    data.candidateLoss = store.loadLossCurve(comparison.candidate);
    return data;
}

} // namespace zorel::library
