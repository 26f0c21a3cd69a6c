#!/usr/bin/env bash
# make bench: every benchmark under bench/, one table, each figure beside its
# reference measured in the same run.
set -uo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
export WINE_ROOT=$top/build/bench/wine
. "$top/scripts/wine-session.sh"
trap wine_session_stop EXIT
wine_session_start || exit 1
b=$top/build/x64

echo "Extraction (median of 5 rounds, ms): ours = list + one pass per member, as SETUP.EXE does"
printf "%-28s %8s %10s %12s %14s %8s\n" cabinet members ours expand.exe "program start" ratio
for cab in "$b/payload/setup.cab" "$b/tests/variants/setup_many.cab"; do
  wine "$b/bench/extract_bench.exe" "$(winepath -w "$cab" 2>/dev/null)" 5 </dev/null 2>/dev/null | tr -d '\r'
done
