#pragma once

#include "platform/Environment.h"

#include <QString>

namespace zorel::platform {

/// Whether the user's desktop is set to dark windows, as its GTK settings tell, where the toolkit itself does
/// not know. `home` is the user's home folder.
bool prefersDarkWindows(const Environment &environment, const QString &home);

} // namespace zorel::platform
