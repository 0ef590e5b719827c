#include "platform/StandardFolders.h"

#include <QDir>
#include <QFile>

#include <string>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace zorel::platform {

namespace {

constexpr std::size_t enoughForAnyEntry = 65'536;

/// Empty when the system knows no user of that name.
QString homeOfUser(const QString &name)
{
    std::vector<char> memory(enoughForAnyEntry);
    passwd entry = {};
    passwd *found = nullptr;
    const std::string user = name.toStdString();
    // A name with a NUL in it would be looked up as a shorter one.
    if (user.find('\0') != std::string::npos ||
        ::getpwnam_r(user.c_str(), &entry, memory.data(), memory.size(), &found) != 0 || found == nullptr) {
        return QString();
    }
    return QFile::decodeName(found->pw_dir);
}

/// The root folder, as Qt has it, for a user whom the system does not know.
QString homeOfThisUser()
{
    if (!qEnvironmentVariableIsEmpty("HOME")) {
        return QDir::homePath();
    }
    std::vector<char> memory(enoughForAnyEntry);
    passwd entry = {};
    passwd *found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, memory.data(), memory.size(), &found) != 0 || found == nullptr) {
        return QDir::homePath();
    }
    return QDir::cleanPath(QFile::decodeName(found->pw_dir));
}

} // namespace

StandardFolders StandardFolders::below(const QString &home)
{
    const QString root = home == QLatin1String("/") ? QString() : home;
    return {home, root + QLatin1String("/Documents"), root + QLatin1String("/Library/Application Support"),
            root + QLatin1String("/Library/Caches")};
}

StandardFolders StandardFolders::current()
{
    return below(homeOfThisUser());
}

QString expandTilde(const QString &path, const QString &home)
{
    if (!path.startsWith(u'~')) {
        return path;
    }
    const qsizetype slash = path.indexOf(u'/');
    const QString name = path.mid(1, slash < 0 ? -1 : slash - 1);
    const QString rest = slash < 0 ? QString() : path.mid(slash);
    const QString start = name.isEmpty() ? home : homeOfUser(name);
    if (start.isEmpty()) {
        return path;
    }
    return start == QLatin1String("/") && !rest.isEmpty() ? rest : start + rest;
}

} // namespace zorel::platform
