#pragma once

#include <QScreen>
#include <QSize>

namespace zorel::app::shell {

/// The largest content that a window on this screen can show whole, with its frame around it.
inline QSize screenRoom(const QScreen &screen)
{
    // The frame's size is not known before the window is shown; this is more than any has.
    return screen.availableSize() - QSize(16, 48);
}

} // namespace zorel::app::shell
