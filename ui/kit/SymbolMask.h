#pragma once

#include <QImage>
#include <QString>

namespace zorel::ui::kit {

/// The symbol in black on nothing, `side` device pixels square; its opacity is what counts. Null when there
/// is no such symbol.
///
/// Our own files may draw in white over black: white cuts out.
QImage symbolMask(const QString &name, int side);

} // namespace zorel::ui::kit
