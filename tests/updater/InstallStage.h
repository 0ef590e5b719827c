#pragma once

#include "tests/updater/Files.h"
#include "updater/InstallSurroundings.h"

#include <QMap>

namespace zorel::tests {

/// Where installations are tried out: an installed bundle, a new one, folders of their own, and stand-ins for
/// the tools that only a Mac has. Nothing outside of the stage is touched.
class InstallStage
{
    Folder m_folder;
    QString m_installed;
    QString m_tools;

public:
    /// The folder of the stand-ins.
    QString tools() const { return m_tools; }
    /// Brings them onto the stage, for a user who cannot get at the checkout.
    void takeToolsAlong();

    explicit InstallStage(
        const QString &installedName = QStringLiteral("Applications/Talvex LLM Trainer.app"));
    Q_DISABLE_COPY_MOVE(InstallStage)

    QString operator/(const QString &name) const { return m_folder / name; }
    QString operator/(const char *name) const { return m_folder / name; }
    QString installed() const { return m_installed; }
    QString updaterFolder() const { return m_folder / "Caches/com.talvex.zorel/Updater"; }
    /// The folders of installations, without their lock.
    QStringList workingFolders() const;

    /// Writes a bundle of some files and links.
    static void makeBundle(const QString &path, const QByteArray &version);
    /// The version of the bundle at `path` when it is whole, with nothing added but a signature; otherwise
    /// what is wrong with it.
    static QByteArray versionAt(const QString &path);

    /// An archive of `folder`, which holds the bundle, made by the tool for the extension ("zip", "dmg",
    /// "tar", "gz", "tbz", "bz2").
    QByteArray archive(const QString &folder, const QString &extension) const;
    /// The same of a new bundle of version 2.
    QByteArray newArchive(const QString &extension);

    /// With the stand-ins, and this stage's bundle and folders. Waits for the end of a process that has
    /// ended.
    updater::InstallSurroundings surroundings() const;

    /// For the stand-ins.
    QMap<QByteArray, QByteArray> environment;
    /// Every call of a stand-in: its name and its arguments, each ended by "|".
    QByteArrayList calls() const;
    QByteArrayList callsOf(const QByteArray &tool) const;
    bool hasAttachedImage() const;
};

/// The number of a process that has ended.
qint64 endedProcess();

} // namespace zorel::tests
