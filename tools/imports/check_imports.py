#!/usr/bin/env python3
"""Checks that a built SETUP.EXE starts on every Windows it names.

    check_imports.py [--objdump TOOL] [--allowed windows4.txt] SETUP.EXE

Reads the file's import table and header with objdump and fails (exit 1, one
line per fault) on a DLL or a function that windows4.txt does not allow, on an
import by ordinal, and on a header that asks for more than Windows 4.0.
"""
import argparse
import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def read_allowed(path):
    """{dll in lower case: {function: source}} from windows4.txt."""
    allowed, dll = {}, None
    with open(path, encoding="utf-8") as f:
        for number, line in enumerate(f, 1):
            line = line.split("#", 1)[0].strip()
            if not line:
                continue
            section = re.fullmatch(r"\[(.+)\]", line)
            if section:
                dll = section.group(1).lower()
                allowed.setdefault(dll, {})
                continue
            fields = line.split()
            if dll is None or len(fields) != 2:
                raise ValueError(f"{path}:{number}: not 'function source' in a [dll] section")
            allowed[dll][fields[0]] = fields[1]
    return allowed


def parse_objdump(text):
    """(header values, [(dll, function or '#ordinal')]) from `objdump -p`."""
    header = {}
    for key in ("MajorOSystemVersion", "MinorOSystemVersion", "MajorSubsystemVersion",
                "MinorSubsystemVersion"):
        match = re.search(rf"^{key}\s+(\d+)", text, re.M)
        header[key] = int(match.group(1)) if match else None
    imports, dll = [], None
    for line in text.splitlines():
        named = re.match(r"\s*DLL Name: (\S+)", line)
        if named:
            dll = named.group(1)
            continue
        if dll is None:
            continue
        if not line.strip():
            continue
        entry = re.fullmatch(r"\s+[0-9a-f]+\s+(\d+)(?:\s+(\S+))?(?:\s+<none>)?\s*", line)
        if entry:
            imports.append((dll, entry.group(2) or "#" + entry.group(1)))
        elif not line.lstrip().startswith("vma:"):
            dll = None  # the end of this DLL's list
    return header, imports


def faults(header, imports, allowed):
    found = []
    for key, most in (("MajorOSystemVersion", 4), ("MajorSubsystemVersion", 4)):
        minor = key.replace("Major", "Minor")
        version = (header.get(key), header.get(minor))
        if None in version or version > (most, 0):
            found.append(f"header: {key[5:]} {version[0]}.{version[1]} asks for more than Windows 4.0")
    for dll, function in imports:
        names = allowed.get(dll.lower())
        if names is None:
            found.append(f"{dll}: not a DLL that Windows always takes from its system folder")
        elif function not in names:
            found.append(f"{dll}: {function} is not known on every Windows the program runs on")
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program")
    parser.add_argument("--objdump", default="x86_64-w64-mingw32-objdump")
    parser.add_argument("--allowed", default=os.path.join(HERE, "windows4.txt"))
    args = parser.parse_args()
    text = subprocess.run([args.objdump, "-p", args.program], check=True, capture_output=True,
                          text=True).stdout
    header, imports = parse_objdump(text)
    if not imports:
        print(f"{args.program}: no import table read", file=sys.stderr)
        return 1
    found = faults(header, imports, read_allowed(args.allowed))
    for fault in found:
        print(f"{args.program}: {fault}", file=sys.stderr)
    if not found:
        dlls = sorted({dll for dll, _ in imports}, key=str.lower)
        print(f"{args.program}: {len(imports)} imports from {', '.join(dlls)}: all on Windows 95 and NT 4")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
