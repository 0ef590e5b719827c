#include "platform/ThreadQuality.h"

#include <pthread.h>

namespace zorel::platform {

void markThreadUserInitiated()
{
    pthread_set_qos_class_self_np(QOS_CLASS_USER_INITIATED, 0);
}

void nameThread(const char *name)
{
    pthread_setname_np(name);
}

} // namespace zorel::platform
