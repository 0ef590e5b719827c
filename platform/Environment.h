#pragma once

#include <QByteArray>
#include <QMap>

namespace zorel::platform {

/// Names and values of environment variables as the system has them: bytes that need not be text.
using Environment = QMap<QByteArray, QByteArray>;

/// The environment of this process.
Environment currentEnvironment();

} // namespace zorel::platform
