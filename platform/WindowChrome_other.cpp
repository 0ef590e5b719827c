#include "platform/WindowChrome.h"

namespace zorel::platform {

void unifyTitleBar(quintptr) {}

} // namespace zorel::platform
