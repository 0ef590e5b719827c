#include "ui/kit/SymbolLabel.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Symbols.h"

#include <QPainter>

#include <cmath>

namespace zorel::ui::kit {

SymbolLabel::SymbolLabel(const QString &name, qreal points, ColorRole role, QWidget *parent)
    : QWidget(parent)
    , m_name(name)
    , m_points(points)
    , m_role(role)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleRole(this, QAccessible::Graphic);
}

void SymbolLabel::setSymbol(const QString &name)
{
    if (m_name != name) {
        m_name = name;
        update();
    }
}

void SymbolLabel::setColorRole(ColorRole role)
{
    if (m_role != role) {
        m_role = role;
        update();
    }
}

QSize SymbolLabel::sizeHint() const
{
    const int side = static_cast<int>(std::ceil(m_points));
    return {side, side};
}

void SymbolLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPixmap pixmap = symbolPixmap(m_name, m_points, color(m_role, palette()), devicePixelRatioF());
    painter.drawPixmap(QPointF((width() - m_points) / 2, (height() - m_points) / 2), pixmap);
}

} // namespace zorel::ui::kit
