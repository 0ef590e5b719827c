#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

namespace zorel::tests {

/// A private temporary folder without a symbolic link in its path.
class Folder
{
public:
    QString path() const { return QFileInfo(m_folder.path()).canonicalFilePath(); }
    QString operator/(const QString &name) const { return path() + u'/' + name; }
    QString operator/(const char *name) const { return path() + u'/' + QString::fromUtf8(name); }

private:
    QTemporaryDir m_folder;
};

/// Writes a file and the folders above it.
inline void writeFile(const QString &path, const QByteArray &contents)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QFile::WriteOnly) || file.write(contents) != contents.size()) {
        qFatal("%s cannot be written", qUtf8Printable(path));
    }
}

inline void writeExecutable(const QString &path, const QByteArray &contents)
{
    writeFile(path, contents);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

inline QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

inline void makeLink(const QString &path, const QByteArray &target)
{
    QDir().mkpath(QFileInfo(path).path());
    if (::symlink(target.constData(), QFile::encodeName(path).constData()) != 0) {
        qFatal("%s cannot be linked", qUtf8Printable(path));
    }
}

inline QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

/// Runs a program to its end; fails the whole test when it does not end well.
inline QByteArray runProgram(const QString &program, const QStringList &arguments,
                             const QString &folder = QStringLiteral("/"))
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForFinished(60'000) || process.exitCode() != 0) {
        qFatal("%s failed: %s", qUtf8Printable(program), process.readAll().constData());
    }
    return process.readAll();
}

/// Whether `action` succeeds for a user without special rights who owns all of `folder`: this one, or nobody
/// where the tests run as root.
inline bool succeedsWithoutRights(const QString &folder, const std::function<bool()> &action)
{
    if (::geteuid() != 0) {
        return action();
    }
    constexpr uid_t nobody = 65534;
    runProgram(QStringLiteral("chown"), {QStringLiteral("-hR"), QString::number(nobody), folder});
    const pid_t child = ::fork();
    if (child == 0) {
        // Leaves without the leak checker, which does not work in a process that has given up its rights.
        std::_Exit(::setgid(nobody) == 0 && ::setuid(nobody) == 0 && action() ? 0 : 1);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace zorel::tests
