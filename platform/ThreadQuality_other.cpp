#include "platform/ThreadQuality.h"

#include <QByteArray>

#include <pthread.h>

namespace zorel::platform {

void markThreadUserInitiated() {}

void nameThread(const char *name)
{
    // The system takes no longer one.
    pthread_setname_np(pthread_self(), QByteArray(name).left(15).constData());
}

} // namespace zorel::platform
