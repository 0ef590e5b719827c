#pragma once

#include "platform/Environment.h"

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QString>

#include <chrono>

namespace zorel::updater {

/// The programs that unpack an update and start its installer.
struct ToolPaths
{
    QString ditto = QStringLiteral("/usr/bin/ditto");
    QString tar = QStringLiteral("/usr/bin/tar");
    QString hdiutil = QStringLiteral("/usr/bin/hdiutil");
    QString cp = QStringLiteral("/bin/cp");
    QString bash = QStringLiteral("/bin/bash");

    /// The programs of these names in `folder`, and the system's for those that it lacks.
    static ToolPaths preferring(const QString &folder);
};

struct InstallLimits
{
    std::chrono::milliseconds downloadInactivity{60'000}; ///< without a byte from the server
    std::chrono::milliseconds tool{600'000};              ///< for one run of a tool; then it is killed
    std::chrono::milliseconds detach{60'000};             ///< for letting go of a disk image
    std::chrono::milliseconds launcher{60'000};           ///< for starting the installer script
    qint64 unpackedBytes = qint64{16} << 30;              ///< what an update may grow to
    qint64 unpackedItems = 500'000;                       ///< files, folders and links
};

/// What an installation needs from outside.
struct InstallSurroundings
{
    QString cachesFolder;    ///< the user's; empty where the system has none
    QString temporaryFolder; ///< instead of the caches folder then, or where a script could not name that
    QString targetBundle;    ///< what is to be replaced: .../NAME.app; empty when there is no bundle
    qint64 processId = 0;    ///< whose end the installer waits for
    ToolPaths tools;
    platform::Environment environment; ///< of every tool
    QByteArray userAgent;              ///< as the download names itself
    /// Trusted beside the system's own, for staging hosts and tests.
    QList<QSslCertificate> trustedAuthorities;
    InstallLimits limits;

    /// This process and its bundle, on this system.
    static InstallSurroundings system();
};

/// `environment` without what would change how a shell or an archiver reads its arguments.
platform::Environment toolEnvironment(platform::Environment environment);

} // namespace zorel::updater
