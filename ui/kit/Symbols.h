#pragma once

#include "ui/kit/Colors.h"

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QStringList>

namespace zorel::ui::kit {

// Symbols by name: the system's where it has such symbols, else our own of the same name. Main thread.

/// Null when there is no such symbol. Tinted by the application's palette at the time of drawing, in every
/// state and for every device pixel ratio.
QIcon symbolIcon(const QString &name, ColorRole role = ColorRole::Text);

/// A square of `points` logical pixels. Null when there is no such symbol.
QPixmap symbolPixmap(const QString &name, qreal points, const QColor &color, qreal devicePixelRatio);

bool hasSymbol(const QString &name);

/// The names of our own set, sorted.
QStringList symbolNames();

} // namespace zorel::ui::kit
