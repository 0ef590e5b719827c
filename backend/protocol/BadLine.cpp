#include "backend/protocol/BadLine.h"

#include "backend/protocol/Utf8Text.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace zorel::backend::protocol {

namespace {

constexpr std::size_t longestStart = 16 * 1024;

bool isPlain(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
}

/// `text` without a last UTF-8 sequence that is cut in two.
std::string_view withoutTornEnd(std::string_view text)
{
    const auto isContinuation = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
    };
    std::size_t start = text.size();
    while (start > 0 && text.size() - start < 4 && isContinuation(text[start - 1])) {
        --start;
    }
    if (start == 0) {
        return text;
    }
    const auto lead = static_cast<unsigned char>(text[start - 1]);
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    return text.size() - start + 1 < length ? text.substr(0, start - 1) : text;
}

} // namespace

QString startOfLine(std::string_view trimmedLine)
{
    // One byte more: it could be an accent on the last character.
    if (const std::string_view start = trimmedLine.substr(0, badLineLength + 1); isPlain(start)) {
        return QString::fromLatin1(start.data(), std::min<qsizetype>(std::ssize(start), badLineLength));
    }

    const bool isCut = trimmedLine.size() > longestStart;
    const std::string_view start = isCut ? withoutTornEnd(trimmedLine.substr(0, longestStart)) : trimmedLine;
    const QString text = toQString(start);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (int characters = 0; characters < badLineLength && end < text.size(); ++characters) {
        const qsizetype next = finder.toNextBoundary();
        // The character at the cut may go on behind it.
        if (next < 0 || (isCut && next == text.size() && end > 0)) {
            break;
        }
        end = next;
    }
    return text.left(end);
}

} // namespace zorel::backend::protocol
