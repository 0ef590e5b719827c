#include "backend/bridge/LineSplitter.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

using zorel::backend::bridge::LineBatch;
using zorel::backend::bridge::LineSplitter;

namespace {

constexpr std::size_t limit = 20'000;

struct TakenLine
{
    std::string text;
    bool truncated = false;
    bool operator==(const TakenLine &) const = default;
};

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

void takeInto(LineSplitter &splitter, std::vector<TakenLine> &lines)
{
    const LineBatch batch = splitter.take();
    for (const LineBatch::Span &line : batch.lines) {
        require(line.offset + line.length + LineSplitter::padding <= batch.bytes.size());
        require(line.length <= (line.truncated ? LineSplitter::keptOfTruncatedLine : limit));
        lines.push_back({batch.bytes.substr(line.offset, line.length), line.truncated});
        require(lines.back().text.find('\n') == std::string::npos);
    }
}

} // namespace

/// The first byte says in which pieces the rest arrives; the lines must not depend on it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const std::size_t piece = std::size_t{data[0]} + 1;
    const std::string_view stream(reinterpret_cast<const char *>(data) + 1, size - 1);

    std::vector<TakenLine> whole;
    LineSplitter atOnce(limit);
    atOnce.append(stream);
    takeInto(atOnce, whole);

    std::vector<TakenLine> inPieces;
    LineSplitter byPieces(limit);
    for (std::size_t from = 0; from < stream.size(); from += piece) {
        byPieces.append(stream.substr(from, piece));
        require(byPieces.pendingBytes() <= limit);
        if (byPieces.hasLines()) {
            takeInto(byPieces, inPieces);
        }
    }
    require(whole == inPieces);
    require(atOnce.pendingBytes() == byPieces.pendingBytes());
    return 0;
}
