#pragma once

#include <QColor>
#include <QPalette>

namespace zorel::ui::kit {

// Palettes of our own, for systems whose toolkit theme brings none worth having. Every role of every group is
// set.

QPalette lightPalette(const QColor &accent = QColor(0x0a, 0x64, 0xd8));
QPalette darkPalette(const QColor &accent = QColor(0x2f, 0x7c, 0xe6));

} // namespace zorel::ui::kit
