#include "ui/kit/Painting.h"

#include "ui/kit/Metrics.h"

#include <QPainter>
#include <QPixmapCache>
#include <QWidget>

#include <cmath>

namespace zorel::ui::kit {

namespace {

void drawPanel(QPainter &painter, const QRectF &rect, qreal radius, const QColor &fill, const QColor &border)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(border.isValid() ? QPen(border, 1) : QPen(Qt::NoPen));
    const qreal inset = border.isValid() ? 0.5 : 0;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

/// Whether the painter's pixels are where whole numbers are, with none between two of them.
bool isOnPixels(const QPainter &painter, const QRectF &rect)
{
    const QTransform &transform = painter.deviceTransform();
    const QPointF start = transform.map(rect.topLeft());
    const qreal ratio = painter.device()->devicePixelRatioF();
    return transform.type() <= QTransform::TxScale && transform.m11() == ratio && transform.m22() == ratio &&
           ratio == std::floor(ratio) && start == QPointF(start.toPoint()) &&
           rect.size() == QSizeF(rect.size().toSize());
}

/// The four corners of a panel, one pixel apart.
QPixmap panelCorners(int corner, qreal radius, const QColor &fill, const QColor &border, qreal ratio)
{
    const QString key = QStringLiteral("zorelPanel/%1/%2/%3/%4")
                            .arg(radius)
                            .arg(fill.rgba(), 0, 16)
                            .arg(border.isValid() ? border.rgba() : 0, 0, 16)
                            .arg(ratio);
    QPixmap corners;
    if (!QPixmapCache::find(key, &corners)) {
        const int side = 2 * corner + 1;
        corners = QPixmap(QSize(side, side) * ratio);
        corners.setDevicePixelRatio(ratio);
        corners.fill(Qt::transparent);
        QPainter painter(&corners);
        drawPanel(painter, QRectF(0, 0, side, side), radius, fill, border);
        painter.end();
        QPixmapCache::insert(key, corners);
    }
    return corners;
}

/// What lies between the corners is filled, which takes a tenth of the time of drawing the outline of a card.
void composePanel(QPainter &painter, const QRect &rect, int corner, const QPixmap &corners,
                  const QColor &fill, const QColor &border)
{
    const QRect across = rect.adjusted(corner, 0, -corner, 0);
    const QRect down = rect.adjusted(0, corner, 0, -corner);
    painter.fillRect(across, fill);
    painter.fillRect(QRect(rect.left(), down.top(), corner, down.height()), fill);
    painter.fillRect(QRect(rect.right() + 1 - corner, down.top(), corner, down.height()), fill);
    if (border.isValid()) {
        painter.fillRect(QRect(across.left(), rect.top(), across.width(), 1), border);
        painter.fillRect(QRect(across.left(), rect.bottom(), across.width(), 1), border);
        painter.fillRect(QRect(rect.left(), down.top(), 1, down.height()), border);
        painter.fillRect(QRect(rect.right(), down.top(), 1, down.height()), border);
    }
    const qreal ratio = corners.devicePixelRatioF();
    const QSizeF size(corner, corner);
    for (const bool isRight : {false, true}) {
        for (const bool isBelow : {false, true}) {
            const QPointF target(isRight ? rect.right() + 1 - corner : rect.left(),
                                 isBelow ? rect.bottom() + 1 - corner : rect.top());
            const QPointF source(isRight ? corner + 1 : 0, isBelow ? corner + 1 : 0);
            painter.drawPixmap(QRectF(target, size), corners, QRectF(source * ratio, size * ratio));
        }
    }
}

} // namespace

void paintPanel(QPainter &painter, const QRectF &rect, qreal radius, const QColor &fill, const QColor &border)
{
    // The middle of the line has the radius.
    const int corner = static_cast<int>(std::ceil(radius + (border.isValid() ? 0.5 : 0)));
    const bool isLarge = rect.width() > 2 * corner && rect.height() > 2 * corner;
    const bool isOpaque = fill.alpha() == 255 && (!border.isValid() || border.alpha() == 255);
    if (!isLarge || !isOpaque || painter.opacity() != 1 || !isOnPixels(painter, rect)) {
        drawPanel(painter, rect, radius, fill, border);
        return;
    }
    const qreal ratio = painter.device()->devicePixelRatioF();
    composePanel(painter, rect.toRect(), corner, panelCorners(corner, radius, fill, border, ratio), fill,
                 border);
}

void paintFocusRing(QPainter &painter, const QRectF &rect, qreal radius, const QPalette &palette)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color(ColorRole::FocusRing, palette), focusRingWidth));
    const qreal inset = focusRingWidth / 2.0;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

bool showsFocus(const QWidget *widget)
{
    return widget->hasFocus() && widget->window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

} // namespace zorel::ui::kit
