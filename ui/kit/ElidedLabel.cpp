#include "ui/kit/ElidedLabel.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/PlainText.h"

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

/// More than fits on any screen; measuring all of an endless text would take long.
constexpr qsizetype mostShown = 2000;

QString shortened(const QString &line, Qt::TextElideMode mode)
{
    if (line.size() <= mostShown) {
        return line;
    }
    switch (mode) {
    case Qt::ElideLeft:
        return QChar(0x2026) + line.right(mostShown);
    case Qt::ElideMiddle:
        return line.left(mostShown / 2) + QChar(0x2026) + line.right(mostShown / 2);
    case Qt::ElideRight:
    case Qt::ElideNone:
        break;
    }
    return line.left(mostShown) + QChar(0x2026);
}

} // namespace

ElidedLabel::ElidedLabel(Qt::TextElideMode mode, QWidget *parent)
    : QWidget(parent)
    , m_mode(mode)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleRole(this, QAccessible::StaticText);
    setTextStyle(TextRole::Body);
}

void ElidedLabel::setText(const QString &text)
{
    if (m_text == text) {
        return;
    }
    m_text = text;
    m_line = shortened(singleLine(text), m_mode);
    setPlainToolTip(this, singleLine(text));
    setSpokenName(this, text);
    measure();
    update();
}

/// A layout costs far more than a painting, and a number that counts up keeps its width for long.
void ElidedLabel::measure()
{
    const QSize before = sizeHint();
    m_lineWidth = QFontMetrics(font()).horizontalAdvance(m_line) + 1;
    if (sizeHint() != before) {
        updateGeometry();
    }
}

void ElidedLabel::setColorRole(ColorRole role)
{
    if (m_colorRole != role) {
        m_colorRole = role;
        update();
    }
}

void ElidedLabel::setTextStyle(TextRole role, Weight weight, FontKind kind)
{
    setTextFont(this, role, weight, kind);
}

QString ElidedLabel::shownText() const
{
    return QFontMetrics(font()).elidedText(m_line, m_mode, width());
}

QSize ElidedLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {m_lineWidth, metrics.height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QFontMetrics metrics(font());
    return {std::min(sizeHint().width(), metrics.averageCharWidth() * 8), metrics.height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(color(m_colorRole, palette()));
    paintLine(painter, rect(), shownText(), this);
}

void ElidedLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange) {
        measure();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

} // namespace zorel::ui::kit
