#include "platform/Workspace.h"

#import <AppKit/AppKit.h>

namespace zorel::platform {

namespace {

bool openAddress(const QUrl &url)
{
    if (!isPageOrMail(url) && url.scheme() != QLatin1String("x-apple.systempreferences")) {
        return false;
    }
    @autoreleasepool {
        NSString *const address = [NSString stringWithUTF8String:url.toEncoded().constData()];
        NSURL *const location = [NSURL URLWithString:address];
        return location != nil && [[NSWorkspace sharedWorkspace] openURL:location];
    }
}

void revealItem(const QString &path)
{
    if (path.isEmpty()) {
        return;
    }
    @autoreleasepool {
        NSString *const item = [NSString stringWithUTF8String:nearestExisting(path).toUtf8().constData()];
        NSURL *const location = [NSURL fileURLWithPath:item];
        [[NSWorkspace sharedWorkspace] activateFileViewerSelectingURLs:@[ location ]];
    }
}

} // namespace

Workspace Workspace::system()
{
    return {openAddress, revealItem};
}

} // namespace zorel::platform
