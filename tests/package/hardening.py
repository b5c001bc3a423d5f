#!/usr/bin/env python3
"""Looks for what cmake/QuilletHardening.cmake asks for in programs and shared libraries.

Usage: hardening.py [OPTION] FILE|FOLDER...   names what each of them lacks; of a folder all that is in it
  --fortified  asks for checked copies as well, which only optimised code has
  --all        and for a stack that is read page by page, which shows where something large lies on it
  --planted    the other way round: each must lack whatever is looked for, or the eye is blind
"""
import pathlib
import re
import struct
import subprocess
import sys

# hardening-check's lines.
PROGRAM_MOVES = "Position Independent Executable"
ELF = (PROGRAM_MOVES, "Stack protected", "Read-only relocations", "Immediate binding")
FORTIFIED = "Fortify Source functions"
STACK_CLASH = "Stack clash protection"
CONTROL_FLOW = "Control flow integrity"
# Where an indirect jump may land on x86-64. hardening-check looks for the linker's mark instead, which is there only when
# the system's start-up code is compiled so, too; Debian's has two of these and no mark.
LANDING, LANDINGS_AT_START = b"\xf3\x0f\x1e\xfa", 2
X86_64 = 62
# Bits of DllCharacteristics in the optional header.
PE = {"high entropy addresses": 0x20, "addresses that change": 0x40, "no execution of data": 0x100}
ELF_PROGRAMS = (2, 3)


def kind(path):
    """ELF or PE for what can be loaded, else none."""
    with path.open("rb") as file:
        head = file.read(18)
    if head[:4] == b"\x7fELF" and struct.unpack_from("<H", head, 16)[0] in ELF_PROGRAMS:
        return "ELF"
    return "PE" if head[:2] == b"MZ" else None


def lacking_of_elf(path, options):
    report = subprocess.run(["hardening-check", "--nocolor", path], check=False, capture_output=True, text=True)
    found = dict(re.findall(r"^ (.*?): (\w+)", report.stdout, re.MULTILINE))
    if not {*ELF, FORTIFIED, STACK_CLASH} <= set(found):
        sys.exit(f"hardening-check says of {path}\n{report.stdout}{report.stderr}")
    # Of a library it says that it is no program.
    library = "no, regular shared library" in report.stdout
    missing = [feature for feature in ELF if found[feature] != "yes" and not (library and feature == PROGRAM_MOVES)]
    data = path.read_bytes()
    if struct.unpack_from("<H", data, 18)[0] == X86_64 and data.count(LANDING) <= LANDINGS_AT_START:
        missing.append(CONTROL_FLOW)
    # Where no function is called that could be checked it says "unknown".
    if "--fortified" in options and found[FORTIFIED] == "no":
        missing.append(FORTIFIED)
    if "--all" in options:
        missing += [feature for feature in (FORTIFIED, STACK_CLASH) if found[feature] != "yes"]
    return missing


def lacking_of_pe(path):
    data = path.read_bytes()
    header = struct.unpack_from("<I", data, 0x3C)[0]
    if data[header:header + 4] != b"PE\0\0":
        sys.exit(f"{path} has no PE header")
    characteristics = struct.unpack_from("<H", data, header + 24 + 70)[0]
    # Without relocations nothing can move, whatever the header allows.
    stripped = struct.unpack_from("<H", data, header + 22)[0] & 1
    return [feature for feature, bit in PE.items() if not characteristics & bit] + ["relocations"] * stripped


def lacking(path, options):
    return lacking_of_elf(path, options) if kind(path) == "ELF" else lacking_of_pe(path)


def files(arguments):
    for argument in map(pathlib.Path, arguments):
        if not argument.exists():
            sys.exit(f"{argument} is not there")
        candidates = sorted(argument.rglob("*")) if argument.is_dir() else [argument]
        for path in candidates:
            if path.is_file() and (path == argument or not path.is_symlink()) and kind(path):
                yield path


def main():
    options = {argument for argument in sys.argv[1:] if argument.startswith("--")}
    found = {path: lacking(path, options)
             for path in files(argument for argument in sys.argv[1:] if argument not in options)}
    if not found:
        sys.exit("there is no program and no shared library")
    failures = 0
    for path, missing in found.items():
        if "--planted" in options:
            good = set([*ELF, CONTROL_FLOW] if kind(path) == "ELF" else PE) <= set(missing)
        else:
            good = not missing
        failures += not good
        print(f"{'ok  ' if good else 'FAIL'} {path}: lacks {', '.join(missing) or 'nothing'}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
