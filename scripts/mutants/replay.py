#!/usr/bin/env python3
"""Replays the faults of faults.txt: each one alone, in a copy of the source tree
(build/mutants/tree, or build/mutants/<commit> with --at; kept between runs so
that builds are incremental), built for x64 and run against the Windows tests,
which must pass without a fault first. Prints which tests each fault fails and
exits 1 when one of them passes every test, or no longer applies to the source.

  scripts/mutants/replay.py              every fault, every test
  scripts/mutants/replay.py --quick 3 7  faults 3 and 7, stopping at the first failure
  scripts/mutants/replay.py --at 5f1b3cd the tests of an earlier commit against the same faults
"""
import argparse
import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
TOP = os.path.dirname(os.path.dirname(HERE))
REPORT = os.path.join(TOP, "build", "mutants", "report.txt")


def read_faults(path):
    faults, current = [], None
    with open(path, encoding="utf-8") as f:
        for line in f.read().splitlines():
            if line.startswith("== "):
                current = {"title": line[3:], "file": None, "old": [], "new": []}
                faults.append(current)
            elif current is None or line.startswith("#") or not line.strip():
                continue
            elif current["file"] is None:
                current["file"] = line.strip()
            elif line[:1] in "-+":
                current["old" if line[0] == "-" else "new"].append(line[1:])
            else:
                raise SystemExit(f"faults.txt: cannot read '{line}' in '{current['title']}'")
    return faults


COPY = None  # build/mutants/<commit or "tree">: a copy of the source tree with its own builds


def tree_files(commit):
    """(name, bytes) of every tracked file: of the working tree, or of `commit`."""
    if commit is None:
        listing = subprocess.run(["git", "ls-files", "-z"], cwd=TOP, check=True, capture_output=True).stdout
        for name in filter(None, listing.decode().split("\0")):
            if os.path.isfile(os.path.join(TOP, name)):
                with open(os.path.join(TOP, name), "rb") as f:
                    yield name, f.read()
        return
    listing = subprocess.run(["git", "ls-tree", "-r", "-z", "--name-only", commit], cwd=TOP, check=True,
                             capture_output=True).stdout
    for name in filter(None, listing.decode().split("\0")):
        yield name, subprocess.run(["git", "show", f"{commit}:{name}"], cwd=TOP, check=True,
                                   capture_output=True).stdout


def sync_copy(commit):
    """The tracked files into the copy, and no other; unchanged files keep their times."""
    kept = set()
    for name, data in tree_files(commit):
        kept.add(name)
        target = os.path.join(COPY, name)
        if os.path.exists(target):
            with open(target, "rb") as f:
                if f.read() == data:
                    continue
        os.makedirs(os.path.dirname(target), exist_ok=True)
        with open(target, "wb") as f:
            f.write(data)
        if name.endswith((".sh", ".py")):
            os.chmod(target, 0o755)
    for folder, subfolders, files in os.walk(COPY):
        if folder == COPY and "build" in subfolders:
            subfolders.remove("build")  # the copy's own builds
        for file in files:
            name = os.path.relpath(os.path.join(folder, file), COPY)
            if name not in kept:
                os.remove(os.path.join(folder, file))


def build():
    folder = os.path.join(COPY, "build", "x64")
    if not os.path.exists(os.path.join(folder, "CMakeCache.txt")):
        subprocess.run(["cmake", "-S", COPY, "-B", folder, "-DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-x86_64.cmake",
                        "-DCMAKE_BUILD_TYPE=MinSizeRel", "-DTAVRIN_TESTS=ON"], cwd=COPY, check=True,
                       stdout=subprocess.DEVNULL)
    done = subprocess.run(["cmake", "--build", folder, "-j2"], cwd=COPY, capture_output=True, text=True,
                          errors="replace")
    return done.returncode == 0, done.stdout[-3000:] + done.stderr[-3000:]


def failed_tests(output):
    """The failed gtest cases and ctest programs named in a run's output."""
    names = []
    for line in output.splitlines():
        case = re.match(r"\[  FAILED  \] (\S+\.\S+)", line)
        program = re.match(r"\s*\d+ - (\S+) \(", line)
        name = case.group(1) if case else program.group(1) if program else None
        if name and name not in names:
            names.append(name)
    return names


def run_tests(quick):
    command = [os.path.join(COPY, "scripts", "run-tests.sh"), "--windows-only"]
    if quick:
        command.append("--stop-on-failure")
    run = subprocess.run(command, cwd=COPY, capture_output=True, text=True, errors="replace")
    return run.returncode == 0, failed_tests(run.stdout + run.stderr)


def replay(number, fault, quick):
    path = os.path.join(COPY, fault["file"])
    with open(path, encoding="utf-8", newline="") as f:
        original = f.read()
    eol = "\r\n" if "\r\n" in original else "\n"
    old, new = eol.join(fault["old"]) + eol, eol.join(fault["new"]) + eol
    if original.count(old) != 1:
        return "does not apply", []
    try:
        with open(path, "w", encoding="utf-8", newline="") as f:
            f.write(original.replace(old, new))
        built, log = build()
        if not built:
            print(log, file=sys.stderr)
            return "does not build", []
        passed, names = run_tests(quick)
        return ("SURVIVED" if passed else "caught"), names
    finally:
        with open(path, "w", encoding="utf-8", newline="") as f:
            f.write(original)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("numbers", nargs="*", type=int, help="the faults to replay (1-based); all without")
    parser.add_argument("--quick", action="store_true", help="stop each run at its first failing test")
    parser.add_argument("--at", metavar="COMMIT", help="the tree of a commit instead of the working tree")
    args = parser.parse_args()
    global COPY
    COPY = os.path.join(TOP, "build", "mutants", args.at or "tree")
    faults = read_faults(os.path.join(HERE, "faults.txt"))
    chosen = args.numbers or range(1, len(faults) + 1)
    sync_copy(args.at)
    built, log = build()
    if not built:
        print(log, file=sys.stderr)
        return 1
    # A fault is caught only by tests that pass without it.
    passed, names = run_tests(False)
    if not passed:
        print(f"The tests fail without a fault: {', '.join(names)}", file=sys.stderr)
        return 1
    status, lines = 0, []
    for number in chosen:
        fault = faults[number - 1]
        outcome, names = replay(number, fault, args.quick)
        line = f"{number:2} {outcome:14} {fault['title']}" + (f"\n     failed: {', '.join(names)}" if names else "")
        print(line, flush=True)
        lines.append(line)
        status |= outcome != "caught"
    os.makedirs(os.path.dirname(REPORT), exist_ok=True)
    with open(REPORT, "w", encoding="utf-8") as f:
        f.write("\n".join(lines) + "\n")
    return status


if __name__ == "__main__":
    sys.exit(main())
