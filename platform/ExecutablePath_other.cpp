#include "platform/ExecutablePath.h"

#include <QFile>

namespace zorel::platform {

QString executablePath()
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

} // namespace zorel::platform
