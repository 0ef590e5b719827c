#pragma once

#include <QString>

namespace zorel::platform {

/// The user's folders, absolute and without a trailing slash. Handed in, so that no test meets the real home
/// folder.
struct StandardFolders
{
    QString home;
    QString documents;          ///< home/Documents
    QString applicationSupport; ///< home/Library/Application Support
    QString caches;             ///< home/Library/Caches

    bool operator==(const StandardFolders &) const = default;

    /// The folders below `home`, as every system of ours lays them out.
    static StandardFolders below(const QString &home);
    /// The folders of the user who runs this process: below HOME, or where the system has the user's home
    /// folder when HOME is not set.
    static StandardFolders current();
};

/// `path` with a leading "~" or "~/" expanded to `home`, and a leading "~name" to the home folder of the
/// system's user of that name. Every other path, also one with the name of nobody, stays exactly as it
/// stands.
QString expandTilde(const QString &path, const QString &home);

} // namespace zorel::platform
