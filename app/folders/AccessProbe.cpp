#include "app/folders/AccessProbe.h"

#include <QDir>
#include <QFile>

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace zorel::app::folders {

namespace {

bool writeContents(int descriptor)
{
    constexpr char contents[] = {'o', 'k'};
    const bool written = ::write(descriptor, contents, sizeof contents) == ssize_t{sizeof contents};
    // Some network folders tell only here that there is no space.
    return ::close(descriptor) == 0 && written;
}

/// Under a name of its own first, so that two instances do not disturb each other and a link in the file's
/// place is replaced, not followed.
bool writeAtomically(const QByteArray &path)
{
    QByteArray unfinished = path + ".XXXXXX";
    const int descriptor = ::mkostemp(unfinished.data(), O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    if (writeContents(descriptor) && std::rename(unfinished.constData(), path.constData()) == 0) {
        return true;
    }
    ::unlink(unfinished.constData());
    return false;
}

} // namespace

bool probeAccess(const QString &folder)
{
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        return false;
    }
    const QByteArray probe = QFile::encodeName(folder + QLatin1String("/.talvex-access-probe"));
    if (!writeAtomically(probe)) {
        return false;
    }
    ::unlink(probe.constData());
    return true;
}

} // namespace zorel::app::folders
