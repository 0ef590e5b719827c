#pragma once

#include <QColor>
#include <QPalette>

namespace zorel::ui::kit {

/// What a colour is for. Everything is derived from the palette, so that light, dark and the user's accent
/// colour are followed.
enum class ColorRole {
    // Text and symbols: each has a contrast of at least 4.5:1 on the window, on a card, on a control and on
    // its own tint.
    Text,
    Secondary,
    Accent,
    Success,
    Warning,
    Danger,
    // Surfaces.
    WindowBackground,
    CardBackground,
    ControlBackground,
    HoverBackground,
    PressedBackground,
    /// Behind what is chosen.
    SelectionBackground,
    /// The empty part of a meter.
    Track,
    /// A surface of the accent colour, and what is written on it.
    AccentFill,
    OnAccent,
    // Lines.
    CardBorder,
    ControlBorder,
    Separator,
    FocusRing,
};

/// Main thread. With a palette whose current group is Disabled, text is in the palette's colour for that.
QColor color(ColorRole role, const QPalette &palette);

/// A faint surface in the tone of a text role, for badges and notices; the role is legible on it.
QColor tint(ColorRole tone, const QPalette &palette);

bool isDark(const QPalette &palette);

/// 1 (the same) to 21 (black on white), as the accessibility guidelines for web content define it. Alpha is
/// ignored.
double contrastRatio(const QColor &first, const QColor &second);

/// From `first` (amount 0) to `second` (amount 1).
QColor mixed(const QColor &first, const QColor &second, double amount);

} // namespace zorel::ui::kit
