#include "backend/protocol/SnapshotReader.h"

#include <utility>

namespace zorel::backend::protocol {

namespace {

constexpr std::pair<std::string_view, NeuronActivityTier> tiers[]{{"inactive", NeuronActivityTier::inactive},
                                                                  {"moderate", NeuronActivityTier::moderate},
                                                                  {"high", NeuronActivityTier::high}};

Reading readTier(ondemand::value &value, NeuronActivityTier &tier)
{
    std::string_view name;
    const Reading reading = readUtf8(value, name);
    if (reading != Reading::taken) {
        return reading;
    }
    for (const auto &[tierName, candidate] : tiers) {
        if (tierName == name) {
            tier = candidate;
            return Reading::taken;
        }
    }
    return Reading::otherType;
}

/// The tier where it stands in the text, when it is written without escapes.
simdjson_inline bool readPlainTier(ondemand::value &value, NeuronActivityTier &tier)
{
    ondemand::raw_json_string text;
    if (value.get_raw_json_string().get(text) != simdjson::SUCCESS) {
        return false;
    }
    for (const auto &[name, candidate] : tiers) {
        if (text.unsafe_is_equal(name)) {
            tier = candidate;
            return true;
        }
    }
    return false;
}

/// A neuron with exactly its keys in the usual order, as nearly all are. Uses none of the parser's room for
/// strings, so that the neuron can be read again when this returns false.
simdjson_inline bool readUsualNeuron(KeysInOrder &keys, VisualNeuron &neuron)
{
    ondemand::value value;
    return keys.find<"index">(value) && value.get_int64().get(neuron.index) == simdjson::SUCCESS &&
           keys.find<"activation">(value) && value.get_double().get(neuron.activation) == simdjson::SUCCESS &&
           keys.find<"dim_start">(value) && value.get_int64().get(neuron.dimStart) == simdjson::SUCCESS &&
           keys.find<"dim_end">(value) && value.get_int64().get(neuron.dimEnd) == simdjson::SUCCESS &&
           keys.find<"tier">(value) && readPlainTier(value, neuron.tier) && keys.isAtEnd();
}

Reading readUnusualNeuron(ondemand::object object, VisualNeuron &neuron)
{
    FieldsRead fields;
    const bool wellFormed = readObject(
        object, fields, integerField<"index">(neuron.index), numberField<"activation">(neuron.activation),
        integerField<"dim_start">(neuron.dimStart), integerField<"dim_end">(neuron.dimEnd),
        field<"tier">([&](ondemand::value &value) { return readTier(value, neuron.tier); }));
    if (!wellFormed) {
        return Reading::malformed;
    }
    return fields.hasAll(0, 5) ? Reading::taken : Reading::otherType;
}

simdjson_inline Reading readNeuron(ondemand::value &value, VisualNeuron &neuron)
{
    const std::string_view start = value.raw_json_token();
    ondemand::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS) {
        return skipValue(value);
    }
    KeysInOrder keys(start.data() + start.size(), object);
    if (readUsualNeuron(keys, neuron)) {
        return Reading::taken;
    }
    if (keys.isMalformed() || object.reset().error() != simdjson::SUCCESS) {
        return Reading::malformed;
    }
    return readUnusualNeuron(object, neuron);
}

/// Reads an array to its end, also when an element is not what it should be: the rest must still be JSON.
template <class Element, class ReadElement>
Reading readArray(ondemand::value &value, std::vector<Element> &elements, ReadElement readElement)
{
    elements.clear();
    ondemand::array array;
    if (value.get_array().get(array) != simdjson::SUCCESS) {
        return skipValue(value);
    }
    Reading all = Reading::taken;
    for (simdjson::simdjson_result<ondemand::value> result : array) {
        ondemand::value elementValue;
        if (result.get(elementValue) != simdjson::SUCCESS) {
            return Reading::malformed;
        }
        Element element;
        const Reading one = readElement(elementValue, element);
        if (one == Reading::malformed) {
            return one;
        }
        elements.push_back(std::move(element));
        if (one == Reading::otherType) {
            all = one;
        }
    }
    return all;
}

/// `scratch` collects the neurons of one block after the other, so that each list is allocated once, with its
/// exact size.
Reading readLayer(ondemand::value &value, LayerNeurons &layer, std::vector<VisualNeuron> &scratch)
{
    ondemand::object object;
    if (value.get_object().get(object) != simdjson::SUCCESS) {
        return skipValue(value);
    }
    const auto readElement = [&](ondemand::value &element, VisualNeuron &neuron) {
        return readNeuron(element, neuron);
    };
    FieldsRead fields;
    const auto readNeurons = [&](ondemand::value &list) {
        return readArray(list, scratch, readElement);
    };
    if (!readObject(object, fields, integerField<"layer">(layer.layer), field<"neurons">(readNeurons))) {
        return Reading::malformed;
    }
    if (!fields.hasAll(0, 2)) {
        return Reading::otherType;
    }
    layer.neurons = scratch;
    return Reading::taken;
}

Reading readLayers(ondemand::value &value, std::vector<LayerNeurons> &layers)
{
    std::vector<VisualNeuron> scratch;
    return readArray(value, layers, [&](ondemand::value &element, LayerNeurons &layer) {
        return readLayer(element, layer, scratch);
    });
}

} // namespace

Reading readSnapshot(ondemand::object object, EventName &name, NeuronSnapshotPayload &snapshot)
{
    FieldsRead fields;
    const bool wellFormed = readObject(
        object, fields, eventField(name), integerField<"step">(snapshot.step),
        field<"final">([&](ondemand::value &v) { return readFlag(v, snapshot.final); }),
        integerField<"n_layers">(snapshot.nLayers), field<"neurons_per_layer">([&](ondemand::value &v) {
            return readInteger(v, snapshot.neuronsPerLayer);
        }),
        integerField<"hidden_dim">(snapshot.hiddenDim),
        field<"layers">([&](ondemand::value &v) { return readLayers(v, snapshot.layers); }));
    if (!wellFormed) {
        return Reading::malformed;
    }
    return fields.hasAll(1, 6) ? Reading::taken : Reading::otherType;
}

} // namespace zorel::backend::protocol
