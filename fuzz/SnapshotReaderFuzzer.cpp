#include "backend/protocol/SnapshotDecoder.h"
#include "fuzz/DomReference.h"

#include <algorithm>

using zorel::backend::protocol::decodeSnapshot;
using zorel::backend::protocol::LayerNeurons;
using zorel::backend::protocol::NeuronActivityTier;
using zorel::backend::protocol::NeuronSnapshotPayload;
using zorel::backend::protocol::VisualNeuron;

namespace {

using namespace zorel::fuzz;

/// Reads a snapshot from a tree, until something is missing or of another type.
class SnapshotOfTree
{
public:
    bool isGood = true;
    /// Whether the tree can say what the text said.
    bool isClear = true;

    NeuronSnapshotPayload read(simdjson::dom::object object)
    {
        NeuronSnapshotPayload snapshot;
        snapshot.step = whole(object, "step");
        snapshot.final = take<bool>(object, "final");
        snapshot.nLayers = whole(object, "n_layers");
        snapshot.neuronsPerLayer = whole(object, "neurons_per_layer");
        snapshot.hiddenDim = whole(object, "hidden_dim");
        for (const simdjson::dom::element element : elements(object, "layers")) {
            snapshot.layers.push_back(layer(asObject(element)));
        }
        return snapshot;
    }

private:
    template <class Value>
    Value take(simdjson::dom::object object, std::string_view key)
    {
        Value value{};
        const auto element = lastValue(object, key);
        isGood = isGood && element && element->get(value) == simdjson::SUCCESS;
        return isGood ? value : Value{};
    }

    std::vector<simdjson::dom::element> elements(simdjson::dom::object object, std::string_view key)
    {
        const auto array = take<simdjson::dom::array>(object, key);
        return isGood ? std::vector<simdjson::dom::element>(array.begin(), array.end())
                      : std::vector<simdjson::dom::element>();
    }

    simdjson::dom::object asObject(simdjson::dom::element element)
    {
        simdjson::dom::object object;
        isGood = isGood && element.get(object) == simdjson::SUCCESS;
        return object;
    }

    std::int64_t whole(simdjson::dom::object object, std::string_view key)
    {
        const auto element = isGood ? lastValue(object, key) : std::nullopt;
        isClear = isClear && !(element && isUnclear(*element));
        const auto number = element ? wholeValue(*element) : std::nullopt;
        isGood = isGood && number;
        return number.value_or(0);
    }

    double number(simdjson::dom::object object, std::string_view key)
    {
        const auto element = isGood ? lastValue(object, key) : std::nullopt;
        double value = 0;
        isGood = isGood && element && element->is_number() &&
                 element->get_double().get(value) == simdjson::SUCCESS;
        return value;
    }

    NeuronActivityTier tier(simdjson::dom::object object)
    {
        const auto name = take<std::string_view>(object, "tier");
        isGood = isGood && (name == "inactive" || name == "moderate" || name == "high");
        return name == "high"       ? NeuronActivityTier::high
               : name == "moderate" ? NeuronActivityTier::moderate
                                    : NeuronActivityTier::inactive;
    }

    LayerNeurons layer(simdjson::dom::object object)
    {
        LayerNeurons result;
        if (!isGood) {
            return result;
        }
        result.layer = whole(object, "layer");
        for (const simdjson::dom::element element : elements(object, "neurons")) {
            const simdjson::dom::object neuron = asObject(element);
            if (isGood) {
                result.neurons.push_back({whole(neuron, "index"), number(neuron, "activation"),
                                          whole(neuron, "dim_start"), whole(neuron, "dim_end"),
                                          tier(neuron)});
            }
        }
        return result;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text =
        size > 0 ? std::string_view(reinterpret_cast<const char *>(data), size) : "";
    const auto snapshot = decodeSnapshot(text);
    for (const char after : {'\n', '}', ',', '"'}) {
        const PaddedText padded(text, after);
        require(decodeSnapshot(padded.text(), padded.readable()) == snapshot);
    }

    simdjson::dom::object object;
    const Verdict verdict = parseObject(text, object);
    require(verdict != Verdict::isNone || !snapshot);
    const bool isFlat = std::ranges::count(text, '{') + std::ranges::count(text, '[') < 900;
    if (verdict == Verdict::isObject && isFlat) {
        SnapshotOfTree tree;
        const NeuronSnapshotPayload expected = tree.read(object);
        if (tree.isClear) {
            require(snapshot.has_value() == tree.isGood);
            require(!snapshot || *snapshot == expected);
        }
    }
    return 0;
}
