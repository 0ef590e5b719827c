#include "updater/WorkingFolder.h"

#include "updater/FileTree.h"
#include "updater/InstallSurroundings.h"
#include "updater/InstallerScript.h"
#include "updater/UpdateError.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QUuid>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorel::updater {

namespace {

constexpr qint64 leftoverDays = 1;

[[noreturn]] void fail(const QString &path, int error)
{
    throw UpdateError(UpdateError::ExtractionFailed{
        QStringLiteral("the folder %1 could not be made: %2").arg(path, qt_error_string(error))});
}

void makePrivateFolder(const QString &path)
{
    if (::mkdir(QFile::encodeName(path).constData(), S_IRWXU) != 0) {
        fail(path, errno);
    }
}

/// A folder of ours and nobody else's, which matters where the temporary folder stands in for the caches.
void ensureOwnFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (::mkdir(name.constData(), S_IRWXU) != 0 && errno != EEXIST) {
        fail(path, errno);
    }
    struct stat entry = {};
    if (::lstat(name.constData(), &entry) != 0) {
        fail(path, errno);
    }
    if (!S_ISDIR(entry.st_mode) || entry.st_uid != ::geteuid() || (entry.st_mode & S_IWOTH) != 0) {
        fail(path, EPERM);
    }
}

platform::Descriptor locked(const QString &path)
{
    platform::Descriptor file(::open(QFile::encodeName(path).constData(),
                                     O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (!file.isOpen()) {
        fail(path, errno);
    }
    if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        throw UpdateError(UpdateError::RelaunchFailed{
            QStringLiteral("another copy of Talvex LLM Trainer is installing an update")});
    }
    return file;
}

/// An installer script uses its folder for some minutes after its application has ended.
void removeLeftovers(const QString &folder)
{
    const QDateTime limit = QDateTime::currentDateTimeUtc().addDays(-leftoverDays);
    const QFileInfoList entries =
        QDir(folder).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QFileInfo &entry : entries) {
        if (!QUuid::fromString(entry.fileName()).isNull() && entry.lastModified() < limit) {
            removeTree(entry.filePath());
        }
    }
}

} // namespace

WorkingFolder::WorkingFolder(const InstallSurroundings &surroundings)
{
    const bool isUsable =
        !surroundings.cachesFolder.isEmpty() && fitsAdministratorCommand(surroundings.cachesFolder);
    const QString caches = isUsable ? surroundings.cachesFolder : surroundings.temporaryFolder;
    if (!QDir().mkpath(caches)) {
        fail(caches, errno);
    }
    const QString own = caches + QLatin1String("/com.talvex.zorel");
    ensureOwnFolder(own);
    const QString parent = own + QLatin1String("/Updater");
    ensureOwnFolder(parent);
    m_lock = locked(parent + QLatin1String("/.lock"));
    removeLeftovers(parent);
    const QString path = parent + u'/' + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    makePrivateFolder(path);
    m_path = path;
    try {
        makePrivateFolder(staged());
    } catch (...) {
        removeTree(m_path);
        throw;
    }
}

WorkingFolder::~WorkingFolder()
{
    if (!m_isKept) {
        removeTree(m_path);
    }
}

} // namespace zorel::updater
