#include "ui/kit/Badge.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/PlainText.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/Typography.h"

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

constexpr int badgeSymbolSize = 12;
constexpr int sidePadding = 8;
constexpr int verticalPadding = 3;

} // namespace

Badge::Badge(const QString &symbol, const QString &text, ColorRole tone, QWidget *parent)
    : QWidget(parent)
    , m_symbol(symbol)
    , m_text(text)
    , m_tone(tone)
{
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    setAccessibleRole(this, QAccessible::StaticText);
    setTextFont(this, TextRole::Caption, Weight::Medium);
    setSpokenName(this, text);
}

void Badge::setBadge(const QString &symbol, const QString &text, ColorRole tone)
{
    if (m_symbol == symbol && m_text == text && m_tone == tone) {
        return;
    }
    m_symbol = symbol;
    m_text = text;
    m_tone = tone;
    setSpokenName(this, text);
    updateGeometry();
    update();
}

int Badge::textLeft() const
{
    return sidePadding + (m_symbol.isEmpty() ? 0 : badgeSymbolSize + spacing::half);
}

QSize Badge::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {textLeft() + metrics.horizontalAdvance(singleLine(m_text)) + 1 + sidePadding,
            std::max(metrics.height(), badgeSymbolSize) + 2 * verticalPadding};
}

QSize Badge::minimumSizeHint() const
{
    const QSize hint = sizeHint();
    return {std::min(hint.width(), textLeft() + sidePadding + 6 * QFontMetrics(font()).averageCharWidth()),
            hint.height()};
}

void Badge::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintPanel(painter, rect(), height() / 2.0, tint(m_tone, palette()));
    const QColor foreground = color(m_tone, palette());
    if (!m_symbol.isEmpty()) {
        const QRect place = QStyle::visualRect(
            layoutDirection(), rect(),
            QRect(sidePadding, (height() - badgeSymbolSize) / 2, badgeSymbolSize, badgeSymbolSize));
        painter.drawPixmap(place.topLeft(),
                           symbolPixmap(m_symbol, badgeSymbolSize, foreground, devicePixelRatioF()));
    }
    const QRect textRect = QStyle::visualRect(
        layoutDirection(), rect(), QRect(textLeft(), 0, width() - textLeft() - sidePadding + 1, height()));
    painter.setPen(foreground);
    paintLine(painter, textRect,
              QFontMetrics(font()).elidedText(singleLine(m_text), Qt::ElideRight, textRect.width()), this);
}

void Badge::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange) {
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

} // namespace zorel::ui::kit
