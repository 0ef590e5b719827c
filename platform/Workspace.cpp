#include "platform/Workspace.h"

#include <QDir>
#include <QFileInfo>

namespace zorel::platform {

QString nearestExisting(const QString &path)
{
    QFileInfo item(QDir::cleanPath(QDir::current().absoluteFilePath(path)));
    while (!item.exists() && !item.isSymLink() && !item.isRoot()) {
        item.setFile(item.path());
    }
    return item.filePath();
}

bool isPageOrMail(const QUrl &url)
{
    const QString scheme = url.scheme();
    const bool isPage =
        (scheme == QLatin1String("https") || scheme == QLatin1String("http")) && !url.host().isEmpty();
    return url.isValid() && (isPage || scheme == QLatin1String("mailto"));
}

} // namespace zorel::platform
