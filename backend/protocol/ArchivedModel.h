#pragma once

#include <QString>

#include <cstdint>

namespace zorel::backend::protocol {

/// The notice that a finished run has been archived.
struct ArchivedModel
{
    QString path;
    QString folderName;
    std::int64_t step = 0;
    double loss = 0;
    double elapsedS = 0; ///< seconds

    bool operator==(const ArchivedModel &) const = default;
};

} // namespace zorel::backend::protocol
