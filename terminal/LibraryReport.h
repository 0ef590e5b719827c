#pragma once

#include "library/CurveSummary.h"
#include "library/LibraryIndex.h"
#include "library/ModelRunComparison.h"

#include <QString>

#include <optional>
#include <vector>

namespace zorel::terminal {

// What is written about archived runs where people read it. Without a line feed at the end.

/// A table with a row for each run.
QString runTable(const std::vector<const library::ArchivedModelRecord *> &runs);
/// All figures of one run.
QString runReport(const library::ArchivedModelRecord &run, const std::optional<library::CurveSummary> &curve,
                  const std::optional<backend::protocol::NeuronSnapshotPayload> &snapshot);
QString comparisonReport(const library::ModelRunComparison &comparison, const library::ComparisonData &data);

/// Said in place of an empty table.
QString nothingFound(const QString &searchText);

} // namespace zorel::terminal
