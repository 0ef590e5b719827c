#pragma once

#include <QAccessible>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <cmath>

namespace zorel::tests {

/// What assistive technology is told about the widget.
inline QAccessibleInterface &spoken(QWidget *widget)
{
    return *QAccessible::queryAccessibleInterface(widget);
}

inline QString spokenName(QWidget *widget)
{
    return spoken(widget).text(QAccessible::Name);
}

/// How many pixels of the picture are as good as this colour.
inline int pixelsOf(const QImage &image, const QColor &color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            const int distance = std::abs(pixel.red() - color.red()) +
                                 std::abs(pixel.green() - color.green()) +
                                 std::abs(pixel.blue() - color.blue());
            count += distance <= 6 ? 1 : 0;
        }
    }
    return count;
}

/// With the pointer elsewhere.
inline QImage picture(QWidget &widget)
{
    widget.setAttribute(Qt::WA_UnderMouse, false);
    const QList<QWidget *> parts = widget.findChildren<QWidget *>();
    for (QWidget *part : parts) {
        part->setAttribute(Qt::WA_UnderMouse, false);
    }
    return widget.grab().toImage();
}

inline void showAt(QWidget &widget, const QSize &size)
{
    widget.resize(size);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
}

/// As if the user had come to the widget with the Tab key.
inline void focusByKeyboard(QWidget *widget)
{
    widget->window()->activateWindow();
    widget->window()->setAttribute(Qt::WA_KeyboardFocusChange);
    widget->setFocus(Qt::TabFocusReason);
}

} // namespace zorel::tests
