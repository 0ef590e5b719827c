#include "library/ActivationDelta.h"

#include <algorithm>
#include <utility>

namespace zorel::library {

namespace {

using backend::protocol::LayerNeurons;
using backend::protocol::NeuronSnapshotPayload;
using backend::protocol::VisualNeuron;

/// Finds the first element by a number, in a list of any length.
template <class Element>
class FirstByNumber
{
public:
    FirstByNumber(const std::vector<Element> &elements, std::int64_t Element::*number)
    {
        m_places.reserve(elements.size());
        for (const Element &element : elements) {
            m_places.emplace_back(element.*number, &element);
        }
        std::ranges::stable_sort(m_places, {}, &Place::first);
    }

    /// Null when there is none.
    const Element *find(std::int64_t number) const
    {
        const auto place = std::ranges::lower_bound(m_places, number, {}, &Place::first);
        return place != m_places.end() && place->first == number ? place->second : nullptr;
    }

private:
    using Place = std::pair<std::int64_t, const Element *>;
    std::vector<Place> m_places;
};

std::vector<double> deltasOf(const LayerNeurons &baseline, const LayerNeurons &candidate)
{
    const FirstByNumber matches(candidate.neurons, &VisualNeuron::index);
    std::vector<double> deltas;
    deltas.reserve(baseline.neurons.size());
    for (const VisualNeuron &neuron : baseline.neurons) {
        const VisualNeuron *match = matches.find(neuron.index);
        deltas.push_back(match ? match->activation - neuron.activation : 0);
    }
    return deltas;
}

bool haveSameShape(const LayerNeurons &baseline, const LayerNeurons &candidate)
{
    const FirstByNumber matches(candidate.neurons, &VisualNeuron::index);
    return baseline.neurons.size() == candidate.neurons.size() &&
           std::ranges::all_of(baseline.neurons, [&matches](const VisualNeuron &neuron) {
               const VisualNeuron *match = matches.find(neuron.index);
               return match && match->dimStart == neuron.dimStart && match->dimEnd == neuron.dimEnd;
           });
}

} // namespace

ActivityChange activityChange(double delta)
{
    constexpr double threshold = 0.05;
    if (delta > threshold) {
        return ActivityChange::moreActive;
    }
    return delta < -threshold ? ActivityChange::lessActive : ActivityChange::similar;
}

std::vector<DeltaRow> activationDeltas(const NeuronSnapshotPayload &baseline,
                                       const NeuronSnapshotPayload &candidate)
{
    const FirstByNumber matches(candidate.layers, &LayerNeurons::layer);
    std::vector<DeltaRow> rows;
    rows.reserve(baseline.layers.size());
    for (const LayerNeurons &layer : baseline.layers) {
        const LayerNeurons *match = matches.find(layer.layer);
        rows.push_back(
            {layer.layer, match ? deltasOf(layer, *match) : std::vector<double>(layer.neurons.size(), 0.0)});
    }
    return rows;
}

bool haveSameShape(const NeuronSnapshotPayload &baseline, const NeuronSnapshotPayload &candidate)
{
    const FirstByNumber matches(candidate.layers, &LayerNeurons::layer);
    return baseline.hiddenDim == candidate.hiddenDim && baseline.layers.size() == candidate.layers.size() &&
           std::ranges::all_of(baseline.layers, [&matches](const LayerNeurons &layer) {
               const LayerNeurons *match = matches.find(layer.layer);
               return match && haveSameShape(layer, *match);
           });
}

} // namespace zorel::library
