#!/usr/bin/env bash
# Installs what the build, the tests and the demo need on Debian 12, and nothing
# when all of it is there already. 32-bit Wine does not install on this base; the
# i686 build is compiled only, the tests run the x86_64 build under 64-bit Wine.
set -euo pipefail

need=()
have() { command -v "$1" >/dev/null 2>&1; }
have x86_64-w64-mingw32-g++-win32 || need+=(g++-mingw-w64-x86-64-win32)
have i686-w64-mingw32-g++-win32   || need+=(g++-mingw-w64-i686-win32)
have x86_64-w64-mingw32-windres   || need+=(binutils-mingw-w64-x86-64)
have i686-w64-mingw32-windres     || need+=(binutils-mingw-w64-i686)
have wine                         || need+=(wine wine64)
[ -x /usr/lib/wine/wine64 ]       || need+=(wine64)
have Xvfb                         || need+=(xvfb xauth)
have gcab                         || need+=(gcab)
have osslsigncode                 || need+=(osslsigncode)
have openssl                      || need+=(openssl)
have import                       || need+=(imagemagick)
have cmake                        || need+=(cmake)
have make                         || need+=(make)
have python3                      || need+=(python3)
[ -f /usr/src/googletest/CMakeLists.txt ] || need+=(googletest)

[ ${#need[@]} -eq 0 ] && exit 0

echo "Installing: ${need[*]}"
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq >/dev/null
$SUDO apt-get install -y -qq --no-install-recommends "${need[@]}" >/dev/null
