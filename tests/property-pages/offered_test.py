#!/usr/bin/env python3
"""Whether the table of docs/property-pages.md is right: it names every operation of a session, once; those that it puts on a
page are called by the pages' models, and those that it leaves out are not. Usage: offered_test.py ROOT"""
import pathlib
import re
import sys


def operations(header):
    """The operations that Session declares."""
    body = re.search(r"class Session \{\n  public:(.*?)\n  private:", header, re.DOTALL).group(1)
    code = re.sub(r"//.*", "", body)
    names = re.findall(r"\b([A-Z]\w+)\((?=[^()]*(?:\([^()]*\)[^()]*)*\)\s*;)", code)
    return {name for name in names if name != "Session"}


def table(page):
    """Operation -> where it is offered; empty where it is not, and why is told."""
    rows = {}
    section = page.split("## What is offered where", 1)[1]
    for line in section.splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if not line.startswith("| `"):
            continue
        for name in re.findall(r"`(\w+)`", cells[0]):
            if name in rows:
                sys.exit(f"{name} stands in the table twice")
            if len(cells[1]) < 3:
                sys.exit(f"{name}: neither where nor why not")
            rows[name] = "" if cells[1].startswith("Not offered") else cells[1]
    return rows


def main():
    root = pathlib.Path(sys.argv[1])
    known = operations((root / "include/quillet/client/Session.h").read_text(encoding="utf-8"))
    if len(known) < 80:
        sys.exit(f"only {len(known)} operations were found in Session.h")
    rows = table((root / "docs/property-pages.md").read_text(encoding="utf-8"))
    models = "\n".join(path.read_text(encoding="utf-8") for path in (root / "property-pages/model").glob("*.cpp"))
    called = {name for name in known if re.search(rf"\bsession\.{name}\(", models)}
    mistakes = [f"{name} is not in the table" for name in sorted(known - rows.keys())]
    mistakes += [f"{name} is in the table and no operation" for name in sorted(rows.keys() - known)]
    mistakes += [f"{name} is said to be on a page ({rows[name]}), and no page calls it"
                 for name in sorted(rows.keys() & known) if rows[name] and name not in called]
    mistakes += [f"{name} is said not to be offered, and a page calls it"
                 for name in sorted(called & rows.keys()) if not rows[name]]
    print("\n".join(mistakes) or f"{len(known)} operations, {sum(map(bool, rows.values()))} on pages")
    sys.exit(1 if mistakes else 0)


if __name__ == "__main__":
    main()
