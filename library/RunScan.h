#pragma once

#include "library/ArchivedModelRecord.h"

#include <QList>

namespace zorel::library {

/// Reads the run folders that lie in `finishedModelsPath`, in the library's order. Left out without a word:
/// hidden folders, links, names that are not UTF-8, and folders without a manifest that is one JSON object in
/// a regular file of at most 64 MiB. Nothing else in a run folder is opened.
QList<ArchivedModelRecord> scanRuns(const QString &finishedModelsPath);

} // namespace zorel::library
