#include "updater/ArchiveKind.h"

#include "updater/UpdateError.h"

#include <QFileInfo>

namespace zorel::updater {

ArchiveKind archiveKindOf(const QString &fileName)
{
    const QString extension = QFileInfo(fileName).suffix();
    const QString known = extension.toLower();
    if (known == QLatin1String("zip")) {
        return ArchiveKind::zip;
    }
    if (known == QLatin1String("dmg")) {
        return ArchiveKind::diskImage;
    }
    if (known == QLatin1String("tar") || known == QLatin1String("gz") || known == QLatin1String("tbz") ||
        known == QLatin1String("bz2")) {
        return ArchiveKind::tape;
    }
    if (extension.isEmpty()) {
        throw UpdateError(UpdateError::ExtractionFailed{
            QStringLiteral("the file name has no extension: %1").arg(fileName)});
    }
    throw UpdateError(UpdateError::ExtractionFailed{
        QStringLiteral("files with the extension \"%1\" are not supported").arg(extension)});
}

} // namespace zorel::updater
