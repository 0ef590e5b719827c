#pragma once

#include <QString>
#include <QStringList>

#include <variant>

namespace zorel::backend::bridge {

/// Why no sidecar can be run.
struct LocateError
{
    struct ScriptsRootNotFound
    {
        QString path;
        bool operator==(const ScriptsRootNotFound &) const = default;
    };

    struct NoPythonWithMLX
    {
        QStringList tried;
        bool operator==(const NoPythonWithMLX &) const = default;
    };

    std::variant<ScriptsRootNotFound, NoPythonWithMLX> reason;

    bool operator==(const LocateError &) const = default;

    /// What the user reads.
    QString description() const;
};

} // namespace zorel::backend::bridge
