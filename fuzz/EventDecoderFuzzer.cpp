#include "backend/protocol/BadLine.h"
#include "backend/protocol/EventDecoder.h"
#include "backend/protocol/LossPointDecoder.h"
#include "backend/protocol/SnapshotDecoder.h"

#include <simdjson.h>

#include <algorithm>
#include <cstdlib>

using zorel::backend::protocol::BackendEvent;
using zorel::backend::protocol::decodeSnapshot;
using zorel::backend::protocol::EventDecoder;
using zorel::backend::protocol::LossPointDecoder;
using zorel::backend::protocol::startOfLine;

namespace {

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

/// The line with other bytes behind it, which must not matter.
class PaddedLine
{
public:
    PaddedLine(std::string_view line, char after)
        : m_buffer(std::string(line) + std::string(EventDecoder::padding, after))
    {}
    std::string_view line() const { return {m_buffer.data(), m_buffer.size() - EventDecoder::padding}; }
    std::size_t readable() const { return m_buffer.size(); }

private:
    std::string m_buffer;
};

enum class Verdict { mustFail, mustDecode, either };

/// What the parser that builds a whole tree says about a line. It gives up at numbers that ours tolerates.
Verdict verdictOnEvent(std::string_view line)
{
    static simdjson::dom::parser parser;
    simdjson::dom::element element;
    const simdjson::error_code error = parser.parse(line.data(), line.size()).get(element);
    if (error == simdjson::NUMBER_ERROR || error == simdjson::DEPTH_ERROR) {
        return Verdict::either;
    }
    simdjson::dom::object object;
    if (error != simdjson::SUCCESS || element.get(object) != simdjson::SUCCESS) {
        return Verdict::mustFail;
    }

    std::string_view name;
    bool isNamed = false;
    for (const auto field : object) {
        if (field.key == "event") {
            isNamed = field.value.get(name) == simdjson::SUCCESS;
        }
    }
    if (!isNamed) {
        return Verdict::mustFail;
    }
    constexpr std::string_view tolerant[]{"ready",          "log", "error", "model_archived", "paths",
                                          "model_identity", "done"};
    const bool isTolerant = std::find(std::begin(tolerant), std::end(tolerant), name) != std::end(tolerant);
    const bool isFlat =
        std::count(line.begin(), line.end(), '{') + std::count(line.begin(), line.end(), '[') < 900;
    if (isTolerant) {
        return isFlat ? Verdict::mustDecode : Verdict::either;
    }
    return name == "status" || name == "neurons" ? Verdict::either : Verdict::mustFail;
}

void checkEvent(std::string_view line)
{
    static EventDecoder decoder;
    const auto expected = decoder.decode(line);
    const auto *event = std::get_if<BackendEvent>(&expected);
    const Verdict verdict = verdictOnEvent(line);
    require(verdict != Verdict::mustDecode || event);
    require(verdict != Verdict::mustFail || !event);
    for (const char after : {'\n', '}', ',', '"'}) {
        const PaddedLine padded(line, after);
        const auto result = decoder.decode(padded.line(), padded.readable());
        const auto *again = std::get_if<BackendEvent>(&result);
        require(event ? again && *event == *again : !again);
    }
}

void checkArchiveFiles(std::string_view line)
{
    static LossPointDecoder decoder;
    const auto point = decoder.decode(line);
    const auto snapshot = decodeSnapshot(line);
    for (const char after : {'\n', '}'}) {
        const PaddedLine padded(line, after);
        const auto again = decoder.decode(padded.line(), padded.readable());
        require(point.has_value() == again.has_value());
        require(!point ||
                (point->step == again->step && point->loss == again->loss && point->id != again->id));
        require(decodeSnapshot(padded.line(), padded.readable()) == snapshot);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view line =
        size > 0 ? std::string_view(reinterpret_cast<const char *>(data), size) : "";
    checkEvent(line);
    checkArchiveFiles(line);
    require(startOfLine(line).size() <= static_cast<qsizetype>(std::min<std::size_t>(size, 16 * 1024 + 1)));
    return 0;
}
