#pragma once

#include <QByteArray>
#include <QtEndian>

#include <cstdint>
#include <vector>

namespace zorel::tests {

/// Writes zip archives, also such as no honest program writes. Nothing is compressed.
class ZipBuilder
{
public:
    struct Entry
    {
        QByteArray name;
        QByteArray contents;
        std::uint32_t mode = 0100644;    ///< of a file; 0120777 of a link, 0100755 of a program
        QByteArray localName = {};       ///< what it is called in its place; as in the table when empty
        std::uint32_t announcedSize = 0; ///< in the table; the true one when 0
    };

    ZipBuilder &add(Entry entry)
    {
        m_entries.push_back(std::move(entry));
        return *this;
    }
    ZipBuilder &add(const QByteArray &name, const QByteArray &contents) { return add(Entry{name, contents}); }
    ZipBuilder &addLink(const QByteArray &name, const QByteArray &target)
    {
        return add(Entry{name, target, 0120777});
    }

    QByteArray bytes(const QByteArray &comment = {}) const
    {
        QByteArray archive;
        QByteArray table;
        for (const Entry &entry : m_entries) {
            const auto position = static_cast<std::uint32_t>(archive.size());
            const QByteArray localName = entry.localName.isEmpty() ? entry.name : entry.localName;
            archive += number<std::uint32_t>(0x04034b50) + common(entry, size(entry.contents)) +
                       lengths(localName) + localName + entry.contents;
            table += number<std::uint32_t>(0x02014b50) + number<std::uint16_t>(0x031e) +
                     common(entry, entry.announcedSize != 0 ? entry.announcedSize : size(entry.contents)) +
                     lengths(entry.name) + number<std::uint16_t>(0) + number<std::uint16_t>(0) +
                     number<std::uint16_t>(0) + number<std::uint32_t>(entry.mode << 16) +
                     number<std::uint32_t>(position) + entry.name;
        }
        const auto count = static_cast<std::uint16_t>(m_entries.size());
        return archive + table + number<std::uint32_t>(0x06054b50) + number<std::uint32_t>(0) +
               number<std::uint16_t>(count) + number<std::uint16_t>(count) +
               number<std::uint32_t>(size(table)) + number<std::uint32_t>(size(archive)) +
               number<std::uint16_t>(static_cast<std::uint16_t>(comment.size())) + comment;
    }

private:
    template <class Number>
    static QByteArray number(Number value)
    {
        QByteArray bytes(sizeof(Number), '\0');
        qToLittleEndian(value, bytes.data());
        return bytes;
    }

    static std::uint32_t size(const QByteArray &bytes) { return static_cast<std::uint32_t>(bytes.size()); }

    static QByteArray common(const Entry &entry, std::uint32_t unpackedSize)
    {
        return number<std::uint16_t>(10) + number<std::uint16_t>(0) + number<std::uint16_t>(0) +
               number<std::uint32_t>(0x21 << 16) + number<std::uint32_t>(checksum(entry.contents)) +
               number<std::uint32_t>(size(entry.contents)) + number<std::uint32_t>(unpackedSize);
    }

    static QByteArray lengths(const QByteArray &name)
    {
        return number<std::uint16_t>(static_cast<std::uint16_t>(name.size())) + number<std::uint16_t>(0);
    }

    static std::uint32_t checksum(const QByteArray &bytes)
    {
        std::uint32_t rest = 0xffffffff;
        for (const char byte : bytes) {
            rest ^= static_cast<unsigned char>(byte);
            for (int bit = 0; bit < 8; ++bit) {
                rest = (rest >> 1) ^ ((rest & 1) != 0 ? 0xedb88320 : 0);
            }
        }
        return ~rest;
    }

    std::vector<Entry> m_entries;
};

} // namespace zorel::tests
