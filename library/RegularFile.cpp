#include "library/RegularFile.h"

#include "backend/protocol/EventDecoder.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::library {

namespace {

constexpr std::size_t padding = backend::protocol::EventDecoder::padding;

bool isRegular(int folder, const char *path, struct stat &status)
{
    return ::fstatat(folder, path, &status, 0) == 0 && S_ISREG(status.st_mode);
}

int openToRead(int folder, const char *path)
{
    int descriptor = -1;
    do {
        // Not blocking, should a FIFO have taken the file's place just now.
        descriptor = ::openat(folder, path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

} // namespace

RegularFile::RegularFile(int folder, const char *path)
{
    struct stat status
    {};
    if (isRegular(folder, path, status)) {
        m_size = static_cast<std::uint64_t>(status.st_size);
        m_descriptor = openToRead(folder, path);
    }
}

RegularFile::~RegularFile()
{
    if (isOpen()) {
        ::close(m_descriptor);
    }
}

std::ptrdiff_t RegularFile::read(char *target, std::size_t capacity)
{
    std::size_t total = 0;
    while (total < capacity) {
        const ssize_t count = ::read(m_descriptor, target + total, capacity - total);
        if (count == 0) {
            break;
        }
        if (count > 0) {
            total += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            return -1;
        }
    }
    return static_cast<std::ptrdiff_t>(total);
}

bool RegularFile::exists(int folder, const char *path)
{
    struct stat status
    {};
    return isRegular(folder, path, status);
}

bool FileContent::read(int folder, const char *path, std::size_t limit)
{
    m_size = 0;
    RegularFile file(folder, path);
    if (!file.isOpen() || file.size() > limit) {
        return false;
    }
    const auto size = static_cast<std::size_t>(file.size());
    if (m_bytes.size() < size + padding) {
        m_bytes.resize(size + padding);
    }
    const std::ptrdiff_t count = file.read(m_bytes.data(), size);
    if (count < 0) {
        return false;
    }
    m_size = static_cast<std::size_t>(count);
    // What is left of a longer file must not look like a part of this one.
    m_bytes[m_size] = '\n';
    return true;
}

} // namespace zorel::library
