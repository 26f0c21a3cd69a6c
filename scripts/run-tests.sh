#!/usr/bin/env bash
# Runs every test: the host-side tests (the TavRin service's, the stamping
# tool's and the import check of the shipping build), then the Windows test
# programs under Wine (through ctest) against the TavRin service in test mode. Starts its own virtual display, wineserver and
# service, and stops them at the end, also when a test fails.
#   scripts/run-tests.sh [--windows-only] [ctest options...]
# --windows-only leaves out the host-side tests; further options go to ctest.
set -uo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
. "$top/scripts/wine-session.sh"
. "$top/scripts/service-session.sh"

# A full disk, honestly: a tmpfs of ten pages as drive S:, where the machine lets
# one be mounted (the test that needs it is skipped otherwise). Unmounted at the end.
small_drive=$top/build/smalldisk
small_drive_start() {
  small_drive_stop  # one left by a run that was killed
  mkdir -p "$small_drive" &&
    mount -t tmpfs -o size=40k,mode=0755 tavrin-small "$small_drive" 2>/dev/null || {
    echo "No small drive (no tmpfs can be mounted here): the full disk test is skipped"
    return 0
  }
  ln -sfn "$small_drive" "$WINEPREFIX/dosdevices/s:"
  export TAVRIN_SMALL_DRIVE=S:
}
small_drive_stop() {
  mountpoint -q "$small_drive" 2>/dev/null && { umount "$small_drive" 2>/dev/null || umount -l "$small_drive"; }
  return 0
}

trap 'service_stop; wine_session_stop; small_drive_stop' EXIT
trap 'exit 1' INT TERM

windows_only=
[ "${1:-}" = --windows-only ] && { windows_only=1; shift; }

status=0
host_tests() {
  echo "TavRin service tests"
  python3 -m unittest discover -s "$top/service/tests" || status=1
  echo "Partner stamping tool tests"
  python3 -m unittest discover -s "$top/tools/stamp" || status=1
  # The shipping build is not run here (no 32-bit Wine): its import table and
  # header are checked against what Windows 95 and NT 4 have.
  echo "Import check of the shipping build"
  python3 -m unittest discover -s "$top/tools/imports" || status=1
  python3 "$top/tools/imports/check_imports.py" "$top/build/i686/SETUP.EXE" || status=1
}
[ -n "$windows_only" ] || host_tests

wine_session_start || exit 1
service_start || exit 1
small_drive_start
ctest --test-dir "$top/build/x64" --output-on-failure --timeout 600 "$@" || status=1
exit $status
