#!/usr/bin/env bash
# own-drives.sh <test program> [<name>=<file>]...
# Runs a test program of the drive walk in the prefix of the session
# ($WINEPREFIX) with fixed drives of its own. Under Wine, Z: maps the whole
# host file system and counts as a fixed drive, so for the length of the run
# Z: is taken out of dosdevices, and M: and N: are two empty folders of the
# build tree. The program and each <file> are copied to C:\.tvsearch (as
# <name>): a folder whose name begins with a point, which the walk never enters.
# Z: is given back when the run ends, however it ends; a run killed outright
# leaves it aside, and the next run gives it back first.
set -u
program=$1; shift
: "${WINEPREFIX:?run inside a Wine session (scripts/wine-session.sh)}"
dos=$WINEPREFIX/dosdevices
aside=$WINEPREFIX/z-drive-aside
files=$WINEPREFIX/drive_c/.tvsearch
drives=$(dirname "$program")/drives

if [ -L "$aside" ] && [ ! -e "$dos/z:" ] && [ ! -L "$dos/z:" ]; then mv -T "$aside" "$dos/z:"; fi
for letter in m n; do
  if [ -e "$dos/$letter:" ] || [ -L "$dos/$letter:" ]; then echo "drive $letter: is in use in $WINEPREFIX" >&2; exit 1; fi
done

restore() {
  rm -f "$dos/m:" "$dos/n:"
  if [ -L "$aside" ]; then mv -T "$aside" "$dos/z:"; fi
  rm -rf "$files" "$drives"
}
trap restore EXIT
trap 'exit 130' INT TERM

rm -rf "$files" "$drives"
mkdir -p "$files" "$drives/m" "$drives/n" || exit 1
cp "$program" "$files/" || exit 1
for pair in "$@"; do
  name=${pair%%=*}
  mkdir -p "$files/$(dirname "$name")" && cp "${pair#*=}" "$files/$name" || exit 1
done

[ -L "$dos/z:" ] && mv -T "$dos/z:" "$aside"
ln -s "$drives/m" "$dos/m:"
ln -s "$drives/n" "$dos/n:"
cd "$WINEPREFIX/drive_c" || exit 1
timeout 360 wine "C:\\.tvsearch\\$(basename "$program")" --gtest_brief=1 </dev/null
