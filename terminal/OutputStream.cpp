#include "terminal/OutputStream.h"

#include <QtGlobal>

#include <cerrno>

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zorel::terminal {

OutputStream::OutputStream(int descriptor)
    : m_descriptor(descriptor)
{}

void OutputStream::write(const QByteArray &bytes)
{
    qsizetype written = 0;
    while (!isClosed() && written < bytes.size()) {
        const ssize_t count = ::write(m_descriptor, bytes.constData() + written,
                                      static_cast<std::size_t>(bytes.size() - written));
        if (count >= 0) {
            written += count;
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            // Somebody else who shares the descriptor has made it non-blocking.
            pollfd waiting{m_descriptor, POLLOUT, 0};
            ::poll(&waiting, 1, -1);
        } else if (errno != EINTR) {
            m_error = errno;
        }
    }
}

std::optional<QString> OutputStream::failure() const
{
    return isClosed() && m_error != EPIPE ? std::optional(qt_error_string(m_error)) : std::nullopt;
}

bool OutputStream::isTerminal() const
{
    return ::isatty(m_descriptor) == 1;
}

int OutputStream::columns() const
{
    winsize size{};
    if (::ioctl(m_descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    const int columns = qEnvironmentVariableIntValue("COLUMNS");
    return columns > 0 ? columns : 80;
}

} // namespace zorel::terminal
