#include "app/folders/PrivacySettings.h"

#include <QString>

#include <array>

namespace zorel::app::folders {

bool openPrivacySettings(const std::function<bool(const QUrl &)> &openUrl)
{
    const std::array addresses{
        // The settings application of newer systems.
        QStringLiteral("x-apple.systempreferences:"
                       "com.apple.settings.PrivacySecurity.extension?Privacy_FilesAndFolders"),
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_FilesAndFolders"),
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_DocumentsFolder")};
    for (const QString &address : addresses) {
        const QUrl url(address);
        if (url.isValid() && openUrl(url)) {
            return true;
        }
    }
    return false;
}

} // namespace zorel::app::folders
