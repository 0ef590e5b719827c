// make_icon SVG ICNS PNG: draws the application's icon in the sizes that each system asks for.

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>

#include <cstdio>
#include <cstdlib>

namespace {

struct Size
{
    const char *type; ///< as the container names it
    int pixels;
};

/// 16 points at a double scale up to 512 points at a double scale.
constexpr Size sizes[] = {{"ic11", 32},  {"ic12", 64},  {"ic07", 128}, {"ic13", 256},
                          {"ic08", 256}, {"ic14", 512}, {"ic09", 512}, {"ic10", 1024}};
/// For desktops that show a window's icon.
constexpr int pngPixels = 256;

QByteArray drawn(QSvgRenderer &drawing, int pixels)
{
    QImage image(pixels, pixels, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter);
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QBuffer::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}

QByteArray block(const char *type, const QByteArray &content)
{
    QByteArray size(4, '\0');
    qToBigEndian(quint32(content.size() + 8), size.data());
    return type + size + content;
}

bool write(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    return file.open(QFile::WriteOnly) && file.write(contents) == contents.size() && file.flush();
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount != 4) {
        std::fprintf(stderr, "usage: make_icon SVG ICNS PNG\n");
        return EXIT_FAILURE;
    }
    QSvgRenderer drawing(QFile::decodeName(arguments[1]));
    if (!drawing.isValid()) {
        std::fprintf(stderr, "make_icon: %s is no drawing\n", arguments[1]);
        return EXIT_FAILURE;
    }
    QByteArray images;
    for (const Size &size : sizes) {
        images += block(size.type, drawn(drawing, size.pixels));
    }
    const bool written = write(QFile::decodeName(arguments[2]), block("icns", images)) &&
                         write(QFile::decodeName(arguments[3]), drawn(drawing, pngPixels));
    return written ? EXIT_SUCCESS : EXIT_FAILURE;
}
