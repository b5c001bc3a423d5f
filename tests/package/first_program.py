#!/usr/bin/env python3
"""The first program of README.md, and what the page says of it.

Usage: first_program.py ROOT text                      prints the program
       first_program.py ROOT commands PREFIX           prints the commands that compile and run it after installing
       first_program.py ROOT compare < FILE            compares what it printed with what the page shows
"""
import pathlib
import sys

sys.dont_write_bytecode = True
ROOT = pathlib.Path(sys.argv[1]).resolve()
sys.path.append(str(ROOT / "tests" / "docs"))
import documents  # noqa: E402
import shell_session  # noqa: E402


def main(wanted, *arguments):
    blocks = documents.Document(ROOT, ROOT / "README.md").blocks
    at = next(index for index, block in enumerate(blocks) if block.is_program)
    if wanted == "text":
        print(blocks[at].text, end="")
    elif wanted == "commands":
        commands, = (block.text for block in blocks if block.directive == documents.AFTER_INSTALLING)
        print(commands.replace("/where/you/want", arguments[0]), end="")
    elif wanted == "compare":
        shown, printed = blocks[at + 1], sys.stdin.read()
        if shown.directive != "output" or not shell_session.matches(shown.text.splitlines(), printed.splitlines()):
            sys.exit(f"{shown.place} shows something else than\n{printed}")


if __name__ == "__main__":
    main(*sys.argv[2:])
