#include "backend/protocol/SnapshotReader.h"

#include <utility>

namespace zorel::backend::protocol {

namespace {

Reading readTier(ondemand::value value, NeuronActivityTier &tier)
{
    std::string_view name;
    const Reading reading = readUtf8(value, name);
    if (reading != Reading::taken)
        return reading;
    if (name == "inactive")
        tier = NeuronActivityTier::inactive;
    else if (name == "moderate")
        tier = NeuronActivityTier::moderate;
    else if (name == "high")
        tier = NeuronActivityTier::high;
    else
        return Reading::otherType;
    return Reading::taken;
}

constexpr Keys<5> neuronKeys{"index", "activation", "dim_start", "dim_end", "tier"};

Reading readNeuronField(std::size_t index, ondemand::value value, VisualNeuron &neuron)
{
    switch (index) {
    case 0:
        return readInteger(value, neuron.index);
    case 1:
        return readNumber(value, neuron.activation);
    case 2:
        return readInteger(value, neuron.dimStart);
    case 3:
        return readInteger(value, neuron.dimEnd);
    default:
        return readTier(value, neuron.tier);
    }
}

Reading readNeuron(ondemand::value value, VisualNeuron &neuron)
{
    ondemand::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS)
        return skipValue(value);
    FieldsRead fields;
    const auto onField = [&](std::size_t index, ondemand::value field) {
        return readNeuronField(index, field, neuron);
    };
    if (!readObject(object, neuronKeys, fields, onField))
        return Reading::malformed;
    return fields.hasAll(0, neuronKeys.size()) ? Reading::taken : Reading::otherType;
}

/// Reads an array to its end, also when an element is not what it should be: the rest must still be JSON.
template <class Element, class ReadElement>
Reading readArray(ondemand::value value, std::vector<Element> &elements, ReadElement readElement)
{
    elements.clear();
    ondemand::array array;
    if (value.get_array().get(array) != simdjson::SUCCESS)
        return skipValue(value);
    Reading all = Reading::taken;
    for (simdjson::simdjson_result<ondemand::value> result : array) {
        ondemand::value elementValue;
        if (std::move(result).get(elementValue) != simdjson::SUCCESS)
            return Reading::malformed;
        const Reading one = readElement(elementValue, elements.emplace_back());
        if (one == Reading::malformed)
            return one;
        if (one == Reading::otherType)
            all = one;
    }
    return all;
}

constexpr Keys<2> layerKeys{"layer", "neurons"};

/// `scratch` collects the neurons of one block after the other, so that each list is allocated once, with its
/// exact size.
Reading readLayer(ondemand::value value, LayerNeurons &layer, std::vector<VisualNeuron> &scratch)
{
    ondemand::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS)
        return skipValue(value);
    FieldsRead fields;
    const auto onField = [&](std::size_t index, ondemand::value field) {
        return index == 0 ? readInteger(field, layer.layer) : readArray(field, scratch, readNeuron);
    };
    if (!readObject(object, layerKeys, fields, onField))
        return Reading::malformed;
    if (!fields.hasAll(0, layerKeys.size()))
        return Reading::otherType;
    layer.neurons = scratch;
    return Reading::taken;
}

Reading readLayers(ondemand::value value, std::vector<LayerNeurons> &layers)
{
    std::vector<VisualNeuron> scratch;
    return readArray(value, layers, [&](ondemand::value element, LayerNeurons &layer) {
        return readLayer(element, layer, scratch);
    });
}

constexpr Keys<7> snapshotKeys{eventKey,     "step",  "final", "n_layers", "neurons_per_layer",
                               "hidden_dim", "layers"};

Reading readSnapshotField(std::size_t index, ondemand::value value, NeuronSnapshotPayload &snapshot)
{
    switch (index) {
    case 1:
        return readInteger(value, snapshot.step);
    case 2:
        return readFlag(value, snapshot.final);
    case 3:
        return readInteger(value, snapshot.nLayers);
    case 4:
        return readInteger(value, snapshot.neuronsPerLayer);
    case 5:
        return readInteger(value, snapshot.hiddenDim);
    default:
        return readLayers(value, snapshot.layers);
    }
}

} // namespace

Reading readSnapshot(ondemand::object object, EventName &name, NeuronSnapshotPayload &snapshot)
{
    FieldsRead fields;
    const auto onField = [&](std::size_t index, ondemand::value value) {
        return index == 0 ? name.read(value) : readSnapshotField(index, value, snapshot);
    };
    if (!readObject(object, snapshotKeys, fields, onField))
        return Reading::malformed;
    return fields.hasAll(1, snapshotKeys.size() - 1) ? Reading::taken : Reading::otherType;
}

} // namespace zorel::backend::protocol
