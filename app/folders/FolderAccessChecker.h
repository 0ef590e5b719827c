#pragma once

#include "app/folders/AccessProbe.h"
#include "app/folders/ConfiguredFolder.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>
#include <QUrl>

#include <array>
#include <functional>
#include <optional>

namespace zorel::app::folders {

/// Finds out by a real write whether each configured folder can be used, when it is asked to and never by
/// itself. Until then every folder counts as allowed. Main thread only; the probes block it.
class FolderAccessChecker : public QObject
{
    Q_OBJECT

public:
    struct Surroundings
    {
        /// Given an absolute path.
        std::function<bool(const QString &folder)> probe = probeAccess;
        std::function<QDateTime()> now = [] {
            return QDateTime::currentDateTime();
        };
        /// Hands an address to the system; whether that opened it.
        std::function<bool(const QUrl &url)> openUrl;
        /// Shows a folder (absolute) to the user. For systems without privacy settings to send them to; where
        /// there are some, this does nothing.
        std::function<void(const QString &folder)> showFolder = [](const QString &) {
        };
    };

    /// `settings` must outlive this object.
    FolderAccessChecker(const settings::ZorelSettings &settings, Surroundings surroundings);

    bool trainingDataAllowed() const { return isAllowed(ConfiguredFolder::trainingData); }
    bool finishedModelsAllowed() const { return isAllowed(ConfiguredFolder::finishedModels); }
    bool modelRootAllowed() const { return isAllowed(ConfiguredFolder::modelRoot); }
    /// Whether the last probe of `folder` succeeded.
    bool isAllowed(ConfiguredFolder folder) const { return m_allowed.at(static_cast<std::size_t>(folder)); }
    /// Time of the last probe of any folder; nothing before the first.
    const std::optional<QDateTime> &lastCheckedAt() const { return m_lastCheckedAt; }

    bool anyBlocked() const;
    /// Display names of the blocked folders, in display order.
    QStringList blockedFolderNames() const;
    /// Which folders are blocked and what to do about it.
    QString blockedMessage() const;

    /// Probes the three folders in display order.
    void refresh();
    /// Probes the one folder.
    void recheck(ConfiguredFolder folder);
    /// Sends the user to where the system grants access to folders. Where it has no such place, to the folder
    /// itself, whose properties say who may write into it: the first that is blocked.
    void openPrivacySettings() const;
    /// The same on behalf of one folder.
    void openPrivacySettings(ConfiguredFolder folder) const;

Q_SIGNALS:
    // A flag's signal follows every probe of its folder, also when the answer is the same again.
    void trainingDataAllowedChanged();
    void finishedModelsAllowedChanged();
    void modelRootAllowedChanged();
    void lastCheckedAtChanged();

private:
    void probe(ConfiguredFolder folder);
    void noteTime();

    const settings::ZorelSettings &m_settings;
    Surroundings m_surroundings;
    std::array<bool, allConfiguredFolders.size()> m_allowed{true, true, true};
    std::optional<QDateTime> m_lastCheckedAt;
};

} // namespace zorel::app::folders
