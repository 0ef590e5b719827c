#include "platform/ThreadQuality.h"

#include <pthread.h>

namespace zorel::platform {

void markThreadUserInitiated()
{
    pthread_set_qos_class_self_np(QOS_CLASS_USER_INITIATED, 0);
}

} // namespace zorel::platform
