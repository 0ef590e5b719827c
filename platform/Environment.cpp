#include "platform/Environment.h"

#include <QProcessEnvironment>

namespace zorel::platform {

Environment currentEnvironment()
{
    Environment variables;
    for (const QString &name : QProcessEnvironment::systemEnvironment().keys()) {
        const QByteArray bytes = name.toLocal8Bit();
        variables.insert(bytes, qgetenv(bytes.constData()));
    }
    return variables;
}

} // namespace zorel::platform
