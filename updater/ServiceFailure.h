#pragma once

#include "updater/UpdateError.h"

namespace caldra {
class CaldraError;
}

namespace zorel::updater {

/// What a failed question for the latest release means to the updater.
UpdateError updateErrorFrom(const caldra::CaldraError &error);

} // namespace zorel::updater
