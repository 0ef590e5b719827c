#pragma once

#include <QString>

namespace zorel::app::folders {

/// Whether the application can use `folder` (absolute, "~" expanded): it makes the folder and its parents
/// where they are missing, and creates and replaces a small hidden file in it, which it removes again.
/// Nothing else tells reliably, since the system may refuse what the file permissions allow. Blocks for as
/// long as the disk takes.
bool probeAccess(const QString &folder);

} // namespace zorel::app::folders
