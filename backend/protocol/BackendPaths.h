#pragma once

#include <QString>

namespace zorel::backend::protocol {

/// The folders that the sidecar says it uses.
struct BackendPaths
{
    QString libraryRoot;
    QString trainingData;
    QString finishedModels;
    QString modelRoot;

    bool operator==(const BackendPaths &) const = default;
};

} // namespace zorel::backend::protocol
