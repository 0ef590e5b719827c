#pragma once

#include <QString>

namespace zorel::updater {

/// The shell script that waits for the application to end, swaps the bundles and starts the new one. It
/// outlives the application, so it is written out whole beforehand and reads nothing of it.
struct InstallerScript
{
    qint64 processId = 0;
    QString newApp;    ///< the unpacked bundle
    QString targetApp; ///< the installed bundle
    QString logFile;
    QString sentinel;

    QString text() const;
};

/// `path` as one word of a shell, whatever it holds: in single quotes, each quote inside as '\''.
QString shellQuoted(QString path);

/// Whether the script's prompt for administrator rights can carry `path`: its command stands in quotes inside
/// quotes, so that a path with a quote, a backslash or a control character would end them.
bool fitsAdministratorCommand(const QString &path);

} // namespace zorel::updater
