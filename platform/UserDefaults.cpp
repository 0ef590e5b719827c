#include "platform/UserDefaults.h"

namespace zorel::platform {

namespace {

struct SynchronizedAtExit
{
    UserDefaults &store;

    ~SynchronizedAtExit() { store.synchronize(); }
};

} // namespace

UserDefaults &standardUserDefaults()
{
    static UserDefaults *const store = makeStandardUserDefaults().release();
    static const SynchronizedAtExit guard{*store};
    return *store;
}

} // namespace zorel::platform
