#pragma once

#include "platform/Descriptor.h"

#include <QString>

namespace zorel::updater {

struct InstallSurroundings;

/// The private folder of one installation, CACHES/com.talvex.zorel/Updater/UUID, removed with all it holds
/// unless it is kept. While one exists, no other process of the same user makes one.
class WorkingFolder
{
public:
    /// Also removes what installations of earlier days left behind. Throws UpdateError (`extractionFailed`
    /// when it cannot be made, `relaunchFailed` when another installation is under way).
    explicit WorkingFolder(const InstallSurroundings &surroundings);
    ~WorkingFolder();
    Q_DISABLE_COPY_MOVE(WorkingFolder)

    const QString &path() const { return m_path; }
    /// For the unpacked contents.
    QString staged() const { return m_path + QLatin1String("/staged"); }

    /// Leaves the folder behind, for the installer script, and keeps others away until this process ends.
    void keep()
    {
        m_isKept = true;
        m_lock.release();
    }

private:
    platform::Descriptor m_lock;
    QString m_path;
    bool m_isKept = false;
};

} // namespace zorel::updater
