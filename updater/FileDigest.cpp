#include "updater/FileDigest.h"

#include "platform/Descriptor.h"
#include "platform/Sha256.h"
#include "updater/Cancellation.h"
#include "updater/UpdateError.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::updater {

namespace {

constexpr qsizetype chunkSize = 1'048'576;

[[noreturn]] void failReading(const QString &reason)
{
    throw UpdateError(
        UpdateError::ExtractionFailed{QStringLiteral("the downloaded file could not be read: ") + reason});
}

platform::Descriptor opened(const QString &path, const FileIdentity &expected)
{
    platform::Descriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    struct stat entry = {};
    if (!file.isOpen() || ::fstat(file.number(), &entry) != 0) {
        failReading(qt_error_string(errno));
    }
    if (entry.st_dev != expected.device || entry.st_ino != expected.node) {
        failReading(QStringLiteral("it was replaced"));
    }
    return file;
}

QString hexadecimalDigestOf(const platform::Descriptor &file, const Cancellation &cancellation)
{
    platform::Sha256 digest;
    QByteArray chunk(chunkSize, Qt::Uninitialized);
    for (;;) {
        cancellation.throwIfCancelled();
        const ssize_t count = ::read(file.number(), chunk.data(), static_cast<std::size_t>(chunk.size()));
        if (count == 0) {
            return QString::fromLatin1(digest.result().toHex());
        }
        if (count > 0) {
            digest.add(QByteArrayView(chunk.constData(), count));
        } else if (errno != EINTR) {
            failReading(qt_error_string(errno));
        }
    }
}

} // namespace

FileIdentity FileIdentity::of(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat entry = {};
    if (::lstat(name.constData(), &entry) != 0) {
        failReading(qt_error_string(errno));
    }
    if (!S_ISREG(entry.st_mode)) {
        failReading(QStringLiteral("it is no regular file"));
    }
    std::error_code error;
    const auto changed = std::filesystem::last_write_time(name.constData(), error);
    if (error) {
        failReading(QString::fromStdString(error.message()));
    }
    return {static_cast<quint64>(entry.st_dev), entry.st_ino, entry.st_size, changed};
}

FileDigest digestOf(const QString &path, const Cancellation &cancellation)
{
    const FileIdentity identity = FileIdentity::of(path);
    const QString hexadecimal = hexadecimalDigestOf(opened(path, identity), cancellation);
    if (FileIdentity::of(path) != identity) {
        failReading(QStringLiteral("it changed meanwhile"));
    }
    return {hexadecimal, identity};
}

} // namespace zorel::updater
