#pragma once

#include "updater/FileDigest.h"

#include <QString>

namespace zorel::updater {

class Cancellation;
struct InstallSurroundings;

/// Unpacks one downloaded archive with the tool for its kind.
class Unpacker
{
public:
    /// `workingFolder` takes the mount point of a disk image. Everything handed in outlives the unpacker.
    Unpacker(QString workingFolder, const InstallSurroundings &surroundings,
             const Cancellation &cancellation);

    /// Puts the contents of `archive` into the existing, empty folder `staged`. The archive must still have
    /// this digest, and keep it until it is unpacked. Throws UpdateError.
    void unpack(const QString &archive, const QString &sha256, const QString &staged) const;

private:
    void run(const QString &archive, const QString &staged) const;
    void copyFromDiskImage(const QString &image, const QString &staged) const;
    void copyBundle(const QString &mountPoint, const QString &staged) const;
    void unpackWith(const QString &tool, const QStringList &arguments, const QString &staged) const;

    QString m_workingFolder;
    const InstallSurroundings &m_surroundings;
    const Cancellation &m_cancellation;
};

} // namespace zorel::updater
