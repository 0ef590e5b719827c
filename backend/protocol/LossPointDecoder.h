#pragma once

#include "backend/protocol/LossPoint.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace zorel::backend::protocol {

/// Reads lines of a `loss_curve.jsonl`. Keeps the parser's memory between lines; not thread-safe.
class LossPointDecoder
{
public:
    LossPointDecoder();
    ~LossPointDecoder();
    LossPointDecoder(LossPointDecoder &&) noexcept;
    LossPointDecoder &operator=(LossPointDecoder &&) noexcept;

    /// Nothing for a line that is not a JSON object with an integer "step" and a number "loss". `readable` is
    /// that of EventDecoder::decode.
    std::optional<LossPoint> decode(std::string_view line, std::size_t readable = 0);

    /// Appends the points of many lines, each ended by a line feed, as decode would find them one by one;
    /// several times as fast as long as they are written as usual. EventDecoder::padding bytes must be
    /// readable behind the last.
    void decodeLines(std::string_view lines, std::vector<LossPoint> &points);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace zorel::backend::protocol
