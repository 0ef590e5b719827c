#include "platform/SystemSymbol.h"

#include <algorithm>

#import <AppKit/AppKit.h>

namespace zorel::platform {

namespace {

/// Of the square; most symbols are about as wide as the text they go with is high, some wider.
constexpr double textSize = 0.78;

NSImage *symbolNamed(const QString &name)
{
    NSString *const text = [NSString stringWithUTF8String:name.toUtf8().constData()];
    return [NSImage imageWithSystemSymbolName:text accessibilityDescription:nil];
}

NSBitmapImageRep *emptyBitmap(int side)
{
    return [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                   pixelsWide:side
                                                   pixelsHigh:side
                                                bitsPerSample:8
                                              samplesPerPixel:4
                                                     hasAlpha:YES
                                                     isPlanar:NO
                                               colorSpaceName:NSDeviceRGBColorSpace
                                                  bytesPerRow:0
                                                 bitsPerPixel:0];
}

/// As large as it is, unless it does not fit.
NSRect placeFor(NSSize size, int side)
{
    const double scale = std::min(1.0, side / std::max({size.width, size.height, 1.0}));
    const double width = size.width * scale;
    const double height = size.height * scale;
    return NSMakeRect((side - width) / 2, (side - height) / 2, width, height);
}

void draw(NSImage *image, NSBitmapImageRep *bitmap, int side)
{
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext *const context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
    [NSGraphicsContext setCurrentContext:context];
    [image drawInRect:placeFor(image.size, side)
             fromRect:NSZeroRect
            operation:NSCompositingOperationSourceOver
             fraction:1];
    [context flushGraphics];
    [NSGraphicsContext restoreGraphicsState];
}

} // namespace

bool hasSystemSymbol(const QString &name)
{
    @autoreleasepool {
        return !name.isEmpty() && symbolNamed(name) != nil;
    }
}

QByteArray systemSymbolOpacity(const QString &name, int side)
{
    @autoreleasepool {
        NSImage *const symbol = name.isEmpty() || side <= 0 ? nil : symbolNamed(name);
        if (symbol == nil) {
            return {};
        }
        NSImageSymbolConfiguration *const configuration =
            [NSImageSymbolConfiguration configurationWithPointSize:side * textSize
                                                            weight:NSFontWeightRegular];
        NSBitmapImageRep *const bitmap = emptyBitmap(side);
        draw([symbol imageWithSymbolConfiguration:configuration], bitmap, side);
        QByteArray opacities(qsizetype(side) * side, 0);
        for (int row = 0; row < side; ++row) {
            const unsigned char *const pixels = bitmap.bitmapData + row * bitmap.bytesPerRow;
            for (int column = 0; column < side; ++column) {
                opacities[qsizetype(row) * side + column] = static_cast<char>(pixels[4 * column + 3]);
            }
        }
        return opacities;
    }
}

} // namespace zorel::platform
