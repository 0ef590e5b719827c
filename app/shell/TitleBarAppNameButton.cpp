#include "app/shell/TitleBarAppNameButton.h"

#include "ui/kit/Colors.h"
#include "ui/kit/Metrics.h"
#include "ui/kit/Painting.h"
#include "ui/kit/PlainText.h"

#include <QFontMetrics>
#include <QPainter>

namespace zorel::app::shell {

namespace kit = ui::kit;

namespace {

constexpr int fontPoints = 13;
constexpr int horizontalPadding = 4;

} // namespace

TitleBarAppNameButton::TitleBarAppNameButton(const QString &displayName, std::function<void()> action,
                                             QWidget *parent)
    : QPushButton(QString(displayName).replace(QLatin1Char('&'), QLatin1String("&&")), parent)
    , m_displayName(displayName)
{
    QFont nameFont = font();
    nameFont.setPointSize(fontPoints);
    nameFont.setWeight(QFont::DemiBold);
    setFont(nameFont);
    setFlat(true);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    setAccessibleName(displayName);
    const QString hint = QStringLiteral("About ") + displayName;
    kit::setPlainToolTip(this, hint);
    // Not the tooltip's markup, which a name may need.
    setAccessibleDescription(hint);
    connect(this, &QPushButton::clicked, this, std::move(action));
}

QSize TitleBarAppNameButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(m_displayName) + 2 * horizontalPadding,
            metrics.height() + kit::gridUnit};
}

QSize TitleBarAppNameButton::minimumSizeHint() const
{
    return {2 * horizontalPadding + QFontMetrics(font()).averageCharWidth(), sizeHint().height()};
}

void TitleBarAppNameButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (isDown() || underMouse()) {
        const kit::ColorRole fill =
            isDown() ? kit::ColorRole::PressedBackground : kit::ColorRole::HoverBackground;
        kit::paintPanel(painter, rect(), kit::controlCornerRadius, kit::color(fill, palette()));
    }
    const QRect area = rect().adjusted(horizontalPadding, 0, -horizontalPadding, 0);
    painter.setPen(kit::color(kit::ColorRole::Text, palette()));
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(m_displayName, Qt::ElideRight, area.width()));
    if (kit::showsFocus(this)) {
        kit::paintFocusRing(painter, rect(), kit::controlCornerRadius, palette());
    }
}

} // namespace zorel::app::shell
