#pragma once

#include <QString>

#include <cstdint>

namespace zorel::library {

/// The number of immediate subfolders of `finishedModelsPath` that contain a file named "manifest.json"; 0
/// when the folder cannot be listed. Opens no file.
std::int64_t countArchivedRuns(const QString &finishedModelsPath);

} // namespace zorel::library
