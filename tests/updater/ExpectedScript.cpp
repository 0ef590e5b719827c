#include "tests/updater/ExpectedScript.h"

namespace zorel::tests {

const char *const everyLineOfTheScript = R"script(
#!/bin/bash
set -u
PID=4711
NEW_APP='/work/staged/New.app'
TARGET_APP='/Applications/Talvex LLM Trainer.app'
LOG_FILE='/work/install.log'
SENTINEL='/work/exited.sentinel'
exec >> "$LOG_FILE" 2>&1
echo "[updater] $(date) start pid=$PID target=$TARGET_APP new=$NEW_APP"
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
/usr/bin/osascript -e "do shell script \"/bin/mv '$TARGET_APP' '$BACKUP' && /bin/cp -R '$NEW_APP' '$TARGET_APP'\" with administrator privileges" >/dev/null 2>&1
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
if ! /bin/cp -R "$NEW_APP" "$TARGET_APP"; then
echo "[updater] install failed"
exit 1
fi
fi
/usr/bin/codesign --force --deep --sign - "$TARGET_APP" >/dev/null 2>&1 || true
/usr/bin/xattr -dr com.apple.quarantine "$TARGET_APP" 2>/dev/null || true
/usr/bin/touch "$TARGET_APP"
LSREGISTER=/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/Support/lsregister
"$LSREGISTER" -f "$TARGET_APP" >/dev/null 2>&1 || true
( /bin/rm -rf "$BACKUP" 2>/dev/null ) &
echo "[updater] relaunching"
/usr/bin/open "$TARGET_APP"
exit 0
)script";

} // namespace zorel::tests
