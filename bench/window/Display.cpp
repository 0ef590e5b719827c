#include "bench/window/Display.h"

#include <QByteArray>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <span>
#include <thread>
#include <vector>

#include <poll.h>

namespace zorel::bench {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds patience = 30s;
/// A colour that no program paints, so that what is painted differs from what was there.
constexpr std::uint32_t background = 0x01fe37;
constexpr std::uint32_t colorMask = 0xffffff;

struct Free
{
    void operator()(void *memory) const { std::free(memory); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

} // namespace

Display::Display()
{
    startServer();
    m_connection = xcb_connect(m_name.toLatin1().constData(), nullptr);
    if (xcb_connection_has_error(m_connection) != 0) {
        qFatal("the X server does not answer");
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    paintBackground();
}

Display::~Display()
{
    xcb_disconnect(m_connection);
    m_server.terminate();
    m_server.waitForFinished();
}

void Display::startServer()
{
    // The number of a free display is written to standard output.
    m_server.start(QStringLiteral("Xvfb"),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                    QStringLiteral("0"), QStringLiteral("1600x1100x24"), QStringLiteral("-nolisten"),
                    QStringLiteral("tcp")});
    QByteArray number;
    while (!number.endsWith('\n')) {
        if (!m_server.waitForReadyRead()) {
            qFatal("Xvfb does not start");
        }
        number += m_server.readAllStandardOutput();
    }
    m_name = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
}

void Display::paintBackground()
{
    const std::uint32_t values[] = {background, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_change_window_attributes(m_connection, m_screen->root, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    xcb_clear_area(m_connection, 0, m_screen->root, 0, 0, 0, 0);
    xcb_flush(m_connection);
}

Display::Clock::time_point Display::waitForPaintedWindow()
{
    m_window = waitForWindow();
    const Owned<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, m_window), nullptr));
    if (!geometry) {
        qFatal("the window has gone");
    }
    m_place = {geometry->x, geometry->y, geometry->width, geometry->height};
    const Clock::time_point latest = Clock::now() + patience;
    const Place middleRow{m_place.x, static_cast<std::int16_t>(m_place.y + m_place.height / 2), m_place.width,
                          1};
    while (Clock::now() < latest) {
        const std::vector<std::uint32_t> row = pixels(middleRow);
        const Clock::time_point now = Clock::now();
        if (std::ranges::find(row, background) == row.end()) {
            return now;
        }
        std::this_thread::sleep_for(500us);
    }
    qFatal("the window is not painted");
}

xcb_window_t Display::waitForWindow()
{
    const Clock::time_point latest = Clock::now() + patience;
    while (Clock::now() < latest) {
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
            if ((event->response_type & 0x7f) == XCB_MAP_NOTIFY) {
                return reinterpret_cast<const xcb_map_notify_event_t *>(event.get())->window;
            }
        }
        pollfd incoming{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        ::poll(&incoming, 1, 100);
    }
    qFatal("no window opens");
}

std::vector<std::uint32_t> Display::pixels(Place place) const
{
    // Of the root window, which holds what is on the screen.
    const Owned<xcb_get_image_reply_t> image(
        xcb_get_image_reply(m_connection,
                            xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, place.x,
                                          place.y, place.width, place.height, colorMask),
                            nullptr));
    if (!image) {
        qFatal("the screen cannot be read");
    }
    const std::size_t count = std::size_t{place.width} * place.height;
    std::vector<std::uint32_t> pixels(count);
    std::copy_n(xcb_get_image_data(image.get()), count * sizeof(std::uint32_t),
                reinterpret_cast<std::uint8_t *>(pixels.data()));
    for (std::uint32_t &pixel : pixels) {
        pixel &= colorMask;
    }
    return pixels;
}

int Display::colorCount() const
{
    const std::vector<std::uint32_t> all = pixels(m_place);
    return static_cast<int>(std::set(all.begin(), all.end()).size());
}

void Display::waitForEmptiness()
{
    while (m_window != XCB_NONE) {
        const Owned<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            m_connection, xcb_get_window_attributes(m_connection, m_window), nullptr));
        if (!attributes) {
            m_window = XCB_NONE;
        }
    }
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
    }
}

} // namespace zorel::bench
