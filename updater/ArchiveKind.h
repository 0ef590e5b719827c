#pragma once

#include <QString>

#include <cstdint>

namespace zorel::updater {

enum class ArchiveKind : std::uint8_t { zip, diskImage, tape };

/// By the extension of the file's name. Throws UpdateError (`extractionFailed`, naming the extension) for
/// every other one.
ArchiveKind archiveKindOf(const QString &fileName);

} // namespace zorel::updater
