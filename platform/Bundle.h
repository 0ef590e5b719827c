#pragma once

#include <QString>

#include <optional>

namespace zorel::platform {

/// An application bundle, laid out the same on every system: NAME.app/Contents/{MacOS,Resources}. Paths are
/// absolute and have no trailing slash.
struct Bundle
{
    QString path;      ///< .../NAME.app
    QString resources; ///< .../NAME.app/Contents/Resources, which need not exist
    QString parent;    ///< the folder that holds the bundle

    bool operator==(const Bundle &) const = default;
};

/// The bundle that `executablePath`, an absolute path, belongs to as NAME.app/Contents/MacOS/EXECUTABLE;
/// nothing when the path has another shape. Does not look at the file system.
std::optional<Bundle> bundleOf(const QString &executablePath);

/// The bundle of this process, where it was at the first call. Needs no application object. Any thread.
const std::optional<Bundle> &mainBundle();

} // namespace zorel::platform
