#pragma once

#include "backend/protocol/LossPoint.h"
#include "backend/protocol/LossPointDecoder.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zorel::library {

/// Turns the bytes of a `loss_curve.jsonl`, in pieces of any size, into its points. Needs no more memory for
/// a long file than for a short one, apart from the points. A line of more than `longestLine` bytes holds no
/// point.
class LossCurveReader
{
public:
    explicit LossCurveReader(std::size_t longestLine);

    /// Where the next piece is to be written; never empty.
    std::span<char> room();
    /// Takes the first `count` bytes of what room() gave last.
    void take(std::size_t count);

    /// How many bytes will come, so that the points are moved about less.
    void expect(std::uint64_t bytes) { m_expectedBytes = bytes; }
    /// False once a byte has been seen that is no UTF-8: then the file holds no curve.
    bool isText() const { return m_isText; }

    /// After the last piece: the points in the file's order. Nothing of a file that is not UTF-8.
    std::vector<backend::protocol::LossPoint> finish();

private:
    std::size_t capacity() const;
    void readLines(std::size_t end);
    void dropPending();
    void keepFrom(std::size_t start);
    void reservePoints(std::size_t bytesRead);

    std::size_t m_longestLine;
    std::uint64_t m_expectedBytes = 0;
    std::string m_buffer;      ///< the pending bytes, then room
    std::size_t m_pending = 0; ///< bytes of a line that is not complete yet
    bool m_isSkipping = false; ///< the rest of a line that is too long
    bool m_isText = true;
    backend::protocol::LossPointDecoder m_decoder;
    std::vector<backend::protocol::LossPoint> m_points;
};

/// The curve in a regular file; empty when it cannot be read to its end or is not UTF-8.
std::vector<backend::protocol::LossPoint> readLossCurve(const char *path);

} // namespace zorel::library
