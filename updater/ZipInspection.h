#pragma once

#include <QString>

namespace zorel::updater {

struct InstallLimits;

/// Reads the table of contents of the zip archive at `path` and refuses one that an unpacker could be led out
/// of its folder by: with absolute names or "..", with a file below a link, or with entries that call
/// themselves otherwise in the table and in their place; also one that announces more than the limits. Throws
/// UpdateError (`extractionFailed`).
void requireSafeZip(const QString &path, const InstallLimits &limits);

} // namespace zorel::updater
