#include "backend/protocol/EventDecoder.h"
#include "backend/protocol/LossPointDecoder.h"
#include "bench/protocol/QtJsonDecoder.h"
#include "bench/protocol/SampleLines.h"
#include "bench/support/RatioTable.h"

#include <simdjson.h>

#include <cstdlib>

namespace {

using zorel::backend::protocol::EventDecoder;
using zorel::backend::protocol::LossPointDecoder;
using zorel::bench::Row;

namespace ondemand = simdjson::ondemand;

/// A line in the middle of a reader's buffer: a line feed and more bytes follow.
class BufferedLine
{
public:
    explicit BufferedLine(std::string line)
        : m_buffer(std::move(line) + '\n' + std::string(EventDecoder::padding, 'x'))
    {}
    std::string_view line() const { return {m_buffer.data(), m_buffer.size() - 1 - EventDecoder::padding}; }
    std::size_t readable() const { return m_buffer.size(); }

private:
    std::string m_buffer;
};

BufferedLine neurons()
{
    return BufferedLine(zorel::bench::neuronLine(48, 64));
}

BufferedLine status()
{
    return BufferedLine(zorel::bench::statusLine());
}

void decodeEvent(benchmark::State &state, const BufferedLine &line)
{
    EventDecoder decoder;
    for (auto _ : state) {
        auto event = decoder.decode(line.line(), line.readable());
        if (event.index() != 0) {
            std::abort();
        }
        benchmark::DoNotOptimize(event);
    }
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(line.line().size()));
}

/// Reads every value of a "neurons" event in the order in which it is written, and keeps none.
double walkNeurons(ondemand::document &document)
{
    ondemand::object event = document.get_object();
    double sum = static_cast<double>(std::string_view(event.find_field("event")).size());
    sum += static_cast<double>(std::int64_t(event.find_field("step")));
    sum += bool(event.find_field("final")) ? 1 : 0;
    sum += static_cast<double>(std::int64_t(event.find_field("n_layers")));
    sum += static_cast<double>(std::int64_t(event.find_field("neurons_per_layer")));
    sum += static_cast<double>(std::int64_t(event.find_field("hidden_dim")));
    for (ondemand::object layer : event.find_field("layers").get_array()) {
        sum += static_cast<double>(std::int64_t(layer.find_field("layer")));
        for (ondemand::object neuron : layer.find_field("neurons").get_array()) {
            sum += static_cast<double>(std::int64_t(neuron.find_field("index")));
            sum += double(neuron.find_field("activation"));
            sum += static_cast<double>(std::int64_t(neuron.find_field("dim_start")));
            sum += static_cast<double>(std::int64_t(neuron.find_field("dim_end")));
            sum += static_cast<double>(std::string_view(neuron.find_field("tier")).size());
        }
    }
    return sum;
}

void decodeNeurons(benchmark::State &state)
{
    decodeEvent(state, neurons());
}

void walkNeuronsBare(benchmark::State &state)
{
    const BufferedLine line = neurons();
    ondemand::parser parser;
    for (auto _ : state) {
        ondemand::document document = parser.iterate(
            simdjson::padded_string_view(line.line().data(), line.line().size(), line.readable()));
        benchmark::DoNotOptimize(walkNeurons(document));
    }
}

void decodeNeuronsByQt(benchmark::State &state)
{
    const QByteArray line = QByteArray::fromStdString(zorel::bench::neuronLine(48, 64));
    for (auto _ : state) {
        benchmark::DoNotOptimize(zorel::bench::neuronsByQtJson(line).value());
    }
}

void decodeStatus(benchmark::State &state)
{
    decodeEvent(state, status());
}

void decodeStatusByQt(benchmark::State &state)
{
    const QByteArray line = QByteArray::fromStdString(zorel::bench::statusLine());
    for (auto _ : state) {
        benchmark::DoNotOptimize(zorel::bench::statusByQtJson(line).value());
    }
}

void decodeLossPoint(benchmark::State &state)
{
    const BufferedLine line(R"({"step": 12345, "loss": 2.3456789012345, "val_loss": null, "time": 1234.5})");
    LossPointDecoder decoder;
    for (auto _ : state) {
        benchmark::DoNotOptimize(decoder.decode(line.line(), line.readable()).value());
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(decodeNeurons);
BENCHMARK(walkNeuronsBare);
BENCHMARK(decodeNeuronsByQt);
BENCHMARK(decodeStatus);
BENCHMARK(decodeStatusByQt);
BENCHMARK(decodeLossPoint);

} // namespace

int main(int argc, char **argv)
{
    using Promise = Row::Promise;
    return zorel::bench::RatioTable(
               {
                   {"48 x 64 neurons, against a bare walk", "decodeNeurons", "walkNeuronsBare",
                    Promise::timeAtMost, 1.5},
                   {"48 x 64 neurons, against Qt JSON", "decodeNeurons", "decodeNeuronsByQt",
                    Promise::fasterAtLeast, 10},
                   {"status line", "decodeStatus", {}, Promise::perSecondAtLeast, 1'000'000},
                   {"status line, against Qt JSON", "decodeStatus", "decodeStatusByQt",
                    Promise::fasterAtLeast, 5},
                   {"line of a loss curve", "decodeLossPoint", {}, Promise::perSecondAtLeast, 2'000'000},
               })
        .run(argc, argv);
}
