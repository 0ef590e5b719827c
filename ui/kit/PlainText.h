#pragma once

#include <QRectF>
#include <QString>

class QPainter;
class QWidget;

namespace zorel::ui::kit {

/// On one line and harmless: line breaks and tabulators become arrows; other controls and the marks that turn
/// the writing direction become U+FFFD. Other text, also from right to left, stays as it is.
QString singleLine(const QString &text);

/// One line in the middle of the rectangle's height, at its leading edge for the widget's layout direction.
/// The text itself runs as its first letter says, so that a path stays readable in a window from right to
/// left.
void paintLine(QPainter &painter, const QRectF &rect, const QString &line, const QWidget *widget);

/// What a tooltip must be given to show the text as it stands, without markup. Beyond 2,000 characters the
/// middle is left out.
QString plainToolTip(const QString &text);
void setPlainToolTip(QWidget *widget, const QString &text);

} // namespace zorel::ui::kit
