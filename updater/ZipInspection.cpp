#include "updater/ZipInspection.h"

#include "updater/InstallSurroundings.h"
#include "updater/UpdateError.h"

#include <QFile>
#include <QSet>
#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zorel::updater {

namespace {

constexpr quint32 endSignature = 0x06054b50;
constexpr quint32 wideEndSignature = 0x06064b50;
constexpr quint32 wideLocatorSignature = 0x07064b50;
constexpr quint32 entrySignature = 0x02014b50;
constexpr quint32 localSignature = 0x04034b50;
constexpr qint64 endSize = 22;
constexpr qint64 wideLocatorSize = 20;
constexpr qint64 wideEndSize = 56;
constexpr qint64 entrySize = 46;
constexpr qint64 localSize = 30;
constexpr qint64 longestComment = 65'535;
constexpr qint64 largestTable = qint64{256} << 20;
constexpr quint32 seeWideField = 0xffffffff;

[[noreturn]] void refuse(const QString &reason)
{
    throw UpdateError(UpdateError::ExtractionFailed{reason});
}

[[noreturn]] void refuseDamaged()
{
    refuse(QStringLiteral("the archive is damaged"));
}

/// Little-endian numbers and texts out of some bytes; what lies outside of them makes the archive damaged.
class Bytes
{
public:
    explicit Bytes(std::string bytes)
        : m_bytes(std::move(bytes))
    {}

    qint64 size() const { return std::ssize(m_bytes); }
    QByteArray text(qint64 at, qint64 length) const
    {
        require(at, length);
        return {m_bytes.data() + at, length};
    }
    template <class Number>
    Number number(qint64 at) const
    {
        require(at, sizeof(Number));
        return qFromLittleEndian<Number>(m_bytes.data() + at);
    }
    /// Of 64 bits, none of which may be the sign of a position or a size.
    qint64 position(qint64 at) const
    {
        const auto value = number<quint64>(at);
        if (value > static_cast<quint64>(std::numeric_limits<qint64>::max() / 2)) {
            refuseDamaged();
        }
        return static_cast<qint64>(value);
    }

private:
    void require(qint64 at, qint64 length) const
    {
        if (at < 0 || length < 0 || at > size() || length > size() - at) {
            refuseDamaged();
        }
    }

    /// No QByteArray: of an empty one GCC fears in release builds that `require` lets a read go beyond its
    /// end.
    std::string m_bytes;
};

struct Entry
{
    QByteArray name;
    qint64 unpackedSize = 0;
    qint64 localHeader = 0;
    bool isLink = false;
};

struct TableOfContents
{
    qint64 at = 0;
    qint64 size = 0;
};

class ZipFile
{
public:
    explicit ZipFile(const QString &path)
        : m_file(path)
    {
        if (!m_file.open(QFile::ReadOnly)) {
            refuse(QStringLiteral("the downloaded file could not be read: ") + m_file.errorString());
        }
    }

    std::vector<Entry> entries();
    QByteArray localNameOf(const Entry &entry);

private:
    Bytes read(qint64 at, qint64 size);
    TableOfContents findTable();
    TableOfContents wideTable(qint64 locatorAt);

    QFile m_file;
};

Bytes ZipFile::read(qint64 at, qint64 size)
{
    if (at < 0 || size < 0 || size > m_file.size() || !m_file.seek(at)) {
        refuseDamaged();
    }
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (m_file.read(bytes.data(), size) != size) {
        refuseDamaged();
    }
    return Bytes(std::move(bytes));
}

/// The record at the end of the file; a comment of any content may follow it, up to the very end.
TableOfContents ZipFile::findTable()
{
    const qint64 tailSize = std::min(m_file.size(), endSize + longestComment);
    const qint64 tailAt = m_file.size() - tailSize;
    const Bytes tail = read(tailAt, tailSize);
    for (qint64 at = tailSize - endSize; at >= 0; --at) {
        if (tail.number<quint32>(at) != endSignature ||
            at + endSize + tail.number<quint16>(at + 20) != tailSize) {
            continue;
        }
        const auto size = tail.number<quint32>(at + 12);
        const auto offset = tail.number<quint32>(at + 16);
        if (size == seeWideField || offset == seeWideField || tail.number<quint16>(at + 10) == 0xffff) {
            return wideTable(tailAt + at - wideLocatorSize);
        }
        return {offset, size};
    }
    refuseDamaged();
}

TableOfContents ZipFile::wideTable(qint64 locatorAt)
{
    const Bytes locator = read(locatorAt, wideLocatorSize);
    if (locator.number<quint32>(0) != wideLocatorSignature) {
        refuseDamaged();
    }
    const Bytes end = read(locator.position(8), wideEndSize);
    if (end.number<quint32>(0) != wideEndSignature) {
        refuseDamaged();
    }
    return {end.position(48), end.position(40)};
}

/// Replaces the sizes and the position that do not fit into 32 bits by those of the entry's extra field.
void applyWideFields(Entry &entry, const Bytes &extra, bool isPackedSizeWide)
{
    constexpr quint16 wideField = 1;
    for (qint64 at = 0; at + 4 <= extra.size();) {
        const auto size = extra.number<quint16>(at + 2);
        if (extra.number<quint16>(at) == wideField) {
            qint64 value = at + 4;
            if (entry.unpackedSize == seeWideField) {
                entry.unpackedSize = extra.position(value);
                value += 8;
            }
            value += isPackedSizeWide ? 8 : 0;
            if (entry.localHeader == seeWideField) {
                entry.localHeader = extra.position(value);
            }
            return;
        }
        at += 4 + size;
    }
}

std::vector<Entry> ZipFile::entries()
{
    const TableOfContents place = findTable();
    if (place.size > largestTable) {
        refuseDamaged();
    }
    const Bytes table = read(place.at, place.size);
    std::vector<Entry> entries;
    for (qint64 at = 0; at < table.size();) {
        if (table.number<quint32>(at) != entrySignature) {
            refuseDamaged();
        }
        constexpr quint32 fileTypeMask = 0170000;
        constexpr quint32 linkType = 0120000;
        const auto nameSize = table.number<quint16>(at + 28);
        const auto extraSize = table.number<quint16>(at + 30);
        Entry entry;
        entry.unpackedSize = table.number<quint32>(at + 24);
        entry.localHeader = table.number<quint32>(at + 42);
        entry.name = table.text(at + entrySize, nameSize);
        entry.isLink = ((table.number<quint32>(at + 38) >> 16) & fileTypeMask) == linkType;
        applyWideFields(entry, Bytes(table.text(at + entrySize + nameSize, extraSize).toStdString()),
                        table.number<quint32>(at + 20) == seeWideField);
        entries.push_back(std::move(entry));
        at += entrySize + nameSize + extraSize + table.number<quint16>(at + 32);
    }
    return entries;
}

QByteArray ZipFile::localNameOf(const Entry &entry)
{
    const Bytes header = read(entry.localHeader, localSize);
    if (header.number<quint32>(0) != localSignature) {
        refuseDamaged();
    }
    return read(entry.localHeader + localSize, header.number<quint16>(26))
        .text(0, header.number<quint16>(26));
}

bool staysInside(const QByteArray &name)
{
    return !name.isEmpty() && !name.startsWith('/') && !name.contains('\0') &&
           !name.split('/').contains("..");
}

/// The steps of a path, in a form in which file systems that overlook case or accents see equal ones.
QStringList stepsOf(const QByteArray &name)
{
    QStringList steps = QString::fromUtf8(name)
                            .normalized(QString::NormalizationForm_C)
                            .toCaseFolded()
                            .split(u'/', Qt::SkipEmptyParts);
    steps.removeAll(QStringLiteral("."));
    return steps;
}

bool isBelowLink(const QByteArray &name, const QSet<QStringList> &links)
{
    QStringList folder = stepsOf(name);
    while (!folder.isEmpty()) {
        folder.removeLast();
        if (links.contains(folder)) {
            return true;
        }
    }
    return false;
}

} // namespace

void requireSafeZip(const QString &path, const InstallLimits &limits)
{
    ZipFile zip(path);
    const std::vector<Entry> entries = zip.entries();
    QSet<QStringList> links;
    qint64 unpackedSize = 0;
    for (const Entry &entry : entries) {
        unpackedSize += std::min(entry.unpackedSize, limits.unpackedBytes + 1);
        if (entry.isLink) {
            links.insert(stepsOf(entry.name));
        }
    }
    if (unpackedSize > limits.unpackedBytes ||
        entries.size() > static_cast<std::size_t>(limits.unpackedItems)) {
        refuse(QStringLiteral("it unpacks to more than %1 bytes or %2 files")
                   .arg(limits.unpackedBytes)
                   .arg(limits.unpackedItems));
    }
    for (const Entry &entry : entries) {
        if (!staysInside(entry.name) || isBelowLink(entry.name, links) ||
            zip.localNameOf(entry) != entry.name) {
            refuse(QStringLiteral("a file in it has an unsafe name: %1").arg(QString::fromUtf8(entry.name)));
        }
    }
}

} // namespace zorel::updater
