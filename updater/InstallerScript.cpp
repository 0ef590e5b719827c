#include "updater/InstallerScript.h"

#include <algorithm>

namespace zorel::updater {

namespace {

// Follows the five assignments that differ from one installation to the next.
constexpr const char16_t *fixedBody = uR"script(
exec >> "$LOG_FILE" 2>&1
echo "[updater] $(date) start pid=$PID target=$TARGET_APP new=$NEW_APP"

# Wait up to 30s for the running app to exit, OR for the parent
# to drop the sentinel file, then force-kill.
WAIT=0
while kill -0 "$PID" 2>/dev/null; do
    if [ -f "$SENTINEL" ]; then
        echo "[updater] sentinel present, proceeding"
        sleep 0.4
        break
    fi
    sleep 0.25
    WAIT=$((WAIT + 1))
    if [ "$WAIT" -ge 120 ]; then
        echo "[updater] pid $PID still alive after 30s, force-killing"
        kill -9 "$PID" 2>/dev/null || true
        break
    fi
done
sleep 0.4

# Strip the quarantine attribute of the new bundle and sign it ad hoc.
/usr/bin/xattr -dr com.apple.quarantine "$NEW_APP" 2>/dev/null || true
/usr/bin/codesign --force --deep --sign - "$NEW_APP" >/dev/null 2>&1 || true

TS=$(/bin/date +%s)
BACKUP="${TARGET_APP}.old-${TS}"

swap_in_place() {
    /bin/mv "$TARGET_APP" "$BACKUP" 2>/dev/null || return 1
    if ! /bin/cp -R "$NEW_APP" "$TARGET_APP"; then
        /bin/rm -rf "$TARGET_APP" 2>/dev/null
        /bin/mv "$BACKUP" "$TARGET_APP" 2>/dev/null
        return 1
    fi
    return 0
}

if [ -e "$TARGET_APP" ]; then
    if swap_in_place; then
        echo "[updater] swap ok (user perms)"
    else
        echo "[updater] swap failed under user perms — escalating"
        # One administrator prompt does the whole move and copy.
        /usr/bin/osascript -e \
            "do shell script \"/bin/mv '$TARGET_APP' '$BACKUP' && /bin/cp -R '$NEW_APP' '$TARGET_APP'\" with administrator privileges" \
            >/dev/null 2>&1
        if [ ! -d "$TARGET_APP" ]; then
            echo "[updater] admin swap failed; restoring backup"
            [ -d "$BACKUP" ] && /bin/mv "$BACKUP" "$TARGET_APP" 2>/dev/null
            /usr/bin/open "$TARGET_APP" 2>/dev/null
            exit 1
        else
            echo "[updater] swap ok (admin)"
        fi
    fi
else
    # The installed bundle is gone, for example moved: nothing to back up.
    if ! /bin/cp -R "$NEW_APP" "$TARGET_APP"; then
        echo "[updater] install failed"
        exit 1
    fi
fi

/usr/bin/codesign --force --deep --sign - "$TARGET_APP" >/dev/null 2>&1 || true
/usr/bin/xattr -dr com.apple.quarantine "$TARGET_APP" 2>/dev/null || true
/usr/bin/touch "$TARGET_APP"

# Refresh the launch-services registration.
LSREGISTER=/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/Support/lsregister
"$LSREGISTER" -f "$TARGET_APP" >/dev/null 2>&1 || true

# Delete the backup in the background, so that it does not delay the relaunch.
( /bin/rm -rf "$BACKUP" 2>/dev/null ) &

echo "[updater] relaunching"
/usr/bin/open "$TARGET_APP"
exit 0
)script";

QString assignment(QLatin1String name, const QString &value)
{
    return name + u'=' + shellQuoted(value) + u'\n';
}

} // namespace

QString InstallerScript::text() const
{
    return QStringLiteral("#!/bin/bash\nset -u\nPID=%1\n").arg(processId) +
           assignment(QLatin1String("NEW_APP"), newApp) + assignment(QLatin1String("TARGET_APP"), targetApp) +
           assignment(QLatin1String("LOG_FILE"), logFile) + assignment(QLatin1String("SENTINEL"), sentinel) +
           QString::fromUtf16(fixedBody);
}

QString shellQuoted(QString path)
{
    return u'\'' + path.replace(u'\'', QLatin1String("'\\''")) + u'\'';
}

bool fitsAdministratorCommand(const QString &path)
{
    constexpr char16_t delete_ = 0x7f;
    return std::none_of(path.begin(), path.end(), [](QChar character) {
        return character == u'\'' || character == u'"' || character == u'\\' || character < u' ' ||
               character == delete_;
    });
}

} // namespace zorel::updater
