#include "terminal/TextWidth.h"

#include <QList>

#include <algorithm>
#include <array>

namespace zorel::terminal {

namespace {

struct Range
{
    char32_t first;
    char32_t last;
};

/// The blocks whose characters take two columns: East Asian scripts and their punctuation, full-width forms,
/// emoji.
constexpr std::array wideRanges{
    Range{0x1100, 0x115f},   Range{0x231a, 0x231b},   Range{0x23e9, 0x23ec},   Range{0x2e80, 0x303e},
    Range{0x3041, 0x33ff},   Range{0x3400, 0x4dbf},   Range{0x4e00, 0x9fff},   Range{0xa000, 0xa4cf},
    Range{0xa960, 0xa97f},   Range{0xac00, 0xd7a3},   Range{0xf900, 0xfaff},   Range{0xfe30, 0xfe6f},
    Range{0xff00, 0xff60},   Range{0xffe0, 0xffe6},   Range{0x16fe0, 0x18aff}, Range{0x1b000, 0x1b2ff},
    Range{0x1f300, 0x1f64f}, Range{0x1f680, 0x1f6ff}, Range{0x1f900, 0x1f9ff}, Range{0x20000, 0x3fffd},
};

int characterWidth(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
    case QChar::Other_Control:
        return 0;
    default:
        break;
    }
    const bool wide = std::ranges::any_of(wideRanges, [character](const Range &range) {
        return character >= range.first && character <= range.last;
    });
    return wide ? 2 : 1;
}

} // namespace

int textWidth(const QString &text)
{
    int width = 0;
    for (const uint character : text.toUcs4()) {
        width += characterWidth(character);
    }
    return width;
}

QString elided(const QString &text, int columns, const QString &ellipsis)
{
    if (textWidth(text) <= columns) {
        return text;
    }
    const int room = columns - textWidth(ellipsis);
    if (room < 0) {
        return QString();
    }
    int width = 0;
    qsizetype kept = 0;
    for (const uint character : text.toUcs4()) {
        width += characterWidth(character);
        if (width > room) {
            break;
        }
        kept += QChar::requiresSurrogates(character) ? 2 : 1;
    }
    return text.left(kept) + ellipsis;
}

QString withoutControls(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control) {
            character = u' ';
        }
    }
    return text;
}

} // namespace zorel::terminal
