#!/usr/bin/env bash
# own-drives.sh <test program> [<name>=<file>]...
# Runs a test program of the drive walk in the session's prefix ($WINEPREFIX)
# with fixed drives of its own: Z: (Wine's mapping of the whole host, a fixed
# drive) is taken out of dosdevices for the run, and M: and N: are two empty
# folders of the build tree. The program and each <file> are copied to
# C:\.tvsearch (as <name>), a folder the walk never enters (its name begins
# with a point). Z: is given back however the run ends; a run killed outright
# leaves it aside, and the next run gives it back first.
set -u
program=$1; shift
: "${WINEPREFIX:?run inside a Wine session (scripts/wine-session.sh)}"
dos=$WINEPREFIX/dosdevices aside=$WINEPREFIX/z-drive-aside files=$WINEPREFIX/drive_c/.tvsearch drives=$(dirname "$program")/drives

if [ -L "$aside" ] && [ ! -e "$dos/z:" ] && [ ! -L "$dos/z:" ]; then mv -T "$aside" "$dos/z:"; fi
for letter in m n; do
  if [ -e "$dos/$letter:" ] || [ -L "$dos/$letter:" ]; then echo "drive $letter: is in use in $WINEPREFIX" >&2; exit 1; fi
done
restore() { rm -f "$dos/m:" "$dos/n:"; if [ -L "$aside" ]; then mv -T "$aside" "$dos/z:"; fi; rm -rf "$files" "$drives"; }
trap restore EXIT
trap 'exit 130' INT TERM

rm -rf "$files" "$drives"
mkdir -p "$files" "$drives/m" "$drives/n" && cp "$program" "$files/" || exit 1
for pair in "$@"; do
  name=${pair%%=*}
  mkdir -p "$files/$(dirname "$name")" && cp "${pair#*=}" "$files/$name" || exit 1
done
[ -L "$dos/z:" ] && mv -T "$dos/z:" "$aside"
ln -s "$drives/m" "$dos/m:" && ln -s "$drives/n" "$dos/n:"
cd "$WINEPREFIX/drive_c" || exit 1
timeout 360 wine "C:\\.tvsearch\\$(basename "$program")" --gtest_brief=1 </dev/null
