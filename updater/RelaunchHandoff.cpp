#include "updater/RelaunchHandoff.h"

#include "platform/AtomicFile.h"

namespace zorel::updater {

RelaunchHandoff RelaunchHandoff::in(const QString &workingFolder)
{
    return {workingFolder + QLatin1String("/install.sh"), workingFolder + QLatin1String("/install.log"),
            workingFolder + QLatin1String("/exited.sentinel")};
}

bool RelaunchHandoff::writeExitedSentinel() const
{
    return platform::replaceFile(exitedSentinelPath, "exited");
}

} // namespace zorel::updater
