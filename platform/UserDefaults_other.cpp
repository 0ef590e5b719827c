#include "platform/UserDefaults.h"

#include "platform/FileUserDefaults.h"
#include "platform/StandardFolders.h"

#include <QDir>

namespace zorel::platform {

namespace {

QString configurationFolder()
{
    const QString configured = qEnvironmentVariable("XDG_CONFIG_HOME");
    return QDir::isAbsolutePath(configured) ? configured
                                            : StandardFolders::current().home + QLatin1String("/.config");
}

} // namespace

std::unique_ptr<UserDefaults> makeStandardUserDefaults()
{
    return std::make_unique<FileUserDefaults>(configurationFolder() + QLatin1String("/Talvex/zorel.json"));
}

} // namespace zorel::platform
