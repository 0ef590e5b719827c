#include "platform/WindowChrome.h"

#import <AppKit/AppKit.h>

namespace zorel::platform {

void unifyTitleBar(quintptr nativeView)
{
    NSView *const view = (__bridge NSView *)reinterpret_cast<void *>(nativeView);
    NSWindow *const window = view.window;
    window.titleVisibility = NSWindowTitleHidden;
    window.toolbarStyle = NSWindowToolbarStyleUnified;
}

} // namespace zorel::platform
