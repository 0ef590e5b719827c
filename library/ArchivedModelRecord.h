#pragma once

#include "library/ArchiveDate.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace zorel::library {

/// One archived run as its folder and manifest described it when it was scanned. A key that the manifest
/// lacks, or has with another type, has the default given here.
struct ArchivedModelRecord
{
    QString id;         ///< the same text as `path`
    QString path;       ///< of the run's folder, absolute
    QString folderName; ///< the path's last component
    QString name;       ///< without white space around it; the folder's name when absent
    QString version;    ///< without white space around it; "0.0.0" when absent
    QString author;     ///< as it stands
    std::int64_t step = 0;
    std::int64_t maxSteps = 0;
    double finalLoss = 0;
    std::optional<double> valLoss;
    double elapsedS = 0; ///< seconds of training
    double tokensPerSec = 0;
    /// The folder's date of modification when absent or no date.
    std::optional<ArchiveDate> archivedAt;
    QString modelFamily;        ///< as it stands, also when unknown; "text_language" when absent
    QString trainingCapability; ///< as it stands, also when unknown; "pretrain" when absent
    bool hasNeuronSnapshot = false;
    bool hasLossCurve = false;

    bool operator==(const ArchivedModelRecord &) const = default;
};

/// The library's order, a strict one: the newest first, runs without a date last, and runs of the same
/// moment by folder name, descending.
bool comesBefore(const ArchivedModelRecord &run, const ArchivedModelRecord &other);

} // namespace zorel::library
