#include "backend/bridge/SidecarLocator.h"

namespace zorel::backend::bridge {

namespace {

QString scriptIn(const QString &root)
{
    return root + QStringLiteral("/src/app_backend.py");
}

bool holdsScript(const SidecarHost &host, const QString &root)
{
    return !root.isEmpty() && host.fileExists(scriptIn(root));
}

QString findInterpreter(const SidecarHost &host)
{
    QStringList tried;
    for (const QString &python : SidecarLocator::interpreterCandidates(host)) {
        if (!host.isExecutableFile(python)) {
            continue;
        }
        tried.append(python);
        if (SidecarLocator::hasMLX(host, python)) {
            return python;
        }
    }
    throw LocateError{LocateError::NoPythonWithMLX{tried}};
}

} // namespace

SidecarLocator SidecarLocator::locate(const SidecarHost &host)
{
    const QStringList roots = scriptsRootCandidates(host);
    for (const QString &root : roots) {
        if (holdsScript(host, root)) {
            return {findInterpreter(host), scriptIn(root), root};
        }
    }
    throw LocateError{
        LocateError::ScriptsRootNotFound{roots.isEmpty() ? QStringLiteral("(none)") : roots.constFirst()}};
}

QStringList SidecarLocator::scriptsRootCandidates(const SidecarHost &host)
{
    QStringList roots;
    if (host.scriptsRootOverride) {
        roots.append(*host.scriptsRootOverride);
    }
    if (host.bundleResources) {
        roots.append(*host.bundleResources + QStringLiteral("/sidecar"));
    }
    if (host.bundleParent) {
        roots.append(*host.bundleParent + QStringLiteral("/Training Scripts"));
    }
    if (!host.checkoutSidecar.isEmpty()) {
        roots.append(host.checkoutSidecar);
    }
    return roots;
}

QStringList SidecarLocator::interpreterCandidates(const SidecarHost &host)
{
    return {
        host.home + QStringLiteral("/Library/Python/3.12/bin/python3"),
        host.home + QStringLiteral("/Library/Python/3.11/bin/python3"),
        host.home + QStringLiteral("/Library/Python/3.10/bin/python3"),
        host.home + QStringLiteral("/Library/Python/3.9/bin/python3"),
        QStringLiteral("/usr/bin/python3"),
        QStringLiteral("/usr/local/bin/python3"),
        QStringLiteral("/opt/homebrew/bin/python3"),
    };
}

bool SidecarLocator::hasMLX(const SidecarHost &host, const QString &python)
{
    return host.run(python, {QStringLiteral("-c"), QStringLiteral("import mlx")}) == 0;
}

} // namespace zorel::backend::bridge
