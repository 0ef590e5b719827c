#include "platform/UserDefaults.h"

#include "platform/QSettingsUserDefaults.h"

#include <QSettings>

#include <utility>

namespace zorel::platform {

std::unique_ptr<UserDefaults> makeStandardUserDefaults()
{
    // The domain com.talvex.zorel.
    auto settings = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                QStringLiteral("talvex.com"), QStringLiteral("zorel"));
    return std::make_unique<QSettingsUserDefaults>(std::move(settings));
}

} // namespace zorel::platform
