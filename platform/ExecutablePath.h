#pragma once

#include <QString>

namespace zorel::platform {

/// The absolute path of the running executable, without symbolic links; empty when the system does not tell.
/// Needs no application object.
QString executablePath();

} // namespace zorel::platform
