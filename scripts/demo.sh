#!/usr/bin/env bash
# The main job as far as it goes: SETUP.EXE under Wine, its boxes answered by the
# driver as a user would, a screenshot of each, and the log it leaves.
# Shown on $DISPLAY if there is one, else on a virtual display.
set -uo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
export WINE_ROOT=$top/build/demo/wine
[ -n "${DISPLAY:-}" ] && export USE_DISPLAY=$DISPLAY
. "$top/scripts/wine-session.sh"
trap wine_session_stop EXIT

shots=$top/build/demo
mkdir -p "$shots"
setup=$top/build/x64/SETUP.EXE
driver=$top/build/x64/tools/driver.exe
pause=${DEMO_PAUSE:-1}

wine_session_start || exit 1
shot() { sleep 0.3; import -window root "$shots/$1.png" && echo "  screenshot: build/demo/$1.png"; }

echo "1. SETUP.EXE /?  (the help box)"
wine "$setup" '/?' </dev/null >/dev/null 2>&1 &
run=$!
wine "$driver" wait "TavRin Installation" 15 </dev/null | tr -d '\r' | sed 's/^/   /'
shot 01-help; sleep "$pause"
wine "$driver" answer "TavRin Installation" OK </dev/null >/dev/null
wait $run

echo "2. SETUP.EXE after a run that died half way (InstallInProcess left at 1), then the wizard"
wine reg add 'HKCU\SOFTWARE\Tavrin' /v InstallInProcess /d 1 /f </dev/null >/dev/null 2>&1
wine "$setup" </dev/null >/dev/null 2>&1 &
run=$!
wine "$driver" wait "Error" 15 </dev/null | tr -d '\r' | grep -E '^(caption|message)' | sed 's/^/   /'
shot 02-previous-run; sleep "$pause"
wine "$driver" answer "Error" OK </dev/null >/dev/null
frame="TavRin Installation - 3. 1. 0. 12"
wine "$driver" wait "$frame" 20 </dev/null | tr -d '\r' | grep -E '^caption' | sed 's/^/   /'
shot 03-welcome; sleep "$pause"
wine "$driver" answer "$frame" 1001 </dev/null >/dev/null
shot 04-destination; sleep "$pause"
wine "$driver" answer "$frame" 1001 </dev/null >/dev/null
wine "$driver" answer "Create Folder" Yes 5 </dev/null >/dev/null
shot 05-ready; sleep "$pause"
echo "   (the copy pages come next; the demo cancels here)"
wine "$driver" answer "$frame" 2 </dev/null >/dev/null
wine "$driver" answer "Abort Install" Yes </dev/null >/dev/null
wait $run

echo "3. The log it leaves (C:\\windows\\TavRinInstall.log):"
tr -d '\r' < "$WINEPREFIX/drive_c/windows/TavRinInstall.log" | sed 's/^/   /'
