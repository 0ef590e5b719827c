#include "platform/KeepAwake.h"

#import <Foundation/Foundation.h>

namespace zorel::platform {

struct KeepAwake::Activity
{
    id<NSObject> token = nil;
};

KeepAwake::KeepAwake() = default;

KeepAwake::~KeepAwake()
{
    release();
}

void KeepAwake::hold(const QString &reason)
{
    if (isHeld()) {
        return;
    }
    NSString *const text = [NSString stringWithUTF8String:reason.toUtf8().constData()];
    m_activity = std::make_unique<Activity>();
    m_activity->token =
        [[NSProcessInfo processInfo] beginActivityWithOptions:NSActivityIdleSystemSleepDisabled reason:text];
}

void KeepAwake::release()
{
    if (isHeld()) {
        [[NSProcessInfo processInfo] endActivity:m_activity->token];
        m_activity.reset();
    }
}

} // namespace zorel::platform
