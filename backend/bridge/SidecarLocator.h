#pragma once

#include "backend/bridge/LocateError.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>

namespace zorel::backend::bridge {

/// Everything of the outside world that the search looks at.
struct SidecarHost
{
    /// Value of ZOREL_SCRIPTS_ROOT; nothing when it is not set, an empty text when it is set to nothing.
    std::optional<QString> scriptsRootOverride;
    QString home;
    /// The bundle's resources folder and the folder that contains the bundle; nothing outside a bundle.
    std::optional<QString> bundleResources;
    std::optional<QString> bundleParent;
    /// The sidecar folder of the checkout this program was built from.
    QString checkoutSidecar;

    std::function<bool(const QString &path)> fileExists;
    std::function<bool(const QString &path)> isExecutableFile;
    /// Runs `program` with `arguments`, its outputs discarded and no input, and returns its exit status;
    /// nothing when it could not be launched, was killed by a signal, or did not end within the probe's time
    /// limit. Blocks.
    std::function<std::optional<int>(const QString &program, const QStringList &arguments)> run;

    /// The real thing: this process's environment, bundle, file system and child processes. A probe that has
    /// not ended after `probeLimit` is killed.
    static SidecarHost system(std::chrono::milliseconds probeLimit = std::chrono::seconds(60));
};

/// Where the training scripts and an interpreter for them are.
struct SidecarLocator
{
    QString python;        ///< the chosen interpreter
    QString backendScript; ///< scriptsRoot + "/src/app_backend.py"
    QString scriptsRoot;   ///< the sidecar's working directory

    bool operator==(const SidecarLocator &) const = default;

    /// Searches anew; blocks while interpreters are probed. Throws LocateError.
    static SidecarLocator locate(const SidecarHost &host);
    /// The folders in which the scripts are looked for, in order.
    static QStringList scriptsRootCandidates(const SidecarHost &host);
    /// The interpreters that are tried, in order.
    static QStringList interpreterCandidates(const SidecarHost &host);
    /// Whether `python` can import MLX.
    static bool hasMLX(const SidecarHost &host, const QString &python);
};

} // namespace zorel::backend::bridge
