#!/usr/bin/env python3
"""The test of the documents finds what is wrong with a document, and nothing that is right."""
import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
import check_documents  # noqa: E402
import documents  # noqa: E402
import extract_examples  # noqa: E402

# Stands for the program: knows one command, and prints its arguments.
QUILLETCTL = """#!/bin/sh
case "$*" in
--help) echo "  --json" ;;
'adapter list --help') echo "  --all" ;;
*--help) exit 2 ;;
*bad.mof*) echo "bad.mof:1:1: no" >&2; exit 2 ;;
*) echo "said: $*" ;;
esac
"""


class CheckerTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        (self.root / "scripts").mkdir()
        (self.root / "tests").mkdir()
        self.quilletctl = self.root / "scripts" / "quilletctl"
        self.quilletctl.write_text(QUILLETCTL, encoding="utf-8")
        self.quilletctl.chmod(0o755)

    def complaints(self, text):
        """What the checker says of a document, without what it says of the list of commands."""
        path = self.root / "page.md"
        path.write_text(text, encoding="utf-8")
        checker = check_documents.Checker(self.root, self.quilletctl, self.root / "programs")
        checker.check(documents.Document(self.root, path))
        return checker.errors

    def assert_right(self, text):
        self.assertEqual(self.complaints(text), [])

    def assert_wrong(self, text, *words):
        errors = self.complaints(text)
        self.assertEqual(len(errors), 1, errors)
        for word in words:
            self.assertIn(word, errors[0])

    def test_a_block_of_an_unknown_kind(self):
        self.assert_wrong("```\nx\n```\n", "page.md:2", "not known")
        self.assert_wrong("```yaml\nx\n```\n", "yaml")
        self.assert_wrong("```cpp\nint x;\n```\n", "cpp")
        self.assert_wrong("<!-- test: nonsense -->\n```cpp\nint x;\n```\n", "nonsense")
        self.assert_wrong("<!-- test: skip -->\n```console\n$ true\n```\n", "skip")
        self.assert_wrong("```json\n{}\n```\n", "json")

    def test_code_that_hides(self):
        self.assert_wrong("Text\n\n    code\n    more\n", "page.md:3", "indented")
        self.assert_wrong("```sh\ntrue\n", "does not end")
        self.assert_wrong("<!-- test: gtest -->\nText\n", "no block of code")
        self.assert_right("- a list\n\n    goes on\n")

    def test_output_is_compared(self):
        self.assert_right("```console\n$ quilletctl x\nsaid: x\n```\n")
        self.assert_wrong("```console\n$ quilletctl x\nsaid: y\n```\n", "page.md:2", "-said: y", "+said: x")
        self.assert_wrong("```console\n$ quilletctl x\n```\n", "+said: x")
        self.assert_wrong("```console\n$ true\nmore\n```\n", "-more")
        self.assert_wrong("```console\nsaid\n```\n", "without a command")

    def test_commands_for_a_real_machine_ask_for_a_simulated_one(self):
        mark = "<!-- test: on a real machine -->\n"
        self.assert_right(mark + "```console\n$ quilletctl x\nsaid: --simulate x\n$ quilletctl y\n…y\n```\n")
        self.assert_wrong(mark + "```console\n$ quilletctl x\nsaid: x\n```\n", "page.md:3", "+said: --simulate x")
        self.assert_right("```console\n$ quilletctl x\nsaid: x\n```\n")

    def test_only_one_page_tells_how_to_go_on_after_installing(self):
        self.assert_wrong("<!-- test: after installing -->\n```sh\nfalse\n```\n", "after installing")

    def test_only_the_guide_has_examples_in_python(self):
        self.assert_wrong("```python\n>>> 1\n1\n```\n", "python")

    def test_an_ellipsis_stands_for_anything(self):
        self.assert_right("```console\n$ quilletctl x y\nsaid: …\n```\n")
        self.assert_right("```console\n$ printf '1\\n2\\n3\\n'\n1\n…\n3\n```\n")
        self.assert_wrong("```console\n$ printf '1\\n2\\n3\\n'\n1\n…\n4\n```\n", "-4")

    def test_a_status_other_than_0_must_be_shown(self):
        self.assert_wrong("```console\n$ false\n```\n", "ended with 1")
        self.assert_right("```console\n$ (exit 3)\n$ echo $?\n3\n```\n")
        self.assert_wrong("```console\n$ (exit 3)\n$ echo $?\n2\n```\n", "-2")
        self.assert_wrong("```sh\nfalse\n```\n", "ended with 1")
        self.assert_wrong("```sh\nexit 0\n```\n", "the shell has ended")

    def test_commands_share_the_folder_of_their_document(self):
        self.assert_right("```sh\necho 1 > a  # a file\n```\n\n```console\n$ cat \\\n> a\n1\n```\n")

    def test_output_of_a_command(self):
        self.assert_right("<!-- test: output of quilletctl --json -->\n```json\nsaid: --json\n```\n")
        self.assert_wrong("<!-- test: output of quilletctl --json -->\n```json\n{}\n```\n", "-{}")

    def test_machines_are_loaded(self):
        self.assert_right("```mof\ninstance\n```\n")
        self.assert_wrong("<!-- test: file bad.mof -->\n```mof\n}\n```\n", "bad.mof:1:1: no")

    def test_files_are_written_and_appended(self):
        self.assert_right("<!-- test: file a.txt -->\n```text\n1\n```\n<!-- test: append a.txt -->\n```text\n2\n```\n"
                          "```console\n$ cat a.txt\n1\n2\n```\n")

    def test_a_part_of_a_file(self):
        (self.root / "tests" / "a.txt").write_text("one\n  two\nthree\n", encoding="utf-8")
        self.assert_right("<!-- test: part of tests/a.txt -->\n```text\ntwo\nthree\n```\n")
        self.assert_wrong("<!-- test: part of tests/a.txt -->\n```text\none\nthree\n```\n", "no such lines")
        self.assert_wrong("<!-- test: part of page.md -->\n```text\none\n```\n", "neither")
        self.assert_wrong("<!-- test: part of tests/b.txt -->\n```text\none\n```\n", "b.txt")

    def test_programs_and_their_output(self):
        (self.root / "programs").mkdir()
        program = self.root / "programs" / "page_1"
        program.write_text("#!/bin/sh\necho hello\n", encoding="utf-8")
        program.chmod(0o755)
        block = "```cpp\nint main() {}\n```\n"
        self.assert_right(block)
        self.assert_right(block + "<!-- test: output -->\n```text\nhello\n```\n")
        self.assert_wrong(block + "<!-- test: output -->\n```text\nbye\n```\n", "-bye")
        program.write_text("#!/bin/sh\nexit 1\n", encoding="utf-8")
        self.assert_wrong(block, "ended with 1")

    def test_output_on_a_terminal(self):
        block = "```console\n$ test -t 1 && stty size <&1; quilletctl x\n24 80\nsaid: x\n```\n"
        self.assert_right("<!-- test: on a terminal -->\n" + block)
        self.assert_wrong(block, "-24 80")
        self.assert_wrong("<!-- test: on a terminal -->\n```console\n$ quilletctl x\nsaid: y\n```\n", "+said: x")

    def test_commands_that_run_elsewhere_are_held_against_what_they_name(self):
        (self.root / "CMakePresets.json").write_text('{"configurePresets": [{"name": "dev"}]}', encoding="utf-8")
        (self.root / "CMakeLists.txt").write_text("add_executable(tool a.cpp)\n", encoding="utf-8")
        (self.root / "scripts" / "demo").write_text("--wine) ;;\n", encoding="utf-8")
        self.assert_right("```sh\ncmake --preset dev && cmake --build --preset dev --target tool\n```\n")
        self.assert_wrong("```sh\ncmake --preset dav\n```\n", "no preset dav")
        self.assert_wrong("```sh\ncmake --build --preset dev --target tol\n```\n", "no target tol")
        self.assert_right("```sh\nscripts/demo --wine\n```\n")
        self.assert_wrong("```sh\nscripts/demo --win\n```\n", "does not know --win")
        self.assert_wrong("```sh\nscripts/test\n```\n", "no scripts/test")

    def test_links(self):
        (self.root / "other.md").write_text("# A heading, here\n", encoding="utf-8")
        self.assert_right("[a](other.md) [b](other.md#a-heading-here) [c](https://example.invalid/)\n")
        self.assert_wrong("[a link that\ngoes on](missing.md)\n", "page.md:1", "missing.md")
        self.assert_wrong("[a](missing.md)\n", "page.md:1", "missing.md")
        self.assert_wrong("[a](other.md#another)\n", "#another")

    def test_the_version_is_among_the_changes(self):
        (self.root / "CMakeLists.txt").write_text("project(A VERSION 1.2.0 LANGUAGES CXX)\n", encoding="utf-8")
        (self.root / "CHANGELOG.md").write_text("## [1.2.0]\n", encoding="utf-8")
        self.assertEqual(list(check_documents.check_version(self.root)), [])
        (self.root / "CHANGELOG.md").write_text("## [11.2.0], [1.2.0.1]\n", encoding="utf-8")
        self.assertEqual(len(list(check_documents.check_version(self.root))), 1)

    def test_pictures(self):
        picture = self.root / "a.svg"
        picture.write_text('<svg xmlns="http://www.w3.org/2000/svg"/>', encoding="utf-8")
        self.assert_right("![a](a.svg)\n")
        picture.write_text("<svg>", encoding="utf-8")
        self.assert_wrong("![a](a.svg)\n", "a.svg: no element")

    def test_queries(self):
        golden = self.root / check_documents.GOLDEN
        golden.mkdir(parents=True)
        (golden / "A.txt").write_text('call 1: ExecQuery REFERENCES OF {X.Y="1"} WHERE R = Z -> 0x0\n'
                                      'call 2: ExecQuery SELECT * FROM A WHERE B = "1" -> 0x0\n', encoding="utf-8")
        self.assert_right('`SELECT * FROM A WHERE B = "…"` and `REFERENCES OF {path} WHERE R = Z`\n')
        self.assert_wrong('`SELECT * FROM A WHERE C = "…"`\n', "no operation asks")
        self.assert_wrong('`SELECT * FROM A`\n', "no operation asks")

    def test_shapes_of_answers(self):
        folder = self.root / "docs" / "json"
        folder.mkdir(parents=True)
        (folder / "a-list.json").write_text(
            '{"properties": {"all": {"items": {"$ref": "c.json#/$defs/one"}}, "more": {}}}', encoding="utf-8")
        (folder / "a-show.json").write_text('{"oneOf": [{"properties": {"x": {}}}, {"$ref": "c.json#/$defs/one"}]}',
                                            encoding="utf-8")
        (folder / "c.json").write_text('{"$defs": {"one": {"properties": {"p": {}, "q": {}}}}}', encoding="utf-8")
        head = "| command | answer |\n|---|---|\n"
        self.assert_right(head + '| `a list` | `{"all": [{"p", "q"}, …], "more"}` |\n'
                                 '| `a show` | `{"p", …}`, or `{"x"}` |\n| `a list` | `{"all", "more"}`: `{"p", "q"}` |\n')
        self.assert_wrong(head + '| `a list` | `{"all": [{"p"}, …], "more"}` |\n', "has no")
        self.assert_wrong(head + '| `a list` | `{"more", "all"}` |\n', "has no")
        self.assert_wrong(head + '| `a show`, `list` | `{"x"}` |\n', '"a list" has no')
        self.assert_wrong(head + '| `a list` | `{"all", "more"}`: `{"p"}` |\n', "has no")
        self.assert_wrong(head + '| `a lost` | `{"x"}` |\n', "a-lost.json")

    def test_names_of_files(self):
        self.assert_right("`scripts/quilletctl` and `page.md`\n")
        self.assert_wrong("`scripts/missing`\n", "scripts/missing")
        self.assert_wrong("`missing.h`\n", "missing.h")

    def test_names_of_the_code(self):
        (self.root / "tests" / "a.h").write_text("class CThing { int Member(); };\n", encoding="utf-8")
        self.assert_right("`CThing`, `CThing::Member()`, `a phrase`, `other`\n```sh\nother=1\n```\n")
        self.assert_wrong("`CThing::Lost`\n", "called Lost")

    def test_commands_in_the_text(self):
        self.assert_right("`quilletctl adapter list --json --all`, `quilletctl …`\n")
        self.assert_wrong("`quilletctl adapter\nlist --any`\n", "--any")
        self.assert_wrong("`quilletctl adapter lost`\n", "adapter lost")


class ExtractTest(unittest.TestCase):
    def test_programs_and_fragments(self):
        with tempfile.TemporaryDirectory() as name:
            root = pathlib.Path(name).resolve()
            (root / "page.md").write_text(
                "```cpp\n#include <a.h>\nint main() {}\n```\n"
                "<!-- test: in-function -->\n```cpp\n#include <b.h>\ncall();\n```\n"
                "<!-- test: gtest -->\n```cpp\nTEST(A, B) {}\n```\n"
                "<!-- test: file lab.mof -->\n```mof\nx\n```\n", encoding="utf-8")
            files = extract_examples.wanted_files(root, root / "out")
            texts = {path.relative_to(root / "out").as_posix(): text for path, text in files.items()}
        self.assertEqual(set(texts), {"programs/page_1.cpp", "fragments/page_md.cpp", "fragments/page_md_gtest.cpp",
                                      "files/page.md/lab.mof"})
        self.assertIn("#include <a.h>\nint main() {}\n", texts["programs/page_1.cpp"])
        fragment = texts["fragments/page_md.cpp"]
        self.assertLess(fragment.index("#include <b.h>"), fragment.index("TEST_F("))
        self.assertIn('#line 7 "page.md"\n\ncall();\n}', fragment)
        self.assertIn("TEST(A, B) {}", texts["fragments/page_md_gtest.cpp"])


if __name__ == "__main__":
    unittest.main()
