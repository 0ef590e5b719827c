#pragma once

#include <QString>

namespace zorel::updater {

/// -1, 0 or 1 for `left` older than `right`, the same, and newer. Numbers between full stops are compared as
/// numbers, missing ones as 0; what follows them ("-beta") is a pre-release, older than the release without
/// it, and compared as text.
int compareVersions(const QString &left, const QString &right);

} // namespace zorel::updater
