#pragma once

#include <QString>

#include <optional>

namespace zorel::updater {

class Cancellation;
struct InstallLimits;

struct TreeSize
{
    qint64 bytes = 0; ///< of the files, as they would be copied
    qint64 items = 0;
};

/// Walks the folder at `root` without following links and refuses what could act outside of it: a link that
/// leaves it, a file that also has a name elsewhere, and what is neither file, folder nor link; also what
/// passes the limits. Throws UpdateError: `cancelled` or `extractionFailed`.
TreeSize requireSelfContained(const QString &root, const InstallLimits &limits,
                              const Cancellation &cancellation);

/// Throws UpdateError (`extractionFailed`) when the tree at `root` has grown past the limits. Overlooks what
/// comes and goes during the walk.
void requireWithinLimits(const QString &root, const InstallLimits &limits);

/// The first folder below `root`, level by level and by name, whose extension is "app"; a file or a link of
/// such a name is passed over, and so is a name that is no text.
std::optional<QString> findBundle(const QString &root);

/// Removes the tree at `root` with folders that are not writable, but nothing that links lead to, and nothing
/// on another volume. Failures are passed over.
void removeTree(const QString &root);

} // namespace zorel::updater
