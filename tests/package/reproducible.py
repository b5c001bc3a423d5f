#!/usr/bin/env python3
"""Compiles some sources of the build tree twice more, in two folders, and compares the bytes; looks for the folder of the
sources in what is installed. scripts/reproducible does the same with everything, which takes too long for a test.

Usage: reproducible.py SOURCES BUILD WORK INSTALLED
"""
import json
import pathlib
import shlex
import shutil
import subprocess
import sys

# Trace log and object paths: they have time, file names and tables of texts. The second alone shows what the flag does.
PARTS = ("Common/Src", "Lum2InstUtility")
HEADERS = ("Common", "Lum2InstUtility", "Src", "include", "platform")
PREFIX_MAP = "-ffile-prefix-map"


def compiled(sources, build, place, parts, keep):
    """The objects that the build tree's own commands make in a copy of the sources, by name."""
    shutil.rmtree(place, ignore_errors=True)
    for part in HEADERS:
        shutil.copytree(sources / part, place / part)
    shutil.copytree(build / "include", place / "build/include")
    objects = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        file = pathlib.Path(entry["file"])
        # Of an object library only: what a program compiles for itself is not installed.
        if not any(file.is_relative_to(sources / part) for part in parts):
            continue
        # The build tree is a folder of the sources: what is longer is replaced first.
        command = entry["command"].replace(str(build), str(place / "build")).replace(str(sources), str(place))
        words = [word for word in shlex.split(command) if keep(word)]
        if pathlib.Path(words[0]).name == "ccache":
            del words[0]
        made = place / "build" / (file.stem + ".o")
        words[words.index("-o") + 1] = str(made)
        (place / "build").mkdir(exist_ok=True)
        subprocess.run(words, cwd=place / "build", check=True)
        objects[file.name] = made.read_bytes()
    return objects


def twice(sources, build, work, parts, keep):
    """The names of all objects, and of those that are not the same twice."""
    first = compiled(sources, build, work / "a", parts, keep)
    second = compiled(sources, build, work / "another/folder", parts, keep)
    return list(first), [name for name in first if first[name] != second[name]]


def main():
    sources, build, work, installed = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    failures = 0
    # The headers of Windows take long.
    described = "-g" in (build / "compile_commands.json").read_text(encoding="utf-8").split()
    names, different = twice(sources, build, work, PARTS if described else PARTS[1:], lambda word: True)
    print(f"{len(names)} objects compiled twice, {len(different)} differ", *different)
    failures += bool(different) or not names
    if described:
        # Without the flag the debug information names the folders; else nothing was looked at.
        _, seen = twice(sources, build, work, PARTS[1:], lambda word: not word.startswith(PREFIX_MAP))
        print(f"{len(seen)} would differ without {PREFIX_MAP}")
        failures += not seen
    files = [path for path in installed.rglob("*") if path.is_file()]
    telling = [path for path in files if str(sources).encode() in path.read_bytes().replace(str(installed).encode(), b"")]
    print(f"{len(files)} installed files, {len(telling)} name {sources}", *telling)
    failures += bool(telling) or not files
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
