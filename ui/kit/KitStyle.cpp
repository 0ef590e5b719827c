#include "ui/kit/KitStyle.h"

#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/Palettes.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOption>

#include <algorithm>

namespace zorel::ui::kit {

namespace {

constexpr int fieldInset = spacing::half;
constexpr int fieldHeight = 28;
constexpr int tabHeight = 36;
constexpr int tabPadding = spacing::one;
constexpr int scrollBarExtent = 12;
constexpr int scrollBarInset = 3;
constexpr int shortestSlider = 4 * gridUnit;
constexpr int indicatorSize = 16;

bool isSet(const QStyleOption &option, QStyle::StateFlag flag)
{
    return option.state.testFlag(flag);
}

/// Surface and edge of a field; the edge shows the focus.
void paintField(QPainter &painter, const QStyleOption &option,
                ColorRole surface = ColorRole::ControlBackground)
{
    const bool isEnabled = isSet(option, QStyle::State_Enabled);
    paintPanel(painter, option.rect, controlCornerRadius,
               color(isEnabled ? surface : ColorRole::CardBackground, option.palette),
               color(isEnabled ? ColorRole::ControlBorder : ColorRole::Separator, option.palette));
    if (isEnabled && isSet(option, QStyle::State_HasFocus)) {
        paintFocusRing(painter, option.rect, controlCornerRadius, option.palette);
    }
}

void paintRadioIndicator(QPainter &painter, const QStyleOption &option)
{
    const QRectF circle(option.rect);
    const double radius = circle.width() / 2;
    const bool isEnabled = isSet(option, QStyle::State_Enabled);
    if (!isSet(option, QStyle::State_On)) {
        paintPanel(painter, circle, radius, color(ColorRole::ControlBackground, option.palette),
                   color(isEnabled ? ColorRole::Secondary : ColorRole::ControlBorder, option.palette));
        return;
    }
    const ColorRole fill = isEnabled ? ColorRole::AccentFill : ColorRole::ControlBorder;
    paintPanel(painter, circle, radius, color(fill, option.palette));
    const double dot = circle.width() * 0.3;
    paintPanel(painter, circle.adjusted(dot, dot, -dot, -dot), radius - dot,
               color(isEnabled ? ColorRole::OnAccent : ColorRole::CardBackground, option.palette));
}

void paintTab(QPainter &painter, const QStyleOption &option)
{
    const QRect surface = option.rect.adjusted(2, 2, -2, -spacing::half);
    const bool isSelected = isSet(option, QStyle::State_Selected);
    if (!isSelected && isSet(option, QStyle::State_MouseOver)) {
        paintPanel(painter, surface, controlCornerRadius, color(ColorRole::HoverBackground, option.palette));
    }
    if (isSelected) {
        const QRectF line(option.rect.left() + tabPadding, option.rect.bottom() - 2,
                          option.rect.width() - 2 * tabPadding, 3);
        paintPanel(painter, line, 1.5, color(ColorRole::AccentFill, option.palette));
    }
    if (isSet(option, QStyle::State_HasFocus) && isSet(option, QStyle::State_KeyboardFocusChange)) {
        paintFocusRing(painter, surface, controlCornerRadius, option.palette);
    }
}

void paintMenuBarItem(QPainter &painter, const QStyleOptionMenuItem &item, const QStyle &style)
{
    painter.fillRect(item.rect, color(ColorRole::WindowBackground, item.palette));
    if (isSet(item, QStyle::State_Selected)) {
        const bool isOpen = isSet(item, QStyle::State_Sunken);
        paintPanel(painter, item.rect.adjusted(0, 1, 0, -1), controlCornerRadius,
                   color(isOpen ? ColorRole::PressedBackground : ColorRole::HoverBackground, item.palette));
    }
    const int mnemonic =
        style.styleHint(QStyle::SH_UnderlineShortcut, &item) ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
    style.drawItemText(&painter, item.rect, Qt::AlignCenter | Qt::TextSingleLine | mnemonic, item.palette,
                       isSet(item, QStyle::State_Enabled), item.text, QPalette::WindowText);
}

void paintSlider(QPainter &painter, const QStyleOptionSlider &option, const QRect &slider)
{
    if (option.maximum <= option.minimum) {
        return;
    }
    const bool isActive = isSet(option, QStyle::State_MouseOver) || isSet(option, QStyle::State_Sunken);
    const QColor window = option.palette.color(QPalette::Active, QPalette::Window);
    const QColor ink = option.palette.color(QPalette::Active, QPalette::WindowText);
    const int across = scrollBarInset;
    const QRect handle = option.orientation == Qt::Vertical ? slider.adjusted(across, 2, -across, -2)
                                                            : slider.adjusted(2, across, -2, -across);
    paintPanel(painter, handle, (scrollBarExtent - 2.0 * across) / 2.0,
               mixed(window, ink, isActive ? 0.6 : 0.4));
}

/// Without arrows at its ends: the groove is all of it.
QRect sliderRect(const QStyleOptionSlider &option)
{
    const bool isVertical = option.orientation == Qt::Vertical;
    const int length = isVertical ? option.rect.height() : option.rect.width();
    const qint64 range = qint64(option.maximum) - option.minimum;
    int size = length;
    if (range > 0) {
        const qint64 wanted = qint64(option.pageStep) * length / (range + option.pageStep);
        size = std::clamp(static_cast<int>(wanted), std::min(shortestSlider, length), length);
    }
    const int start = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                      length - size, option.upsideDown);
    return isVertical ? QRect(option.rect.left(), option.rect.top() + start, option.rect.width(), size)
                      : QRect(option.rect.left() + start, option.rect.top(), size, option.rect.height());
}

bool isScrollAreaFrame(const QWidget *widget)
{
    return qobject_cast<const QAbstractScrollArea *>(widget) != nullptr;
}

} // namespace

KitStyle::KitStyle()
    : QProxyStyle(QStringLiteral("Fusion"))
{}

void KitStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                             const QWidget *widget) const
{
    switch (element) {
    case PE_PanelLineEdit:
        if (const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
            frame && frame->lineWidth > 0) {
            paintField(*painter, *option);
            return;
        }
        break;
    case PE_FrameLineEdit:
        return; // a part of the panel
    case PE_Frame:
        if (isScrollAreaFrame(widget)) {
            // The colours of chosen rows are made to stand out from a card.
            const bool hasRows = qobject_cast<const QAbstractItemView *>(widget) != nullptr;
            paintField(*painter, *option, hasRows ? ColorRole::CardBackground : ColorRole::ControlBackground);
            return;
        }
        break;
    case PE_FrameFocusRect:
        paintFocusRing(*painter, option->rect, controlCornerRadius, option->palette);
        return;
    case PE_IndicatorRadioButton:
        paintRadioIndicator(*painter, *option);
        return;
    case PE_FrameTabBarBase:
        painter->fillRect(QRect(option->rect.left(), option->rect.bottom(), option->rect.width(), 1),
                          color(ColorRole::Separator, option->palette));
        return;
    default:
        break;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void KitStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                           const QWidget *widget) const
{
    switch (element) {
    case CE_TabBarTabShape:
        paintTab(*painter, *option);
        return;
    case CE_ToolBar:
        return; // no line between the name and the page
    case CE_MenuBarItem:
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            paintMenuBarItem(*painter, *item, *this);
            return;
        }
        break;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, color(ColorRole::WindowBackground, option->palette));
        return;
    case CE_TabBarTabLabel:
        // The shape shows the focus.
        if (const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option)) {
            QStyleOptionTab label(*tab);
            label.state.setFlag(State_HasFocus, false);
            QProxyStyle::drawControl(element, &label, painter, widget);
            return;
        }
        break;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void KitStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                  QPainter *painter, const QWidget *widget) const
{
    if (const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option);
        control == CC_ScrollBar && slider) {
        paintSlider(*painter, *slider, sliderRect(*slider));
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect KitStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option,
                               SubControl subControl, const QWidget *widget) const
{
    const auto *bar = qstyleoption_cast<const QStyleOptionSlider *>(option);
    if (control != CC_ScrollBar || !bar) {
        return QProxyStyle::subControlRect(control, option, subControl, widget);
    }
    const QRect slider = sliderRect(*bar);
    const QRect groove = bar->rect;
    const bool isVertical = bar->orientation == Qt::Vertical;
    switch (subControl) {
    case SC_ScrollBarGroove:
        return groove;
    case SC_ScrollBarSlider:
        return slider;
    case SC_ScrollBarSubPage:
        return isVertical ? QRect(groove.topLeft(), QPoint(groove.right(), slider.top() - 1))
                          : QRect(groove.topLeft(), QPoint(slider.left() - 1, groove.bottom()));
    case SC_ScrollBarAddPage:
        return isVertical ? QRect(QPoint(groove.left(), slider.bottom() + 1), groove.bottomRight())
                          : QRect(QPoint(slider.right() + 1, groove.top()), groove.bottomRight());
    default:
        return {};
    }
}

QRect KitStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    if (element == SE_LineEditContents) {
        const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
        return frame && frame->lineWidth > 0 ? rect.adjusted(fieldInset, 0, -fieldInset, 0) : rect;
    }
    return rect;
}

QSize KitStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                 const QWidget *widget) const
{
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (const auto *frame = qstyleoption_cast<const QStyleOptionFrame *>(option);
        type == CT_LineEdit && frame && frame->lineWidth > 0) {
        size += QSize(2 * fieldInset, 0);
        size.setHeight(std::max(size.height(), fieldHeight));
    }
    if (type == CT_TabBarTab) {
        size += QSize(2 * tabPadding, 0);
        size.setHeight(std::max(size.height(), tabHeight));
    }
    return size;
}

int KitStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_ScrollBarExtent:
        return scrollBarExtent;
    case PM_ScrollBarSliderMin:
        return shortestSlider;
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return indicatorSize;
    case PM_DefaultFrameWidth:
        // The square corners of what is inside stay within the round ones.
        if (isScrollAreaFrame(widget)) {
            return 2;
        }
        break;
    case PM_MenuBarHMargin:
        return spacing::one;
    case PM_MenuBarVMargin:
        return 2;
    case PM_ToolBarItemSpacing:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabOverlap:
        return 0;
    default:
        break;
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

void KitStyle::polish(QWidget *widget)
{
    QProxyStyle::polish(widget);
    if (qobject_cast<QScrollBar *>(widget)) {
        // What lies behind shows through.
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
    }
}

void installKitStyle(bool prefersDark)
{
    const QStyle *const style = QApplication::style();
    if (style->name().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0) {
        return;
    }
    const QPalette palette = QApplication::palette();
    const bool isPlain = palette == style->standardPalette();
    QApplication::setStyle(new KitStyle);
    if (isPlain) {
        QApplication::setPalette(prefersDark || isDark(palette) ? darkPalette() : lightPalette());
    }
}

} // namespace zorel::ui::kit
