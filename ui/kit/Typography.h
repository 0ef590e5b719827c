#pragma once

#include <QFont>

class QWidget;

namespace zorel::ui::kit {

enum class TextRole { LargeTitle, Title, Heading, Subheading, Body, Caption, Caption2 };
enum class Weight { Regular, Medium, Semibold };
/// Tabular: every digit as wide as every other, so that a changing number does not move.
enum class FontKind { Proportional, Tabular, Monospaced };

// Fonts of the one type scale, made from the application's font, so that the sizes follow the system's
// setting.

QFont textFont(TextRole role, Weight weight = Weight::Regular);
QFont monospacedFont(TextRole role, Weight weight = Weight::Regular);
QFont tabularFont(TextRole role, Weight weight = Weight::Regular);

/// Gives the widget that font and keeps it in step with the application's font; a second call replaces the
/// first.
void setTextFont(QWidget *widget, TextRole role, Weight weight = Weight::Regular,
                 FontKind kind = FontKind::Proportional);

} // namespace zorel::ui::kit
