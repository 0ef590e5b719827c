#include "platform/Workspace.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace zorel::platform {

namespace {

/// The file manager is asked over the session bus, which may start it first; where nobody answers, the folder
/// is opened. A child does the waiting, so that a bus that hangs is none of our business.
constexpr QLatin1String revealScript(R"(
if [ -n "$DBUS_SESSION_BUS_ADDRESS" ] || [ -S "$XDG_RUNTIME_DIR/bus" ]; then
    dbus-send --session --print-reply --reply-timeout=10000 --dest=org.freedesktop.FileManager1 \
        /org/freedesktop/FileManager1 org.freedesktop.FileManager1.ShowItems "array:string:$1" string: && exit
fi
exec xdg-open "$2"
)");

/// Outlives this process.
bool launch(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

/// With every comma encoded, too, which would part it in two on the way.
QString fileAddress(const QString &path)
{
    return QLatin1String("file://") + QString::fromLatin1(QFile::encodeName(path).toPercentEncoding("/"));
}

bool openAddress(const QUrl &url)
{
    return isPageOrMail(url) && launch(QStringLiteral("xdg-open"), {url.toString(QUrl::FullyEncoded)});
}

void revealItem(const QString &path)
{
    if (path.isEmpty()) {
        return;
    }
    const QFileInfo item(nearestExisting(path));
    launch(QStringLiteral("/bin/sh"),
           {QStringLiteral("-c"), revealScript, QStringLiteral("reveal"), fileAddress(item.filePath()),
            item.isDir() ? item.filePath() : item.path()});
}

} // namespace

Workspace Workspace::system()
{
    return {openAddress, revealItem};
}

} // namespace zorel::platform
