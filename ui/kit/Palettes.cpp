#include "ui/kit/Palettes.h"

#include "ui/kit/Colors.h"

namespace zorel::ui::kit {

namespace {

/// The few colours that the others of a palette follow from.
struct Base
{
    QColor window;
    QColor field;
    QColor text;
    QColor button;
    QColor accent;
};

QPalette paletteFrom(const Base &base)
{
    QPalette palette(base.text, base.button, mixed(base.button, Qt::white, 0.4),
                     mixed(base.button, Qt::black, 0.5), mixed(base.button, Qt::black, 0.25), base.text,
                     Qt::white, base.field, base.window);
    palette.setColor(QPalette::Midlight, mixed(base.button, Qt::white, 0.2));
    palette.setColor(QPalette::Shadow, mixed(base.button, Qt::black, 0.75));
    palette.setColor(QPalette::AlternateBase, mixed(base.field, base.text, 0.04));
    palette.setColor(QPalette::ToolTipBase, mixed(base.field, base.text, 0.06));
    palette.setColor(QPalette::ToolTipText, base.text);
    palette.setColor(QPalette::PlaceholderText, mixed(base.text, base.field, 0.36));
    palette.setColor(QPalette::Highlight, base.accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, base.accent);
    palette.setColor(QPalette::LinkVisited, mixed(base.accent, QColor(Qt::magenta), 0.3));
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    palette.setColor(QPalette::Accent, base.accent);
#endif
    const QColor faint = mixed(base.text, base.window, 0.55);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, mixed(base.accent, base.window, 0.6));
    return palette;
}

} // namespace

QPalette lightPalette(const QColor &accent)
{
    return paletteFrom({.window = QColor(0xf4, 0xf4, 0xf6),
                        .field = Qt::white,
                        .text = QColor(0x1c, 0x1c, 0x1f),
                        .button = QColor(0xf8, 0xf8, 0xfa),
                        .accent = accent});
}

QPalette darkPalette(const QColor &accent)
{
    return paletteFrom({.window = QColor(0x1d, 0x1d, 0x20),
                        .field = QColor(0x2a, 0x2a, 0x2e),
                        .text = QColor(0xee, 0xee, 0xf0),
                        .button = QColor(0x38, 0x38, 0x3d),
                        .accent = accent});
}

} // namespace zorel::ui::kit
