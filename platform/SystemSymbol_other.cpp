#include "platform/SystemSymbol.h"

namespace zorel::platform {

bool hasSystemSymbol(const QString &)
{
    return false;
}

QByteArray systemSymbolOpacity(const QString &, int)
{
    return {};
}

} // namespace zorel::platform
