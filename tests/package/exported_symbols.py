#!/usr/bin/env python3
"""Compares what a shared library exports with what the headers mark as its interface.

Usage: exported_symbols.py LIBRARY HEADERS
"""
import pathlib
import re
import subprocess
import sys


def marked(folder):
    """The names of the classes and functions that the headers mark."""
    names = set()
    for header in pathlib.Path(folder).glob("*.h"):
        text = header.read_text(encoding="utf-8")
        names |= set(re.findall(r"(?:class|struct)\s+QUILLET_(?:TEMPLATE_)?API\s+(\w+)", text))
        names |= set(re.findall(r"^QUILLET_API\s[^;{]*?(\w+)\(", text, re.MULTILINE))
    return names


def exported(library):
    listing = subprocess.run(["nm", "-DC", "--defined-only", library], check=True, capture_output=True, text=True)
    for line in listing.stdout.splitlines():
        yield line.split(" ", 2)[2]


def owner(symbol):
    """The class or function that a symbol belongs to."""
    symbol = re.sub(r"^(?:typeinfo name|typeinfo|vtable|VTT|guard variable) for ", "", symbol)
    return re.match(r"\w*", symbol).group()


def main():
    library, headers = sys.argv[1:]
    interface = marked(headers)
    seen = set()
    strangers = []
    for symbol in exported(library):
        seen.add(owner(symbol))
        if owner(symbol) not in interface:
            strangers.append(symbol)
    for symbol in strangers:
        print("exported, but not marked:", symbol)
    print(f"{len(interface)} marked names, {len(seen)} exported")
    # A record without code of its own has no symbol; the facade has many.
    return 1 if strangers or "CQuillet" not in seen else 0


if __name__ == "__main__":
    sys.exit(main())
