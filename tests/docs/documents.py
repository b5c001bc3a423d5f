"""The documents of this tree as their test sees them: blocks of code with what is to be done with each, links, and names
of files. docs/testing.md tells writers of documents the rules.
"""
import dataclasses
import os
import pathlib
import re

DIRECTIVE = re.compile(r"<!--\s*test:\s*(.*?)\s*-->\s*$")
FENCE = re.compile(r"^( *)(```+|~~~+)\s*([\w+-]*)\s*$")
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
CODE_SPAN = re.compile(r"(?<!`)`([^`]+)`(?!`)")
MAIN = re.compile(r"^(int|auto) main\(", re.MULTILINE)
FILE = re.compile(r"(file|append) ([\w.-]+)$")
# Commands for what was installed: tests/package runs those of README.md.
AFTER_INSTALLING = "after installing"
# Commands that show a real machine. They are tried on the simulated one.
ON_A_REAL_MACHINE = "on a real machine"
# Commands whose output is that for a terminal of 80 columns.
ON_A_TERMINAL = "on a terminal"
# Blocks with a server behind them: tests/serving runs them.
SERVED = re.compile(r"served(?: file ([\w.-]+))?$")
# Blocks for what Debian's packages have installed: tests/package/debian runs those of docs/packages.md.
INSTALLED = re.compile(r"installed(?P<by> by root)?(?: file (?P<file>[\w.-]+))?$")
# The guide whose examples tests/python runs.
PYTHON_GUIDE = "docs/python.md"
# What only another system could try, as the text around it says.
UNTRIED = "untried"
# Ways of compiling C++ that is no complete program; see Frame.h.
FRAGMENTS = ("in-function", "connected", "gtest")


@dataclasses.dataclass
class Block:
    document: "Document"
    line: int  # of the first line of the text
    language: str
    directive: str
    text: str
    number: int  # counted from 1 in its document

    @property
    def place(self):
        return f"{self.document.name}:{self.line}"

    @property
    def name(self):
        """A C++ identifier."""
        return re.sub(r"\W", "_", self.document.name.removesuffix(".md")) + f"_{self.number}"

    @property
    def is_program(self):
        return self.language == "cpp" and not self.directive and bool(MAIN.search(self.text))

    @property
    def is_fragment(self):
        return self.language == "cpp" and self.directive in FRAGMENTS


class Document:
    def __init__(self, root, path):
        self.path = path
        self.folder = path.parent
        self.name = path.relative_to(root).as_posix()
        self.blocks = []
        self.prose = []  # (line, text) of what is no code
        self.errors = []
        self._read(path.read_text(encoding="utf-8").splitlines())

    def _read(self, lines):
        directive, directive_line, before, in_list, in_indented = "", 0, "", False, False
        index = 0
        while index < len(lines):
            line, number = lines[index], index + 1
            fence = FENCE.match(line)
            if fence:
                index = self._read_block(lines, index, fence, directive)
                directive, before = "", line
                continue
            index += 1
            found = DIRECTIVE.match(line)
            if found:
                directive, directive_line = found.group(1), number
                continue
            if line.strip() and directive:
                self.errors.append(f"{self.name}:{directive_line}: no block of code follows \"{directive}\"")
                directive = ""
            if re.match(r"\s*([-*]|\d+\.) ", line):
                in_list = True
            elif line.strip() and not line.startswith(" "):
                in_list = False
            # What is indented by four is code as well, and would not be looked at.
            indented = line.startswith("    ") and bool(line.strip())
            if indented and not in_list and not before.strip() and not in_indented:
                self.errors.append(f"{self.name}:{number}: indented code; put it between ``` and say what it is")
            in_indented = indented
            self.prose.append((number, line))
            before = line
        if directive:
            self.errors.append(f"{self.name}:{directive_line}: no block of code follows \"{directive}\"")

    def _read_block(self, lines, index, fence, directive):
        """Takes the block that begins at the index; returns the index behind it."""
        indent, mark, language = fence.groups()
        body = []
        first = index + 1
        for index in range(first, len(lines)):
            if re.match(rf"^ *{re.escape(mark)}\s*$", lines[index]):
                break
            body.append(lines[index].removeprefix(indent))
        else:
            self.errors.append(f"{self.name}:{first}: the block of code does not end")
        text = "".join(line + "\n" for line in body)
        self.blocks.append(Block(self, first + 1, language, directive, text, len(self.blocks) + 1))
        return index + 1

    def links(self):
        yield from self._in_text(LINK, lambda text: CODE_SPAN.sub(lambda code: "\n" * code.group().count("\n"), text))

    def code_spans(self):
        yield from self._in_text(CODE_SPAN, str)

    def _in_text(self, pattern, prepare):
        """What a pattern finds and where, also when it goes on in the next line. A paragraph ends it."""
        paragraph = []
        for number, line in [*self.prose, (0, "")]:
            if line.strip():
                paragraph.append((number, line))
                continue
            text = prepare("\n".join(line for _, line in paragraph))
            for found in pattern.finditer(text):
                yield paragraph[text.count("\n", 0, found.start())][0], " ".join(found.group(1).split())
            paragraph = []

    def headings(self):
        """The names by which links find the headings."""
        for _, line in self.prose:
            found = re.match(r"#+ +(.*?)\s*$", line)
            if found:
                yield re.sub(r"[^\w\- ]", "", found.group(1).lower()).replace(" ", "-")


def read_documents(root):
    """Every Markdown file of the tree, but for what is built or hidden."""
    documents = []
    for folder, folders, files in os.walk(root):
        folders[:] = sorted(f for f in folders if f != "build" and not f.startswith("."))
        documents += [Document(root, pathlib.Path(folder, f)) for f in sorted(files) if f.endswith(".md")]
    return documents


def described_files(document):
    """The files that blocks of a document are marked as, by name."""
    files = {}
    for block in document.blocks:
        found = FILE.match(block.directive)
        if found:
            kind, name = found.groups()
            files[name] = (files.get(name, "") if kind == "append" else "") + block.text
    return files
