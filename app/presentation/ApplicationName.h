#pragma once

#include "platform/InformationDictionary.h"

#include <QString>

namespace zorel::app::presentation {

/// What the application is called for the user; its own name where the bundle gives none.
QString displayName(const platform::InformationDictionary &information);
/// As the bundle gives it, or "unknown".
QString version(const platform::InformationDictionary &information);

} // namespace zorel::app::presentation
