#include "platform/Descriptor.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace zorel::platform {

namespace {

Descriptor aboveStandardChannels(Descriptor descriptor)
{
    Descriptor moved(::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, 3));
    if (!moved.isOpen()) {
        throw std::system_error(errno, std::generic_category());
    }
    return moved;
}

} // namespace

void Descriptor::close()
{
    if (isOpen()) {
        ::close(release());
    }
}

void Descriptor::setNonBlocking() const
{
    ::fcntl(m_number, F_SETFL, ::fcntl(m_number, F_GETFL) | O_NONBLOCK);
}

Pipe Pipe::open()
{
    int numbers[2];
    if (::pipe(numbers) != 0) {
        throw std::system_error(errno, std::generic_category());
    }
    Descriptor readEnd(numbers[0]);
    Descriptor writeEnd(numbers[1]);
    return {aboveStandardChannels(std::move(readEnd)), aboveStandardChannels(std::move(writeEnd))};
}

} // namespace zorel::platform
