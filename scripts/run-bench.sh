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

# Size of the program without its cabinet (the cabinet is stored whole as one
# resource), beside a one-dialog program built with the same toolchain and flags.
echo "Size (bytes): ours = SETUP.EXE less its cabinet; reference = one-dialog program, same build"
printf "%-28s %8s %10s %12s %14s %8s\n" build "" ours reference "" ratio
for arch in x64 i686; do
  exe=$top/build/$arch/SETUP.EXE cab=$top/build/$arch/payload/setup.cab
  minimal=$top/build/$arch/bench/minimal/minimal_dialog.exe
  if [ -f "$exe" ] && [ -f "$cab" ] && [ -f "$minimal" ]; then
    ours=$(( $(stat -c %s "$exe") - $(stat -c %s "$cab") )) reference=$(stat -c %s "$minimal")
    awk -v a="$arch" -v o="$ours" -v r="$reference" \
      'BEGIN { printf "%-28s %8s %10d %12d %14s %8.2f\n", "SETUP.EXE " a, "", o, r, "", o / r }'
  fi
done
echo "Why: the static C++ runtime and its exception unwinder, linked into the one file, and the code,"
echo "dialogs and lists of 18 pages. The runtime's demangler is kept out; symbols are stripped."

echo
echo "Start-up (median of 5 rounds, ms): ours = SETUP.EXE to its first page; reference = one-dialog program"
printf "%-28s %8s %10s %12s %14s %8s\n" work "" ours reference "" ratio
wine "$b/bench/startup_bench.exe" "$(winepath -w "$b/SETUP.EXE" 2>/dev/null)" \
  "$(winepath -w "$b/bench/minimal/minimal_dialog.exe" 2>/dev/null)" 5 </dev/null 2>/dev/null | tr -d '\r'
echo "Why: before its frame opens SETUP.EXE unpacks its cabinet, reads setup.ini and checks the"
echo "machine, in that order by design; the reference opens its dialog at once."

echo
echo "Extraction (median of 5 rounds, ms): ours = list + one pass per member, as SETUP.EXE does"
printf "%-28s %8s %10s %12s %14s %8s\n" cabinet members ours extrac32.exe "program start" ratio
for cab in "$b/payload/setup.cab" "$b/tests/variants/setup_many.cab"; do
  wine "$b/bench/extract_bench.exe" "$(winepath -w "$cab" 2>/dev/null)" 5 </dev/null 2>/dev/null | tr -d '\r'
done
echo "Why (208 members): one pass over the cabinet per member, each member found by its name, is the"
echo "design; the cost grows with the square of the members. The product's cabinet holds 8."

# The install engine's copying: one large file, then whole quiet installs (the
# program's extraction, copy, registration and uninstall entry) against Wine's
# extrac32.exe and one cmd copy of the same files (Wine's expand.exe cannot
# unpack a cabinet of several files into a folder).
echo
echo "File copy (median of 3 rounds, ms): ours = copyFileBlocks, SETUP.EXE /Q into an existing folder;"
echo "reference = CopyFileA, extrac32.exe /E of the same cabinet then cmd /c copy of its [Files]"
printf "%-28s %8s %10s %12s %14s %8s\n" work MB ours reference "program start" ratio
wine "$b/bench/file_copy_bench.exe" copy 100 3 </dev/null 2>/dev/null | tr -d '\r'
for pair in "SETUP.EXE:payload/setup.cab" "variants/SETUP_large.EXE:tests/variants/setup_large.cab"; do
  wine "$b/bench/file_copy_bench.exe" install "$(winepath -w "$b/${pair%%:*}" 2>/dev/null)" \
    "$(winepath -w "$b/${pair#*:}" 2>/dev/null)" 3 </dev/null 2>/dev/null | tr -d '\r'
done
echo "Why (copyFileBlocks): the copy goes in blocks of 10,240 bytes through the program's own buffer,"
echo "so that Cancel is seen between blocks and a cut file is never left; CopyFileA copies in one call."

# The service exchanges: SETUP.EXE's request path against curl, both posting the
# same bodies to the reference service, a round of one beside a round of the
# other so that both see the same load. The service runs for this section only,
# in test mode on a free port with a throwaway database, and is stopped at its end.
echo
echo "Service exchanges (ms: median of 10 round trips, of 5 imports; memory in KB): client = SETUP.EXE's"
echo "request path under Wine; curl = one curl process per POST, on the host; same bodies, same service"
(
  work=$(mktemp -d) || exit 1
  service_pid=""
  trap '[ -n "$service_pid" ] && { kill "$service_pid"; wait "$service_pid"; } 2>/dev/null; rm -rf "$work"' EXIT
  command -v curl >/dev/null || { echo "curl is missing: no reference, section left out"; exit 0; }
  python3 "$top/service/tavrin_service.py" --port 0 --test-mode --db "$work/tavrin.db" \
    --port-file "$work/port" --log "$work/service.log" </dev/null >/dev/null 2>>"$work/service.log" &
  service_pid=$!
  port=""
  for _ in $(seq 1 100); do
    [ -s "$work/port" ] && { port=$(cat "$work/port"); break; }
    kill -0 "$service_pid" 2>/dev/null || break
    sleep 0.1
  done
  if [ -z "$port" ]; then
    echo "The TavRin service did not listen within 10 s; its log:"
    cat "$work/service.log"
    exit 1
  fi
  printf "%-32s %8s %8s %6s %10s %9s %9s %9s\n" exchange client curl ratio "curl start" \
    "peak WS" "WS start" "curl RSS"
  # The driver: starts service_bench.exe, hands it a round at a time, runs curl's
  # round beside it (before it in every other round), then gives it curl's
  # figures: medians of a round trip, an import and starting curl alone, in ms,
  # and the largest resident size of a curl process, in KB (from GNU time: a
  # child of this Python would count Python's own size, which it starts with).
  timeout 900 python3 - "$b/bench/service_bench.exe" "http://127.0.0.1:$port" "$work" \
    "$(winepath -w "$work" 2>/dev/null)" <<'EOF'
import json, os, subprocess, sys, time, urllib.parse, urllib.request

program, url, work, folder = sys.argv[1:5]
rounds, imports = 10, 5
registration = url + "/servlet/bookmarks.servlet.install.registrationServlet"
import_url = url + "/servlet/bookmarks.servlet.install.ImportServlet"
bench = subprocess.Popen(["wine", program, url, folder, str(rounds), str(imports)],
                         stdin=subprocess.PIPE, stdout=subprocess.PIPE)


def median(values):
    return sorted(values)[len(values) // 2]


def answer():
    line = bench.stdout.readline().decode("latin-1").strip()
    if not line.startswith(("ready", "round ", "import ")):
        sys.exit("service_bench: " + (line or "ended without a word"))
    return line


def client():
    bench.stdin.write(b"go\n")
    bench.stdin.flush()
    return float(answer().split()[1])


def timed(command):
    start = time.perf_counter()
    done = subprocess.run(command, stdout=subprocess.PIPE, stdin=subprocess.DEVNULL)
    return (time.perf_counter() - start) * 1000, done.stdout


def post(name, target):
    took, status = timed(["curl", "-s", "-o", "/dev/null", "-w", "%{http_code}",
                          "--data-binary", "@%s/%s" % (work, name),
                          "-H", "Content-Type: application/x-www-form-urlencoded", target])
    if status != b"200":
        sys.exit("curl: %s answered %s" % (name, status.decode() or "nothing"))
    return took


def curl_round(r):
    return post("cu-%02d.txt" % r, registration) + post("add-%02d.txt" % r, registration)


def curl_import(i):
    return post("import-%d.txt" % i, import_url)


def side_by_side(count, ours, theirs):
    mine, reference = [], []
    for n in range(count):
        if n % 2:
            reference.append(theirs(n))
            mine.append(ours())
        else:
            mine.append(ours())
            reference.append(theirs(n))
    return mine, reference


try:
    answer()  # "ready": the bodies are written
    _, round_trips = side_by_side(rounds, client, lambda n: curl_round(n + 1))
    # curl's imports go to its own accounts, named by the passports of its sign-ups.
    with open(work + "/shortcuts.txt", "rb") as lines_file:
        lines = lines_file.read()
    for i in range(imports):
        with open("%s/add-%02d.txt" % (work, rounds - i % rounds), "rb") as form:
            user = urllib.parse.parse_qs(form.read().decode("latin-1"))["UserCode"][0]
        with urllib.request.urlopen(url + "/__account?user=" + urllib.parse.quote(user)) as reply:
            passport = json.load(reply)["passports"][0]
        with open("%s/import-%d.txt" % (work, i), "wb") as body:
            body.write(b"passport=" + passport.encode() + b"\r\n" + lines)
    _, import_times = side_by_side(imports, client, curl_import)
    starts = [timed(["curl", "--version"])[0] for _ in range(rounds)]
    peak = -1
    if os.access("/usr/bin/time", os.X_OK):  # the sign-up and import again, measured alone
        for name, target in (("add-01.txt", registration), ("import-0.txt", import_url)):
            subprocess.run(["/usr/bin/time", "-f", "%M", "-o", work + "/rss", "curl", "-s", "-o",
                            "/dev/null", "--data-binary", "@%s/%s" % (work, name), "-H",
                            "Content-Type: application/x-www-form-urlencoded", target],
                           stdin=subprocess.DEVNULL)
            with open(work + "/rss") as rss:
                peak = max(peak, int(rss.read().split()[-1]))
    bench.stdin.write(b"reference %.3f %.3f %.3f %d\n"
                      % (median(round_trips), median(import_times), median(starts), peak))
    bench.stdin.close()
    sys.stdout.write(bench.stdout.read().decode("latin-1").replace("\r", ""))
finally:
    if bench.stdin and not bench.stdin.closed:
        bench.stdin.close()
    bench.wait()
EOF
)

# The component search's walk (page 103, one drive) against a plain recursive
# FindFirstFileA walk of the same tree: 5,000 folders (50 with 99 below each),
# 20 files in each, 100,000 in all; one folder in 100 holds a copy of
# TAVRIN.DLL without a version block, which the search keeps. Each walk runs in
# a process of its own; memory is its working set in KB, at its peak and when
# the walk began.
echo
echo "Component search (median of 3 rounds, ms; memory in KB): ours = the search page's folder walk,"
echo "reference = a plain recursive FindFirstFileA walk of the same tree"
printf "%-24s %8s %8s %7s %10s %10s %6s %9s %9s %9s %9s\n" tree folders files found ours plain ratio \
  "peak WS" "WS start" "plain pk" "plain st"
tree=$WINEPREFIX/drive_c/searchbench
rm -rf "$tree"
python3 - "$tree" <<'PY'
import os, sys
root = sys.argv[1]
n = 0
for top in range(50):
    for sub in range(100):
        folder = os.path.join(root, "dir%02d" % top) if sub == 0 else os.path.join(root, "dir%02d" % top, "sub%02d" % sub)
        os.makedirs(folder)
        for f in range(20):
            name = "TAVRIN.DLL" if f == 0 and n % 100 == 0 else "file%02d.dat" % f
            with open(os.path.join(folder, name), "w") as out:
                out.write("bench")
        n += 1
PY
wine "$b/bench/search_bench.exe" 'C:\searchbench' 3 </dev/null 2>/dev/null | tr -d '\r'
echo "Why: the walk lets the page's messages through after every entry, so that Cancel and the"
echo "window stay alive; without that pump the walk is about 1.5 times the plain one."
rm -rf "$tree"
