#!/usr/bin/env bash
# The main job as far as it goes: SETUP.EXE under Wine against the TavRin service,
# each road of the wizard played by the scenario runner as a user would, every
# page and box of it pictured; the pictures make one page, build/demo/gallery.html.
# Shown on $DISPLAY if there is one, else on a virtual display.
set -uo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
export WINE_ROOT=$top/build/demo/wine
[ -n "${DISPLAY:-}" ] && export USE_DISPLAY=$DISPLAY
. "$top/scripts/wine-session.sh"
service_dir=$top/build/demo/service
. "$top/scripts/service-session.sh"
trap 'service_stop; wine_session_stop' EXIT

demo=$top/build/demo
driver=$top/build/x64/tools/driver.exe
scenarios=$top/tests/scenarios
# In the order they run: each pair or chain leaves the machine to the next.
runs="fresh-install update new-account known-account-update uninstall copy-fails signup-interrupted new-account-business"
# In the order of the gallery: the roads of a first install (a new account,
# personal or business, or none), the update, the uninstall, the failing file
# pass, and a fault the new account survives.
gallery="new-account new-account-business fresh-install known-account-update update uninstall copy-fails signup-interrupted"

wine_session_start || exit 1
service_start || exit 1
# The download folder some roads start SETUP.EXE from (tests/scenarios/CMakeLists.txt).
export DOWNLOADS=$(winepath -w "$top/build/x64/downloads" 2>/dev/null)
rm -rf "$demo/shots" "$demo/gallery" "$demo/gallery.html"
status=0
for name in $runs; do
  if wine "$driver" run "$scenarios/$name.txt" --shots "$demo/shots/$name" </dev/null >"$demo/$name.out" 2>&1; then
    echo "road $name: played, $(ls "$demo/shots/$name" | wc -l) screens"
  else
    status=1
    echo "road $name: FAILED; what the runner saw:"
    tr -d '\r' <"$demo/$name.out" | grep -v '^ *[0-9]* ok  ' | sed 's/^/   /'
  fi
done
python3 "$top/scripts/gallery.py" "$demo/shots" "$scenarios" "$demo/gallery.html" $gallery || status=1

echo "The log the last run left (C:\\windows\\TavRinInstall.log):"
tr -d '\r' <"$WINEPREFIX/drive_c/windows/TavRinInstall.log" | sed 's/^/   /'
echo "Open build/demo/gallery.html to look through the roads."
exit $status
