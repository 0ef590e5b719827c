#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zorel::library {

/// A regular file that is open for reading. Anything else, a FIFO, a device, a folder, is not even opened,
/// because opening alone may block or act. A link to a regular file is followed.
class RegularFile
{
public:
    /// `path` is taken from the folder that is open as `folder`, which may be AT_FDCWD.
    RegularFile(int folder, const char *path);
    ~RegularFile();
    RegularFile(const RegularFile &) = delete;
    RegularFile &operator=(const RegularFile &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    /// In bytes, when it was opened.
    std::uint64_t size() const { return m_size; }
    /// Reads until `capacity` bytes are read or the file ends; their number, or -1 when reading failed.
    std::ptrdiff_t read(char *target, std::size_t capacity);

    /// Whether there is a regular file, or a link to one.
    static bool exists(int folder, const char *path);

private:
    int m_descriptor = -1;
    std::uint64_t m_size = 0;
};

/// The content of one file after the other, with room behind it for a parser that reads ahead.
class FileContent
{
public:
    /// Reads at most `limit` bytes. False when there is no such regular file, when it is larger, and when
    /// reading fails.
    bool read(int folder, const char *path, std::size_t limit);

    std::string_view text() const { return {m_bytes.data(), m_size}; }
    /// Bytes that may be read from the start of text().
    std::size_t readable() const { return m_bytes.size(); }

private:
    std::string m_bytes;
    std::size_t m_size = 0;
};

} // namespace zorel::library
