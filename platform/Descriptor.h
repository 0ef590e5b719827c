#pragma once

#include <utility>

namespace zorel::platform {

/// Owns a file descriptor.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number)
        : m_number(number)
    {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor &&other) noexcept
        : m_number(other.release())
    {}
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        if (this != &other) {
            close();
            m_number = other.release();
        }
        return *this;
    }

    int number() const { return m_number; }
    bool isOpen() const { return m_number >= 0; }
    int release() { return std::exchange(m_number, -1); }
    void close();
    /// Reads and writes return at once instead of waiting.
    void setNonBlocking() const;

private:
    int m_number = -1;
};

struct Pipe
{
    Descriptor readEnd;
    Descriptor writeEnd;

    /// Both ends are close-on-exec and numbered 3 or higher, so that they never collide with a child's
    /// standard channels. Throws std::system_error when the process has run out of descriptors.
    static Pipe open();
};

} // namespace zorel::platform
