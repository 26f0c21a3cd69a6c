# Sourced by the test and demo scripts: the TavRin reference service in test mode.
#   service_start   starts it on a free loopback port with a fresh database in
#                   $service_dir (build/service unless set), and exports its
#                   address as TAVRIN_SERVICE_URL (Wine passes it to the programs)
#   service_stop    stops it
top=${top:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)}
service_dir=${service_dir:-$top/build/service}
SERVICE_PID=""

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
  echo "TavRin service at $TAVRIN_SERVICE_URL, log in ${service_dir#$top/}/service.log"
}

service_stop() {
  [ -n "$SERVICE_PID" ] || return 0
  kill "$SERVICE_PID" 2>/dev/null
  wait "$SERVICE_PID" 2>/dev/null
  SERVICE_PID=""
  return 0
}
