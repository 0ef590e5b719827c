#include "ui/kit/ActionButton.h"

#include "ui/kit/Accessibility.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/PlainText.h"
#include "ui/kit/Symbols.h"
#include "ui/kit/Typography.h"

#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

constexpr int symbolGap = 6;
constexpr int verticalPadding = 5;

ColorRole toneOf(ActionButton::Style style)
{
    return style == ActionButton::Style::Link ? ColorRole::Accent : ColorRole::Text;
}

} // namespace

ActionButton::ActionButton(const QString &symbol, const QString &title, Style style, QWidget *parent)
    : QPushButton(parent)
    , m_symbol(symbol)
    , m_title(title)
    , m_style(style)
    , m_tone(toneOf(style))
{
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAutoDefault(false);
    setTextFont(this, TextRole::Body, style == Style::Prominent ? Weight::Semibold : Weight::Regular);
    titleChanged();
}

void ActionButton::setTitle(const QString &title)
{
    if (m_title != title) {
        m_title = title;
        titleChanged();
    }
}

void ActionButton::titleChanged()
{
    setText(QString(m_title).replace(QLatin1Char('&'), QLatin1String("&&")));
    setSpokenName(this, m_title);
    updateGeometry();
    update();
}

void ActionButton::setSymbol(const QString &name)
{
    if (m_symbol != name) {
        m_symbol = name;
        updateGeometry();
        update();
    }
}

void ActionButton::setDisplay(Display display)
{
    m_display = display;
    titleChanged();
}

void ActionButton::setTone(ColorRole tone)
{
    m_tone = tone;
    update();
}

bool ActionButton::showsTitle() const
{
    return m_display == Display::SymbolAndTitle && !m_title.isEmpty();
}

int ActionButton::padding() const
{
    switch (m_style) {
    case Style::Prominent:
    case Style::Bordered:
        return showsTitle() ? 12 : 7;
    case Style::Plain:
        return 7;
    case Style::Link:
        return focusRingWidth + 1;
    }
    return 0;
}

QSize ActionButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    int width = 2 * padding();
    width += m_symbol.isEmpty() ? 0 : symbolSize;
    width += showsTitle() ? metrics.horizontalAdvance(m_title) + 1 : 0;
    width += !m_symbol.isEmpty() && showsTitle() ? symbolGap : 0;
    const int height = std::max(metrics.height(), symbolSize) + 2 * verticalPadding;
    return {width, m_style == Style::Link ? height : std::max(height, 28)};
}

QSize ActionButton::minimumSizeHint() const
{
    QSize hint = sizeHint();
    if (showsTitle()) {
        const QFontMetrics metrics(font());
        const int cut = metrics.horizontalAdvance(m_title) - 6 * metrics.averageCharWidth();
        hint.rwidth() -= std::max(cut, 0);
    }
    return hint;
}

QColor ActionButton::foreground() const
{
    if (m_style == Style::Prominent && isEnabled()) {
        return color(ColorRole::OnAccent, palette());
    }
    return color(m_tone, palette());
}

void ActionButton::paintSurface(QPainter &painter) const
{
    const bool isPressed = isDown() || isChecked();
    const bool isHovered = underMouse() && isEnabled();
    const QRectF area = rect();
    if (m_style == Style::Prominent && isEnabled()) {
        const QColor fill = color(ColorRole::AccentFill, palette());
        const double shade = isPressed ? 0.18 : isHovered ? 0.08 : 0;
        paintPanel(painter, area, controlCornerRadius, mixed(fill, Qt::black, shade));
    } else if (m_style == Style::Prominent || m_style == Style::Bordered) {
        const ColorRole fill = isPressed   ? ColorRole::PressedBackground
                               : isHovered ? ColorRole::HoverBackground
                                           : ColorRole::ControlBackground;
        paintPanel(painter, area, controlCornerRadius, color(fill, palette()),
                   color(isEnabled() ? ColorRole::ControlBorder : ColorRole::Separator, palette()));
    } else if (m_style == Style::Plain && (isPressed || isHovered)) {
        paintPanel(painter, area, controlCornerRadius,
                   color(isPressed ? ColorRole::PressedBackground : ColorRole::HoverBackground, palette()));
    }
}

void ActionButton::paintContent(QPainter &painter) const
{
    const QFontMetrics metrics(font());
    const int symbolWidth = m_symbol.isEmpty() ? 0 : symbolSize;
    const int gap = symbolWidth > 0 && showsTitle() ? symbolGap : 0;
    const int room = width() - 2 * padding() - symbolWidth - gap;
    const QString shown =
        showsTitle() ? metrics.elidedText(m_title, Qt::ElideRight, std::max(room, 0)) : QString();
    const int textWidth = showsTitle() ? metrics.horizontalAdvance(shown) : 0;
    const int contentWidth = symbolWidth + gap + textWidth;
    const int start = m_style == Style::Link ? padding() : (width() - contentWidth) / 2;
    const QRect symbolRect = QStyle::visualRect(
        layoutDirection(), rect(), QRect(start, (height() - symbolSize) / 2, symbolWidth, symbolSize));
    const QRect textRect = QStyle::visualRect(layoutDirection(), rect(),
                                              QRect(start + symbolWidth + gap, 0, textWidth + 1, height()));
    if (symbolWidth > 0) {
        painter.drawPixmap(symbolRect.topLeft(),
                           symbolPixmap(m_symbol, symbolSize, foreground(), devicePixelRatioF()));
    }
    QFont drawn = font();
    drawn.setUnderline(m_style == Style::Link && underMouse() && isEnabled());
    painter.setFont(drawn);
    painter.setPen(foreground());
    paintLine(painter, textRect, shown, this);
}

void ActionButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintSurface(painter);
    paintContent(painter);
    if (showsFocus(this)) {
        paintFocusRing(painter, rect(), controlCornerRadius, palette());
    }
}

bool ActionButton::event(QEvent *event)
{
    // A tooltip of the widget's own would be read out as its description, after the same name.
    if (event->type() == QEvent::ToolTip && m_display == Display::SymbolOnly) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), plainToolTip(m_title), this);
        return true;
    }
    if (event->type() == QEvent::FontChange) {
        updateGeometry();
    }
    return QPushButton::event(event);
}

void ActionButton::keyPressEvent(QKeyEvent *event)
{
    // Return as well as Space, in every window. One that is held presses once, whatever gets the focus then.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat() || autoRepeat()) {
            click();
        }
    } else {
        QPushButton::keyPressEvent(event);
    }
}

} // namespace zorel::ui::kit
