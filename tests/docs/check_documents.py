#!/usr/bin/env python3
"""Runs what the documents show, and follows what they name. docs/testing.md tells writers of documents the rules.

Usage: check_documents.py ROOT QUILLETCTL PROGRAMS [SIMULATOR]
ROOT is the tree, QUILLETCTL the program, PROGRAMS the folder of the programs that extract_examples.py found, SIMULATOR
quillet-simulator.
"""
import difflib
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

sys.dont_write_bytecode = True
import documents  # noqa: E402
import elsewhere  # noqa: E402
import json_shapes  # noqa: E402
import shell_session  # noqa: E402

FOLDERS = "include|Common|Lum2InstUtility|Src|platform|wmi|simulator|wsman|state|client|cli|python|property-pages|serving|examples|tests|fuzz|benchmarks|docs|scripts|cmake"
TREE_PATH = re.compile(rf"(?:{FOLDERS})/[\w./*-]+")
FILE_NAME = re.compile(r"[\w*-]+\.(?:cpp|h|md|mof|cmake|py|map|svg|json|xml|dict)")
IDENTIFIER = re.compile(r"[A-Za-z_]\w*(?:(?:::|\.|->)~?[A-Za-z_]\w*)*(?:\(\))?")
QUERY = re.compile(r"(?:SELECT|REFERENCES OF|ASSOCIATORS OF) \S")
GOLDEN = "tests/Src/operations/golden"
SIMULATED = 'quilletctl() { command quilletctl --simulate "$@"; }'
MADE_BY_THE_BUILD = {"Export.h"}


class Checker:
    def __init__(self, root, quilletctl, programs, *others):
        self.root, self.quilletctl, self.programs = root, quilletctl, programs
        self.path = [str(program.parent) for program in (quilletctl, *others)]
        self.document = None
        self.errors = []
        self.used = set()  # lines of the list of what runs elsewhere
        self.counts = {}
        self.help_texts = {}
        self.queries = None
        self.file_names = {path.name for path in self._tree()}
        self.words = set()
        for path in self._tree():
            if path.is_file() and path.suffix != ".md":
                self.words.update(re.findall(r"\w+", path.read_text(encoding="utf-8", errors="replace")))

    def _tree(self):
        for path in self.root.iterdir():
            if path.name != "build" and not path.name.startswith("."):
                yield path
                yield from path.rglob("*") if path.is_dir() else ()

    def error(self, place, message):
        self.errors.append(f"{place}: {message}")

    def count(self, what):
        self.counts[what] = self.counts.get(what, 0) + 1

    # ---------------------------------------------------------------------------------------------- blocks

    def check(self, document):
        self.document = document
        self.errors += document.errors
        with tempfile.TemporaryDirectory(prefix="quillet-docs-") as folder:
            session = shell_session.ShellSession(self.root, folder, self.path)
            program = None
            for block in document.blocks:
                try:
                    self.check_block(block, session, program)
                except (ValueError, subprocess.SubprocessError, OSError) as problem:
                    self.error(block.place, problem)
                program = block if block.is_program else None
        self.check_links(document)
        self.check_names(document)
        self.check_shapes(document)

    def check_block(self, block, session, program):
        language, directive = block.language, block.directive
        part = re.match(r"part of (\S+)$", directive)
        output = re.match(r"output of (.+)$", directive)
        file = documents.FILE.match(directive)
        if part:
            self.check_part(block, part.group(1))
        elif output:
            self.run(session, [shell_session.Command(block.line, output.group(1), block.text.splitlines())])
        elif directive == "output" and program:
            self.run(session, [shell_session.Command(block.line, str(self.programs / program.name),
                                                     block.text.splitlines())])
        elif file:
            kind, name = file.groups()
            path = session.folder / name
            path.write_text((path.read_text(encoding="utf-8") if kind == "append" else "") + block.text,
                            encoding="utf-8")
            if language == "mof":
                self.check_machine(block, session, name)
        elif documents.SERVED.match(directive) or directive == documents.UNTRIED:
            pass
        elif block.is_program:
            self.run(session, [shell_session.Command(block.line, str(self.programs / block.name), None)])
        elif block.is_fragment:
            pass  # a test of its own, made by extract_examples.py
        elif language == "mof" and not directive:
            (session.folder / "machine.mof").write_text(block.text, encoding="utf-8")
            self.check_machine(block, session, "machine.mof")
        elif language == "console" and directive == documents.ON_A_REAL_MACHINE:
            simulated = shell_session.Command(block.line, SIMULATED, [])
            self.run(session, [simulated, *shell_session.console_commands(block)])
        elif language == "console" and directive in ("", documents.ON_A_TERMINAL):
            self.run(session, shell_session.console_commands(block), terminal=bool(directive))
        elif language == "sh" and directive == documents.AFTER_INSTALLING and block.document.name == "README.md":
            pass  # a part of the test of the package
        elif documents.INSTALLED.match(directive) and block.document.name == "docs/packages.md":
            pass  # a part of the test of Debian's packages
        elif language == "python" and not directive and block.document.name == documents.PYTHON_GUIDE:
            pass  # tests/python runs it
        elif language == "sh" and not directive:
            self.run(session, [command for command in shell_session.script_commands(block)
                               if not self.runs_elsewhere(command, block)])
        else:
            self.error(block.place, f"how to try this block of \"{language}\" is not known"
                       + (f" (\"{directive}\")" if directive else "") + "; see docs/testing.md")
            return
        self.count(language)

    def run(self, session, commands, terminal=False):
        for index, (status, lines) in enumerate(session.run(commands, terminal)):
            command = commands[index]
            self.count("command")
            place = f"{self.document.name}:{command.line}"
            asked = index + 1 < len(commands) and commands[index + 1].text == "echo $?"
            if status != 0 and not asked:
                self.error(place, f"\"{command.text}\" ended with {status}:\n" + "\n".join(lines))
            elif command.expected is not None and not shell_session.matches(command.expected, lines):
                diff = difflib.unified_diff(command.expected, lines, "as documented", "as it is", lineterm="")
                self.error(place, f"\"{command.text}\" prints something else:\n" + "\n".join(diff))

    def check_machine(self, block, session, name):
        done = subprocess.run([self.quilletctl, "--simulate", name, "adapter", "list"], cwd=session.folder,
                              capture_output=True, text=True, check=False)
        if done.returncode != 0:
            self.error(block.place, done.stderr.strip())

    def check_part(self, block, name):
        """The block must stand so in a file that the tests use, whatever its indentation there."""
        def plain(text):
            return "\n".join(line.strip() for line in text.splitlines() if line.strip())
        if not name.startswith(("examples/", "tests/")):
            self.error(block.place, f"{name} is neither an example nor a test")
        elif f"\n{plain(block.text)}\n" not in f"\n{plain((self.root / name).read_text(encoding='utf-8'))}\n":
            self.error(block.place, f"{name} has no such lines")

    def runs_elsewhere(self, command, block):
        pending = command.text.split(" && ") if not command.text.startswith("(") else [command.text]
        rules = [elsewhere.rule_for(part) for part in pending]
        if not all(rules):
            return False
        for pattern, names in rules:
            self.used.add(pattern)
            for problem in elsewhere.wrong_names(self.root, names):
                self.error(f"{block.document.name}:{command.line}", problem)
        self.count("command held against what it names")
        return True

    # ----------------------------------------------------------------------------------------------- names

    def check_links(self, document):
        for line, target in document.links():
            path, _, anchor = target.partition("#")
            if re.match(r"[a-z]+:", path):
                continue
            self.count("link")
            file = document.folder / path if path else document.path
            if not file.exists():
                self.error(f"{document.name}:{line}", f"there is no {target}")
            elif file.suffix == ".svg":
                try:
                    xml.etree.ElementTree.parse(file)
                except xml.etree.ElementTree.ParseError as problem:
                    self.error(f"{document.name}:{line}", f"{target}: {problem}")
            elif anchor and anchor not in documents.Document(self.root, file.resolve()).headings():
                self.error(f"{document.name}:{line}", f"{path or 'this page'} has no heading #{anchor}")

    def check_shapes(self, document):
        """Of the shapes beside a command the first is its answer; others may be parts of it."""
        schemas = json_shapes.Schemas(self.root / "docs" / "json")
        for line, commands, shapes in json_shapes.rows(document):
            for index, shape in enumerate(shapes):
                for command in commands:
                    self.count("shape of an answer")
                    try:
                        right = schemas.answers(command, json_shapes.parse(shape), part=index > 0)
                    except (ValueError, OSError) as problem:
                        self.error(f"{document.name}:{line}", f"{shape}: {problem}")
                        continue
                    if not right:
                        self.error(f"{document.name}:{line}", f"the schema of \"{command}\" has no {shape}")

    def check_names(self, document):
        defined = set(re.findall(r"[\w.-]+", "".join(block.text for block in document.blocks)))
        for line, span in document.code_spans():
            place = f"{document.name}:{line}"
            if span.startswith("quilletctl "):
                self.check_command(place, span)
            elif TREE_PATH.fullmatch(span):
                self.count("name")
                if not any(any(folder.glob(name)) for folder in (self.root, document.folder)
                           for name in (span.rstrip("/"), span + ".*")):
                    self.error(place, f"there is no {span}")
            elif FILE_NAME.fullmatch(span) and "*" not in span:
                self.count("name")
                if span not in self.file_names | MADE_BY_THE_BUILD | defined:
                    self.error(place, f"there is no file {span}")

            elif QUERY.match(span):
                self.check_query(place, span)
            elif IDENTIFIER.fullmatch(span):
                self.count("name")
                for word in re.findall(r"\w+", span):
                    if word not in self.words | defined:
                        self.error(place, f"the tree has nothing that is called {word}")

    def check_query(self, place, span):
        """A query must be one that the golden files of the operations saw."""
        self.count("query")
        if self.queries is None:
            self.queries = "\n".join(file.read_text(encoding="utf-8") for file in (self.root / GOLDEN).glob("*.txt"))
        if not re.search(r"ExecQuery " + re.sub(r"…|\\\{.*?\\\}", ".*", re.escape(span)) + " -> ", self.queries):
            self.error(place, f"no operation asks {span}")

    def check_command(self, place, span):
        """A command in running text: its words must be commands, its options must be known."""
        self.count("command in the text")
        words = span.split()[1:]
        path = []
        while words and re.fullmatch(r"[a-z][a-z-]*", words[0]) and len(path) < 2:
            path.append(words.pop(0))
        text = self.help_of(())
        if path:
            own = self.help_of(tuple(path))
            if own is None:
                return self.error(place, f"quilletctl has no \"{' '.join(path)}\"")
            text += own
        for option in re.findall(r"(?<![\w-])--[a-z][\w-]*", span):
            if not re.search(rf"{option}(?![\w-])", text):
                self.error(place, f"quilletctl {' '.join(path)} does not know {option}")

    def help_of(self, path):
        if path not in self.help_texts:
            done = subprocess.run([self.quilletctl, *path, "--help"], capture_output=True, text=True, check=False)
            self.help_texts[path] = done.stdout if done.returncode == 0 else None
        return self.help_texts[path]


def check_version(root):
    """The version that is built must have its place among the changes."""
    version = re.search(r"project\(\w+ VERSION ([\d.]+)", (root / "CMakeLists.txt").read_text(encoding="utf-8")).group(1)
    if not re.search(rf"(?<![\d.]){re.escape(version)}(?!\d|\.\d)", (root / "CHANGELOG.md").read_text(encoding="utf-8")):
        yield f"CHANGELOG.md: does not know version {version}"


def main(arguments):
    root, quilletctl, *others = (pathlib.Path(argument).resolve() for argument in arguments)
    checker = Checker(root, quilletctl, *others)
    for document in documents.read_documents(root):
        checker.check(document)
    checker.errors += check_version(root)
    for pattern in elsewhere.ELSEWHERE:
        if pattern not in checker.used:
            checker.error("tests/docs/elsewhere.py", f"no document needs {pattern}")
    print("\n".join(checker.errors))
    print(", ".join(f"{count} × {what}" for what, count in sorted(checker.counts.items())))
    print(f"{len(checker.errors)} errors")
    return 1 if checker.errors else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
