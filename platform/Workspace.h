#pragma once

#include <QString>
#include <QUrl>

#include <functional>

namespace zorel::platform {

/// What the user's desktop does for the application. Handed in, so that no test opens anything. Nothing here
/// waits for other programs. Main thread only.
struct Workspace
{
    /// Opens a page, a mail or the system's settings with the user's program for it. False when the system
    /// has none, and for every other kind of address: a link may come from outside.
    std::function<bool(const QUrl &url)> openUrl;
    /// Shows what is at `path` ("~" expanded) in the file manager, selected. Creates nothing: where nothing
    /// is, shows the nearest folder above. An empty path shows nothing.
    std::function<void(const QString &path)> reveal;

    static Workspace system();
};

/// What to show for `path`: the path itself, made absolute, or the nearest folder above it when nothing is
/// there.
QString nearestExisting(const QString &path);
/// Whether `url` is the address of a page or of a mail's recipient.
bool isPageOrMail(const QUrl &url);

} // namespace zorel::platform
