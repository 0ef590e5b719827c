#pragma once

#include <QByteArray>
#include <QString>

namespace zorel::platform {

// The symbols that come with the system. Where it has none, no name is known. Main thread.

bool hasSystemSymbol(const QString &name);

/// The symbol's shape in the middle of a square of `side` pixels: the opacity of each pixel (0 to 255), row
/// by row from the top. Empty when the system has no such symbol.
QByteArray systemSymbolOpacity(const QString &name, int side);

} // namespace zorel::platform
