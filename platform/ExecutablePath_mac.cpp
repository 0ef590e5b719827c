#include "platform/ExecutablePath.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <cstdint>

#include <mach-o/dyld.h>

namespace zorel::platform {

QString executablePath()
{
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    QByteArray path(static_cast<qsizetype>(size), '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        return QString();
    }
    return QFileInfo(QFile::decodeName(path.constData())).canonicalFilePath();
}

} // namespace zorel::platform
