#pragma once

#include <QProxyStyle>

namespace zorel::ui::kit {

/// Draws what the toolkit brings (fields, scroll bars, tabs, radio buttons, bars) in the manner of the kit.
/// For systems without a style of their own.
class KitStyle : public QProxyStyle
{
    Q_OBJECT

public:
    KitStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl subControl,
                         const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    using QProxyStyle::polish;
    void polish(QWidget *widget) override;
};

/// Gives the application this style where it would have the toolkit's plain one, and a palette of the kit
/// where the system brings none. Call it before the first widget.
void installKitStyle(bool prefersDark);

} // namespace zorel::ui::kit
