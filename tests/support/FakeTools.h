#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace zorel::tests {

/// A folder of shell scripts that stand in for the system's programs; the only ones on the search path while
/// this exists.
class FakeTools
{
public:
    FakeTools()
        : m_formerPath(qgetenv("PATH"))
    {
        qputenv("PATH", QFile::encodeName(m_folder.path()));
    }
    ~FakeTools() { qputenv("PATH", m_formerPath); }
    Q_DISABLE_COPY_MOVE(FakeTools)

    QString pathOf(const QString &name) const { return m_folder.filePath(name); }

    /// `commands` are run by the system's shell, in which $HERE is the folder.
    void add(const QString &name, const QByteArray &commands)
    {
        QFile script(pathOf(name));
        if (!script.open(QFile::WriteOnly)) {
            qFatal("The tool cannot be made.");
        }
        script.write("#!/bin/sh\nHERE='" + QFile::encodeName(m_folder.path()) + "'\n" + commands + "\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    /// What a tool has written there; null when there is no such file.
    QByteArray written(const QString &name) const
    {
        QFile file(pathOf(name));
        return file.open(QFile::ReadOnly) ? file.readAll().append("") : QByteArray();
    }

private:
    QTemporaryDir m_folder;
    QByteArray m_formerPath;
};

} // namespace zorel::tests
