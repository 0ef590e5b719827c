#include "backend/protocol/LossPointDecoder.h"
#include "fuzz/DomReference.h"
#include "library/LossCurveReader.h"

#include <algorithm>
#include <utility>
#include <vector>

using zorel::backend::protocol::LossPoint;
using zorel::backend::protocol::LossPointDecoder;
using zorel::library::LossCurveReader;

namespace {

using namespace zorel::fuzz;

using Points = std::vector<std::pair<std::int64_t, double>>;

/// Line by line, in the plainest way.
Points reference(std::string_view text, std::size_t longestLine)
{
    static LossPointDecoder decoder;
    Points points;
    if (!simdjson::validate_utf8(text)) {
        return points;
    }
    for (std::size_t start = 0; start < text.size();) {
        const std::string_view line = text.substr(start, text.find('\n', start) - start);
        const auto point = line.size() <= longestLine ? decoder.decode(line) : std::nullopt;
        if (point) {
            points.emplace_back(point->step, point->loss);
        }
        start += line.size() + 1;
    }
    return points;
}

Points readInPieces(std::string_view text, std::size_t piece, std::size_t longestLine)
{
    LossCurveReader reader(longestLine);
    reader.expect(text.size());
    while (!text.empty()) {
        const auto room = reader.room();
        require(!room.empty());
        const std::size_t count = std::min({piece, room.size(), text.size()});
        std::copy_n(text.data(), count, room.data());
        reader.take(count);
        text.remove_prefix(count);
    }
    Points points;
    for (const LossPoint &point : reader.finish()) {
        points.emplace_back(point.step, point.loss);
    }
    return points;
}

} // namespace

/// The first byte says in which pieces the rest arrives.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const std::size_t piece = std::size_t{data[0]} + 1;
    const std::string_view text(reinterpret_cast<const char *>(data) + 1, size - 1);
    for (const std::size_t longestLine : {std::size_t{16}, std::size_t{48}, std::size_t{1} << 20}) {
        const Points expected = reference(text, longestLine);
        require(readInPieces(text, text.size() + 1, longestLine) == expected);
        require(readInPieces(text, piece, longestLine) == expected);
    }
    return 0;
}
