#include "platform/ThreadQuality.h"

namespace zorel::platform {

void markThreadUserInitiated() {}

} // namespace zorel::platform
