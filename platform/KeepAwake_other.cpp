#include "platform/KeepAwake.h"

#include <QProcess>

namespace zorel::platform {

namespace {

/// Each tool holds its lock for as long as the program that it runs, which ends with the pipe that it reads.
/// GNOME has idle times of its own, which heed no other locks than its own.
constexpr QLatin1String holdScript(R"(
case "$XDG_CURRENT_DESKTOP" in
*GNOME*)
    command -v gnome-session-inhibit >/dev/null &&
        exec gnome-session-inhibit --app-id com.talvex.zorel --reason "$1" --inhibit suspend cat
    ;;
esac
exec systemd-inhibit --what=idle --who="Talvex LLM Trainer" --why="$1" cat
)");

} // namespace

struct KeepAwake::Activity
{
    QProcess tool;

    ~Activity()
    {
        tool.closeWriteChannel();
        tool.kill();
        tool.waitForFinished();
    }
};

KeepAwake::KeepAwake() = default;

KeepAwake::~KeepAwake() = default;

void KeepAwake::hold(const QString &reason)
{
    if (isHeld()) {
        return;
    }
    m_activity = std::make_unique<Activity>();
    QProcess &tool = m_activity->tool;
    tool.setStandardOutputFile(QProcess::nullDevice());
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(QStringLiteral("/bin/sh"),
               {QStringLiteral("-c"), holdScript, QStringLiteral("keep-awake"), reason});
}

void KeepAwake::release()
{
    m_activity.reset();
}

} // namespace zorel::platform
