# Sourced by the test and demo scripts: one Wine machine on one virtual display.
#   wine_session_start   boots (once) a template prefix with a Wine virtual desktop,
#                        copies it to a fresh prefix, starts Xvfb and a persistent
#                        wineserver, boots the prefix with all output detached
#   wine_session_stop    stops the wineserver and the Xvfb it started
# Environment afterwards: WINEPREFIX, DISPLAY, WINEDEBUG, WINEDLLOVERRIDES.

top=${top:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)}
WINE_ROOT=${WINE_ROOT:-$top/build/wine}
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree=;mshtml="
# WinInet honours the proxy variables; the tests talk to the loopback address.
unset http_proxy HTTP_PROXY https_proxy HTTPS_PROXY
export no_proxy=127.0.0.1,localhost
XVFB_PID=""

wine_quiet() { wine "$@" </dev/null >/dev/null 2>&1; }

# Xvfb picks a free display itself and writes its number once it listens: two
# sessions started at once never share one.
start_xvfb() {
  local number
  number=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$number" </dev/null >/dev/null 2>&1 &
  XVFB_PID=$!
  for _ in $(seq 1 100); do
    if [ -s "$number" ]; then
      export DISPLAY=:$(tr -d '[:space:]' <"$number")
      rm -f "$number"
      return 0
    fi
    kill -0 $XVFB_PID 2>/dev/null || break
    sleep 0.1
  done
  rm -f "$number"
  kill $XVFB_PID 2>/dev/null; XVFB_PID=""
  echo "could not start Xvfb" >&2; return 1
}

make_template() {
  local t=$WINE_ROOT/template
  [ -f "$t/.booted" ] && return 0
  rm -rf "$t"; mkdir -p "$t"
  echo "Booting a Wine template prefix (once per build folder)..."
  WINEPREFIX=$t wine_quiet wineboot -i
  # A virtual desktop draws frames and closes modal boxes at once (without a
  # window manager every dialog takes 2 s to close).
  WINEPREFIX=$t wine_quiet reg add 'HKCU\Software\Wine\Explorer' /v Desktop /d Default /f
  WINEPREFIX=$t wine_quiet reg add 'HKCU\Software\Wine\Explorer\Desktops' /v Default /d 1024x768 /f
  WINEPREFIX=$t wineserver -w
  touch "$t/.booted"
}

wine_session_start() {
  [ -n "${USE_DISPLAY:-}" ] && export DISPLAY=$USE_DISPLAY || start_xvfb
  make_template
  export WINEPREFIX=$WINE_ROOT/prefix
  rm -rf "$WINEPREFIX"
  cp -a "$WINE_ROOT/template" "$WINEPREFIX"
  # Wine's background services must not inherit a pipe of whoever runs the tests.
  wineserver -p </dev/null >/dev/null 2>&1
  wine_quiet cmd /c exit
}

wine_session_stop() {
  [ -n "${WINEPREFIX:-}" ] && wineserver -k >/dev/null 2>&1
  [ -n "$XVFB_PID" ] && kill $XVFB_PID 2>/dev/null
  XVFB_PID=""
  return 0
}
