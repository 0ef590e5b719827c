#pragma once

#include <QString>

namespace zorel::terminal {

/// Columns that `text` takes on a terminal: 2 for wide characters, 0 for combining ones. Knows no escape
/// sequences.
int textWidth(const QString &text);
/// `text` cut to at most `columns`, with `ellipsis` at its end where something was cut off.
QString elided(const QString &text, int columns, const QString &ellipsis);
/// `text` with control characters replaced by spaces, so that what others wrote cannot steer the terminal.
QString withoutControls(QString text);

} // namespace zorel::terminal
