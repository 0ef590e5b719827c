#include "ui/kit/Symbols.h"

#include "ui/kit/SymbolMask.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>

#include <algorithm>
#include <utility>

namespace zorel::ui::kit {

namespace {

/// Draws the symbol anew for each palette instead of keeping pictures of one.
class SymbolIconEngine : public QIconEngine
{
public:
    SymbolIconEngine(QString name, ColorRole role)
        : m_name(std::move(name))
        , m_role(role)
    {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const int side = std::min(rect.width(), rect.height());
        const QPixmap pixmap =
            symbolPixmap(m_name, side, colorFor(mode), painter->device()->devicePixelRatioF());
        painter->drawPixmap(rect.left() + (rect.width() - side) / 2, rect.top() + (rect.height() - side) / 2,
                            pixmap);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    /// `size` is in device pixels.
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        const int side = std::min(size.width(), size.height());
        return symbolPixmap(m_name, side / scale, colorFor(mode), scale);
    }

    QSize actualSize(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        const int side = std::min(size.width(), size.height());
        return {side, side};
    }

    QIconEngine *clone() const override { return new SymbolIconEngine(m_name, m_role); }
    QString key() const override { return QStringLiteral("zorelSymbol"); }
    QString iconName() override { return m_name; }
    bool isNull() override { return !hasSymbol(m_name); }

private:
    QColor colorFor(QIcon::Mode mode) const
    {
        const QPalette palette = QGuiApplication::palette();
        switch (mode) {
        case QIcon::Disabled:
            return palette.color(QPalette::Disabled, QPalette::WindowText);
        case QIcon::Selected:
            return palette.color(QPalette::Active, QPalette::HighlightedText);
        case QIcon::Normal:
        case QIcon::Active:
            break;
        }
        return color(m_role, palette);
    }

    QString m_name;
    ColorRole m_role;
};

} // namespace

QIcon symbolIcon(const QString &name, ColorRole role)
{
    return hasSymbol(name) ? QIcon(new SymbolIconEngine(name, role)) : QIcon();
}

QPixmap symbolPixmap(const QString &name, qreal points, const QColor &color, qreal devicePixelRatio)
{
    if (name.isEmpty()) {
        return {};
    }
    const int side = qRound(points * devicePixelRatio);
    const QString key =
        QStringLiteral("zorelSymbol/%1/%2/%3/%4")
            .arg(name, QString::number(side), QString::number(devicePixelRatio), color.name(QColor::HexArgb));
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) {
        return pixmap;
    }
    QImage image = symbolMask(name, side);
    if (image.isNull()) {
        qWarning("There is no symbol \"%s\".", qUtf8Printable(name));
        return {};
    }
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    painter.end();
    pixmap = QPixmap::fromImage(std::move(image));
    pixmap.setDevicePixelRatio(devicePixelRatio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

} // namespace zorel::ui::kit
