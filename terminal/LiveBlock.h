#pragma once

#include "terminal/RunProgress.h"
#include "terminal/TerminalStyle.h"

#include <QString>

namespace zorel::terminal {

/// A line of the live display: what is written, and how many columns that takes.
struct BlockLine
{
    QString text;
    int width = 0;

    bool operator==(const BlockLine &) const = default;
};

/// The lines that show `progress` on a terminal `columns` wide. The last column stays free, so that no line
/// wraps.
QList<BlockLine> liveBlock(const RunProgress &progress, const TerminalStyle &style, int columns);

} // namespace zorel::terminal
