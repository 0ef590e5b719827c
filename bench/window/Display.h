#pragma once

#include <QProcess>
#include <QString>

#include <chrono>
#include <memory>

#include <xcb/xcb.h>

namespace zorel::bench {

/// An X server in memory, and a look from outside at what programs show there. Whatever goes wrong ends the
/// process.
class Display
{
public:
    using Clock = std::chrono::steady_clock;

    Display();
    ~Display();

    /// For the environment of programs.
    const QString &name() const { return m_name; }

    /// When the next window that opens is seen with its content; looked at every half of a millisecond.
    Clock::time_point waitForPaintedWindow();
    /// How many colours that window has: with a single one nothing was painted.
    int colorCount() const;
    /// Forgets the window, after its program has ended.
    void waitForEmptiness();

private:
    struct Place
    {
        std::int16_t x = 0;
        std::int16_t y = 0;
        std::uint16_t width = 0;
        std::uint16_t height = 0;
    };

    void startServer();
    void paintBackground();
    xcb_window_t waitForWindow();
    std::vector<std::uint32_t> pixels(Place place) const;

    QProcess m_server;
    QString m_name;
    xcb_connection_t *m_connection = nullptr;
    const xcb_screen_t *m_screen = nullptr;
    xcb_window_t m_window = XCB_NONE;
    Place m_place;
};

} // namespace zorel::bench
