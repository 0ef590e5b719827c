#include "bench/protocol/SampleLines.h"

#include <array>
#include <charconv>
#include <random>

namespace zorel::bench {

namespace {

constexpr int channelsPerNeuron = 16;

std::string shortest(double number)
{
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

std::string neuron(int index, double activation)
{
    const char *tier = activation < 0.1 ? "inactive" : activation < 0.5 ? "moderate" : "high";
    return "{\"index\": " + std::to_string(index) + ", \"activation\": " + shortest(activation) +
           ", \"dim_start\": " + std::to_string(index * channelsPerNeuron) +
           ", \"dim_end\": " + std::to_string((index + 1) * channelsPerNeuron) + ", \"tier\": \"" + tier +
           "\"}";
}

} // namespace

std::string neuronLine(int layers, int neuronsPerLayer)
{
    std::mt19937_64 random(1); // the same line in every run
    std::uniform_real_distribution<double> activation(0, 0.9);
    std::string line =
        "{\"event\": \"neurons\", \"step\": 1200, \"final\": false, \"n_layers\": " + std::to_string(layers) +
        ", \"neurons_per_layer\": " + std::to_string(neuronsPerLayer) +
        ", \"hidden_dim\": " + std::to_string(neuronsPerLayer * channelsPerNeuron) + ", \"layers\": [";
    for (int layer = 0; layer < layers; ++layer) {
        line += (layer > 0 ? ", {\"layer\": " : "{\"layer\": ") + std::to_string(layer) + ", \"neurons\": [";
        for (int index = 0; index < neuronsPerLayer; ++index) {
            line += (index > 0 ? ", " : "") + neuron(index, activation(random));
        }
        line += "]}";
    }
    return line + "]}";
}

std::string statusLine()
{
    return R"({"event": "status", "state": "running", "step": 12345, "max_steps": 50000, )"
           R"("loss": 2.3456789012345, "lr": 0.00029876543, "grad_norm": 0.87654321, )"
           R"("tokens_per_sec": 12345.678, "elapsed_s": 1234.567, "val_loss": 2.4567890123, )"
           R"("error": null, "prep_progress": 1.0, "prep_detail": "", "prep_elapsed_s": 12.5, )"
           R"("prep_eta_s": 0.0})";
}

} // namespace zorel::bench
