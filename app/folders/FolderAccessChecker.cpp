#include "app/folders/FolderAccessChecker.h"

#include "app/folders/PrivacySettings.h"
#include "app/settings/ZorelSettings.h"

#include <algorithm>
#include <utility>

namespace zorel::app::folders {

namespace {

/// The names as one reads them out, with a comma before the "and" of three.
QString listed(const QStringList &names)
{
    switch (names.size()) {
    case 0:
        return QStringLiteral("your library folders");
    case 1:
        return names.first();
    case 2:
        return names.join(QLatin1String(" and "));
    default:
        return names.mid(0, names.size() - 1).join(QLatin1String(", ")) + QLatin1String(", and ") +
               names.last();
    }
}

} // namespace

FolderAccessChecker::FolderAccessChecker(const settings::ZorelSettings &settings, Surroundings surroundings)
    : m_settings(settings)
    , m_surroundings(std::move(surroundings))
{}

bool FolderAccessChecker::anyBlocked() const
{
    return !std::ranges::all_of(m_allowed, std::identity());
}

QStringList FolderAccessChecker::blockedFolderNames() const
{
    QStringList names;
    for (const ConfiguredFolder folder : allConfiguredFolders) {
        if (!isAllowed(folder)) {
            names.append(displayName(folder));
        }
    }
    return names;
}

QString FolderAccessChecker::blockedMessage() const
{
    return QStringLiteral("Access to ") + listed(blockedFolderNames()) +
           QStringLiteral(" is blocked. Allow it in System Settings → Privacy & Security → Files & Folders, "
                          "then come back and press refresh.");
}

void FolderAccessChecker::refresh()
{
    for (const ConfiguredFolder folder : allConfiguredFolders) {
        probe(folder);
    }
    noteTime();
}

void FolderAccessChecker::recheck(ConfiguredFolder folder)
{
    probe(folder);
    noteTime();
}

void FolderAccessChecker::openPrivacySettings() const
{
    const auto *const blocked = std::ranges::find_if(
        allConfiguredFolders, [this](ConfiguredFolder folder) { return !isAllowed(folder); });
    openPrivacySettings(blocked != allConfiguredFolders.end() ? *blocked : allConfiguredFolders.front());
}

void FolderAccessChecker::openPrivacySettings(ConfiguredFolder folder) const
{
    if (!folders::openPrivacySettings(m_surroundings.openUrl)) {
        m_surroundings.showFolder(m_settings.expanded(path(m_settings, folder)));
    }
}

void FolderAccessChecker::probe(ConfiguredFolder folder)
{
    static constexpr std::array signalOf{&FolderAccessChecker::trainingDataAllowedChanged,
                                         &FolderAccessChecker::finishedModelsAllowedChanged,
                                         &FolderAccessChecker::modelRootAllowedChanged};
    const auto index = static_cast<std::size_t>(folder);
    m_allowed.at(index) = m_surroundings.probe(m_settings.expanded(path(m_settings, folder)));
    Q_EMIT(this->*signalOf.at(index))();
}

void FolderAccessChecker::noteTime()
{
    m_lastCheckedAt = m_surroundings.now();
    Q_EMIT lastCheckedAtChanged();
}

} // namespace zorel::app::folders
