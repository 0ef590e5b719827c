#include "platform/AtomicFile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::platform {

namespace {

/// The file itself where `path` is a symbolic link, so that the link survives the replacement.
QByteArray resolved(const QString &path)
{
    const QFileInfo file(path);
    const QString canonical = file.canonicalFilePath();
    if (!canonical.isEmpty()) {
        return QFile::encodeName(canonical);
    }
    return QFile::encodeName(file.isSymLink() ? file.symLinkTarget() : path);
}

bool writeAll(int descriptor, const QByteArray &contents)
{
    const char *position = contents.constData();
    const char *const end = position + contents.size();
    while (position != end) {
        const ssize_t written = ::write(descriptor, position, static_cast<std::size_t>(end - position));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        position += written;
    }
    return true;
}

bool writeWhole(const QByteArray &path, const QByteArray &contents, mode_t permissions)
{
    // A leftover of a killed process is overwritten; a link somebody put there is not followed.
    const int descriptor =
        ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (descriptor < 0) {
        return false;
    }
    bool whole = ::fchmod(descriptor, permissions) == 0;
    whole = whole && writeAll(descriptor, contents);
    // A delayed allocation may run out of space only here.
    whole = whole && ::fsync(descriptor) == 0;
    return ::close(descriptor) == 0 && whole;
}

void syncFolderOf(const QByteArray &path)
{
    const QByteArray folder = path.left(path.lastIndexOf('/') + 1);
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

} // namespace

bool replaceFile(const QString &path, const QByteArray &contents)
{
    const QByteArray target = resolved(path);
    mode_t permissions = S_IRUSR | S_IWUSR;
    struct stat existing = {};
    if (::stat(target.constData(), &existing) == 0) {
        if (!S_ISREG(existing.st_mode) || ::access(target.constData(), W_OK) != 0) {
            return false;
        }
        permissions = existing.st_mode & 0777;
    }
    const QByteArray replacement = target + ".new";
    if (!writeWhole(replacement, contents, permissions) ||
        ::rename(replacement.constData(), target.constData()) != 0) {
        ::unlink(replacement.constData());
        return false;
    }
    syncFolderOf(target);
    return true;
}

bool keepAside(const QString &path)
{
    constexpr int mostNames = 10'000;
    const QByteArray target = resolved(path);
    struct stat original = {};
    if (::lstat(target.constData(), &original) != 0) {
        return false;
    }
    for (int number = 1; number <= mostNames; ++number) {
        const QByteArray aside = target + ".damaged" + (number == 1 ? "" : "-" + QByteArray::number(number));
        if (::link(target.constData(), aside.constData()) == 0) {
            return true;
        }
        struct stat taken = {};
        if (errno == EEXIST) {
            if (::lstat(aside.constData(), &taken) == 0 && taken.st_ino == original.st_ino &&
                taken.st_dev == original.st_dev) {
                return true;
            }
            continue;
        }
        // Some file systems have no hard links.
        return ::lstat(aside.constData(), &taken) != 0 &&
               ::rename(target.constData(), aside.constData()) == 0;
    }
    return false;
}

} // namespace zorel::platform
