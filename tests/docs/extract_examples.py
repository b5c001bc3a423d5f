#!/usr/bin/env python3
"""Writes the C++ of the documents into a folder, to be compiled: each complete program as a file of its own below
programs/, and the fragments of each document as one file of tests. Usage: extract_examples.py ROOT FOLDER
"""
import pathlib
import re
import sys

sys.dont_write_bytecode = True
import documents  # noqa: E402

INCLUDE = re.compile(r"\s*#include ")


def located(block):
    """The text of a block, so that a compiler's message names the document."""
    return f'#line {block.line} "{block.document.name}"\n{block.text}'


def without_includes(text):
    return "".join(("\n" if INCLUDE.match(line) else line) for line in text.splitlines(keepends=True))


def fragment(block):
    text = without_includes(located(block))
    if block.directive == "gtest":
        return f"namespace {block.name} {{\n{text}}} // namespace {block.name}\n"
    fixture = "ConnectedDocumentTest" if block.directive == "connected" else "DocumentTest"
    return (f"class {block.name} : public {fixture} {{}};\nTEST_F({block.name}, Runs) {{\n"
            f'TakeFilesOf("{block.document.name}");\n{text}}}\n')


def fragments_of(document, frame, directives):
    """A source file with the document's fragments of these kinds; nothing when there is none."""
    blocks = [block for block in document.blocks if block.is_fragment and block.directive in directives]
    includes = sorted({line.strip() for block in blocks for line in block.text.splitlines() if INCLUDE.match(line)})
    return blocks and "\n".join([f"// Fragments of {document.name}.", f'#include "{frame}"', *includes, "",
                                 *(fragment(block) for block in blocks)])


def wanted_files(root, folder):
    """What there is to write, by its path."""
    wanted = {}
    for document in documents.read_documents(root):
        for block in document.blocks:
            if block.is_program:
                wanted[folder / "programs" / f"{block.name}.cpp"] = located(block)
        for name, text in documents.described_files(document).items():
            wanted[folder / "files" / document.name / name] = text
        stem = re.sub(r"\W", "_", document.name)
        wanted[folder / "fragments" / f"{stem}.cpp"] = fragments_of(document, "Frame.h", ("in-function", "connected"))
        wanted[folder / "fragments" / f"{stem}_gtest.cpp"] = fragments_of(document, "ProviderTest.h", ("gtest",))
    return {path: text for path, text in wanted.items() if text}


def update(path, text):
    """Leaves a file that is right already alone, so that it is not compiled again."""
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


def main(root, folder):
    wanted = wanted_files(root, folder)
    for stale in (path for path in folder.rglob("*") if path.is_file() and path not in wanted):
        stale.unlink()
    for path, text in wanted.items():
        update(path, text)


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve())
