// What macOS 13 documents and the headers that stand in for its own do not have. Read before each source.
#pragma once

#include <pthread.h>

using qos_class_t = unsigned;
inline constexpr qos_class_t QOS_CLASS_USER_INITIATED = 0x19;
extern "C" int pthread_set_qos_class_self_np(qos_class_t qualityClass, int relativePriority);
int pthread_setname_np(const char *name);

#define POSIX_SPAWN_CLOEXEC_DEFAULT 0x4000

#ifdef __OBJC__

#import <AppKit/AppKit.h>

typedef NS_ENUM(NSInteger, NSWindowTitleVisibility) { NSWindowTitleVisible = 0, NSWindowTitleHidden = 1 };

typedef NS_ENUM(NSInteger, NSWindowToolbarStyle) {
    NSWindowToolbarStyleAutomatic,
    NSWindowToolbarStyleExpanded,
    NSWindowToolbarStylePreference,
    NSWindowToolbarStyleUnified,
    NSWindowToolbarStyleUnifiedCompact
};

@interface NSWindow (NewerSystem)
@property NSWindowTitleVisibility titleVisibility;
@property NSWindowToolbarStyle toolbarStyle;
@end

@interface NSWorkspace (NewerSystem)
- (void)activateFileViewerSelectingURLs:(NSArray *)urls;
@end

// The name since macOS 10.12.
#define NSCompositingOperationSourceOver NSCompositeSourceOver

@interface NSImageSymbolConfiguration : NSObject
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(CGFloat)weight;
@end

@interface NSImage (NewerSystem)
+ (instancetype)imageWithSystemSymbolName:(NSString *)name accessibilityDescription:(NSString *)description;
- (NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)configuration;
@end

#endif
