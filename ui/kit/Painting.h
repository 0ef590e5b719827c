#pragma once

#include "ui/kit/Colors.h"

#include <QRectF>

class QPainter;
class QWidget;

namespace zorel::ui::kit {

/// A rounded surface with a line of one pixel inside its edge; an invalid border colour draws none.
void paintPanel(QPainter &painter, const QRectF &rect, qreal radius, const QColor &fill,
                const QColor &border = {});

/// Inside the rectangle's edge.
void paintFocusRing(QPainter &painter, const QRectF &rect, qreal radius, const QPalette &palette);

/// Whether the widget has the focus and the user works with the keyboard.
bool showsFocus(const QWidget *widget);

} // namespace zorel::ui::kit
