#!/usr/bin/env bash
# Builds one architecture quietly: the compiler's progress goes to
# build/<arch>/build.log; warnings are shown, and on a failure the end of the log.
#   scripts/build.sh <x64|i686> <jobs>
set -uo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
folder=$top/build/$1
log=$folder/build.log
if ! cmake --build "$folder" -j"$2" >"$log" 2>&1; then
  echo "The $1 build failed; the end of ${log#$top/}:"
  grep -E "error|Error" "$log" | head -40
  tail -n 20 "$log"
  exit 1
fi
grep -E "warning:" "$log" | sort -u
echo "Built build/$1/SETUP.EXE ($(stat -c %s "$folder/SETUP.EXE") bytes), log in ${log#$top/}"
