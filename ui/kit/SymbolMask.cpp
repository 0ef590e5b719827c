#include "ui/kit/SymbolMask.h"

#include "platform/SystemSymbol.h"
#include "ui/kit/Symbols.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace zorel::ui::kit {

namespace {

QString fileOf(const QString &name)
{
    return QStringLiteral(":/zorel/symbols/%1.svg").arg(name);
}

/// Opaque where black was drawn and no white over it.
void cutOutWhite(QImage &image)
{
    for (int row = 0; row < image.height(); ++row) {
        auto *pixel = reinterpret_cast<QRgb *>(image.scanLine(row));
        for (QRgb *const end = pixel + image.width(); pixel != end; ++pixel) {
            *pixel = qRgba(0, 0, 0, qAlpha(*pixel) - qRed(*pixel));
        }
    }
}

QImage ownMask(const QString &name, int side)
{
    QSvgRenderer renderer(fileOf(name));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(0, 0, side, side));
    painter.end();
    cutOutWhite(image);
    return image;
}

QImage systemMask(const QByteArray &opacities, int side)
{
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    const auto *opacity = reinterpret_cast<const uchar *>(opacities.constData());
    for (int row = 0; row < side; ++row) {
        auto *pixel = reinterpret_cast<QRgb *>(image.scanLine(row));
        for (QRgb *const end = pixel + side; pixel != end; ++pixel, ++opacity) {
            *pixel = qRgba(0, 0, 0, *opacity);
        }
    }
    return image;
}

bool hasOwnSymbol(const QString &name)
{
    return !name.isEmpty() && !name.contains(QLatin1Char('/')) && QFile::exists(fileOf(name));
}

} // namespace

QImage symbolMask(const QString &name, int side)
{
    if (side <= 0) {
        return {};
    }
    const QByteArray opacities = platform::systemSymbolOpacity(name, side);
    if (!opacities.isEmpty()) {
        return systemMask(opacities, side);
    }
    return hasOwnSymbol(name) ? ownMask(name, side) : QImage();
}

bool hasSymbol(const QString &name)
{
    return platform::hasSystemSymbol(name) || hasOwnSymbol(name);
}

QStringList symbolNames()
{
    QStringList names;
    const QStringList files = QDir(QStringLiteral(":/zorel/symbols")).entryList(QDir::Files, QDir::Name);
    for (const QString &file : files) {
        names.append(file.chopped(4));
    }
    return names;
}

} // namespace zorel::ui::kit
