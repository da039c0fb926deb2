#!/usr/bin/env python3
"""Tells every #include line that reaches for what its folder must not know, and ends with 1 if there is one.

usage: include_graph.py ROOT
"""

import re
import sys
from pathlib import Path

# What each library knows of beside itself, and by way of those; an arrow more is a decision.
LIBRARIES = {
    "libs/zyl/log": [],
    "libs/zyl": ["libs/zyl/log"],
    "libs/edid_lib": ["libs/zyl/log"],
    "libs/zyl/curl": ["libs/zyl"],
    "libs/zyl/qt": ["libs/zyl"],
    "libs/lnx": ["libs/zyl"],
    "libs/engine_lib": ["libs/lnx"],
    "libs/vgn": ["libs/lnx"],
    "libs/control_lib": ["libs/edid_lib", "libs/engine_lib", "libs/vgn"],
    "libs/control_comm": [],
    "app": ["libs/control_lib", "libs/zyl/qt"],
}
ALL_LIBRARIES = [folder for folder in LIBRARIES if folder != "app"]
AROUND = {
    "tools": ALL_LIBRARIES,
    "sim": ALL_LIBRARIES,
    "test_support": ALL_LIBRARIES + ["app"],
    "tests": ALL_LIBRARIES + ["app", "sim", "tools", "test_support"],
    "fuzz": ALL_LIBRARIES + ["app", "sim", "tools", "test_support"],
    "bench": ALL_LIBRARIES + ["app", "sim", "tools", "test_support"],
}
KNOWS = LIBRARIES | AROUND
TEST_CODE = ("tests", "test_support", "fuzz", "bench")

INCLUDE = re.compile(r'\s*#\s*include\s*(["<])([^">]+)[">]')


def known_to(folder):
    """The folders that a source of this folder may include from."""
    found = {folder}
    for below in KNOWS[folder]:
        found |= known_to(below)
    return found


def folder_of(path):
    """The entry of the table that a path belongs to: the longest, as libs/zyl/qt lies in libs/zyl."""
    inside = [folder for folder in KNOWS if path.is_relative_to(folder)]
    return max(inside, key=len, default=None)


def is_test(path):
    return "test" in path.parts or path.parts[0] in TEST_CODE


def included_file(root, source, quote, name):
    """The project's own file that the compiler would take, or None for the headers of others."""
    places = [root / source.parent] if quote == '"' else []
    for place in places + [root / "libs", root]:
        if (place / name).is_file():
            return (place / name).resolve().relative_to(root)
    return None


def fault(source, included):
    """Why this source must not include that file, or None if it may."""
    folder, other = folder_of(source), folder_of(included)
    if other is None:
        return f"{included} is in no folder that this check knows"
    if is_test(included) and not is_test(source):
        return "only tests may include what is made for tests"
    allowed = known_to(folder)
    if is_test(source):
        allowed |= {"test_support"} | ({"sim"} if folder == "tools" else set())
    if other not in allowed:
        beside = sorted(allowed - {folder})
        return f"{folder} may include " + (f"itself, {', '.join(beside)}" if beside else "itself only")
    return None


def faults_in(root, source):
    if folder_of(source) is None:
        yield f"{source}:1: its folder has no level: give it one in {Path(__file__).name}"
        return
    for number, line in enumerate((root / source).read_text().splitlines(), 1):
        match = INCLUDE.match(line)
        included = included_file(root, source, *match.groups()) if match else None
        why = fault(source, included) if included else None
        if why:
            yield f"{source}:{number}: includes {included}: {why}"


def sources_of(root):
    tops = {"libs"} | {folder.split("/")[0] for folder in KNOWS}
    return sorted(path.relative_to(root) for top in tops for path in (root / top).rglob("*") if path.suffix in (".h", ".cpp"))


def main(arguments):
    if len(arguments) != 1:
        print(__doc__.splitlines()[-1], file=sys.stderr)
        return 2
    root = Path(arguments[0]).resolve()
    sources = sources_of(root)
    faults = [line for source in sources for line in faults_in(root, source)]
    print("\n".join(faults + [f"{len(sources)} sources, {len(faults)} includes that must not be"]))
    return 1 if faults or not sources else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
