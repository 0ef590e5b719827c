#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace zorel::app::settings {
class ZorelSettings;
}

namespace zorel::app::folders {

/// The folders whose places the user can choose.
enum class ConfiguredFolder : std::uint8_t { trainingData, finishedModels, modelRoot };

/// In display order.
inline constexpr std::array allConfiguredFolders{
    ConfiguredFolder::trainingData, ConfiguredFolder::finishedModels, ConfiguredFolder::modelRoot};

/// What the window calls the folder; the finished models' folder on disk is spelt otherwise.
QString displayName(ConfiguredFolder folder);
/// Name of the symbol shown beside the display name.
QString symbolName(ConfiguredFolder folder);
/// What the folder is for, in one or two sentences.
QString helpText(ConfiguredFolder folder);

/// The stored path, which may begin with "~".
const QString &path(const settings::ZorelSettings &settings, ConfiguredFolder folder);
/// Persists `path` as it stands.
void setPath(settings::ZorelSettings &settings, ConfiguredFolder folder, const QString &path);
QString defaultPath(const settings::ZorelSettings &settings, ConfiguredFolder folder);
/// Whether the stored path is the default one letter for letter; "~" is not expanded.
bool isDefault(const settings::ZorelSettings &settings, ConfiguredFolder folder);

} // namespace zorel::app::folders
