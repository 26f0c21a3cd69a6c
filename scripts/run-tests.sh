#!/usr/bin/env bash
# Runs every test: the Windows test programs under Wine (through ctest) and the
# host-side tests. Starts its own virtual display and wineserver, and stops both
# at the end, also when a test fails.
set -uo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
. "$top/scripts/wine-session.sh"
trap wine_session_stop EXIT

wine_session_start || exit 1
status=0
ctest --test-dir "$top/build/x64" --output-on-failure --timeout 600 || status=1
exit $status
