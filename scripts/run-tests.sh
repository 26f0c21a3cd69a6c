#!/usr/bin/env bash
# Runs every test: the host-side tests (the TavRin service's and the stamping
# tool's), then the Windows test programs under Wine (through ctest) against the
# TavRin service in test mode. Starts its own virtual display, wineserver and
# service, and stops them at the end, also when a test fails.
set -uo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
. "$top/scripts/wine-session.sh"

service_dir=$top/build/service
SERVICE_PID=""

# The service on a free port with a fresh database; its address goes to the test
# programs as TAVRIN_SERVICE_URL (Wine passes the environment through).
service_start() {
  mkdir -p "$service_dir" || return 1
  rm -f "$service_dir"/tavrin.db* "$service_dir/port" "$service_dir/service.log"
  python3 "$top/service/tavrin_service.py" --port 0 --test-mode \
    --db "$service_dir/tavrin.db" --port-file "$service_dir/port" \
    --log "$service_dir/service.log" </dev/null >/dev/null 2>>"$service_dir/service.log" &
  SERVICE_PID=$!
  local port="" _
  for _ in $(seq 1 100); do
    [ -s "$service_dir/port" ] && { port=$(cat "$service_dir/port"); break; }
    kill -0 "$SERVICE_PID" 2>/dev/null || break
    sleep 0.1
  done
  if [ -z "$port" ]; then
    if kill -0 "$SERVICE_PID" 2>/dev/null; then
      echo "The TavRin service did not listen within 10 s; its log:" >&2
    else
      echo "The TavRin service stopped before it listened; its log:" >&2
    fi
    cat "$service_dir/service.log" >&2 2>/dev/null
    service_stop
    return 1
  fi
  export TAVRIN_SERVICE_URL=http://127.0.0.1:$port
  echo "TavRin service at $TAVRIN_SERVICE_URL, log in build/service/service.log"
}

service_stop() {
  [ -n "$SERVICE_PID" ] || return 0
  kill "$SERVICE_PID" 2>/dev/null
  wait "$SERVICE_PID" 2>/dev/null
  SERVICE_PID=""
  return 0
}

trap 'service_stop; wine_session_stop' EXIT

status=0
echo "TavRin service tests"
python3 -m unittest discover -s "$top/service/tests" || status=1
echo "Partner stamping tool tests"
python3 -m unittest discover -s "$top/tools/stamp" || status=1

wine_session_start || exit 1
service_start || exit 1
ctest --test-dir "$top/build/x64" --output-on-failure --timeout 600 || status=1
exit $status
