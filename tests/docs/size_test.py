#!/usr/bin/env python3
"""Whether scripts/size runs, and prints a page of the form of docs/size.md. Its numbers change with every commit, and are not
compared. Usage: size_test.py ROOT"""
import importlib.machinery
import importlib.util
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
ROOT = pathlib.Path(sys.argv.pop())
LOADER = importlib.machinery.SourceFileLoader("size", str(ROOT / "scripts/size"))
SIZE = importlib.util.module_from_spec(importlib.util.spec_from_loader("size", LOADER))
LOADER.exec_module(SIZE)
PAGE = (ROOT / "docs/size.md").read_text(encoding="utf-8")


def form(page):
    """The lines that are the same with every commit: what is written by hand, headings, heads of tables."""
    by_hand, marker, rest = page.partition("<!-- From here on")
    heads = re.findall(r"^(?:#.*|\|.*\|\n\|---.*)$", rest, re.MULTILINE)
    return [by_hand, marker, *heads]


class SizeTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.build = tempfile.TemporaryDirectory()
        times = pathlib.Path(cls.build.name) / "times"
        times.mkdir()
        (times / "asan").write_text("412 abc1234 2026-01-02 1234 cases\n", encoding="utf-8")
        (times / "lint").write_text("7 abc1234 2026-01-02 \n", encoding="utf-8")
        cls.page = subprocess.check_output([ROOT / "scripts/size", "--print", "--build", cls.build.name], encoding="utf-8")

    @classmethod
    def tearDownClass(cls):
        cls.build.cleanup()

    def row(self, name):
        (row,) = re.findall(rf"^\| {re.escape(name)} \|.*$", self.page, re.MULTILINE)
        return [cell.strip() for cell in row.strip("|").split("|")]

    def test_the_page_has_this_form(self):
        self.assertEqual(form(self.page), form(PAGE))
        self.assertGreater(len(form(PAGE)), 8)

    def test_every_operation_has_a_row(self):
        header = (ROOT / "include/quillet/Quillet.h").read_text(encoding="utf-8").partition("  private:")[0]
        operations = set(re.findall(r"^    HRESULT (\w+)\(", header, re.MULTILINE))
        self.assertGreater(len(operations), 90)
        for operation in operations:
            self.row(f"`{operation}`")
        # Three fetches and the method, beside what stays with the client.
        self.assertEqual(self.row("`AddVLANToTeam`")[1:3], ["4", "21"])

    def test_folders_add_up(self):
        section = self.page.partition("### Lines")[2].partition("###")[0]
        rows = [[int(cell) for cell in line.split("|")[2:-1]] for line in section.splitlines() if re.search(r"\| \d+ \|$", line)]
        *folders, total = rows
        self.assertEqual([sum(column) for column in zip(*folders)], total)
        self.assertTrue(all(count > 1000 for count in total))

    def test_times_are_those_that_are_there(self):
        self.assertEqual(self.row("asan"), ["asan", "412", "1234 cases", "abc1234", "2026-01-02"])
        self.assertEqual(self.row("lint")[:3], ["lint", "7", ""])
        self.assertEqual(self.row("windows")[1], "not measured")
        self.assertTrue(re.findall(r"^\| \d+\.\d+\.\d+ .*", self.page, re.MULTILINE)[-1].endswith("| not measured |"))

    def test_rows_of_earlier_releases_stay(self):
        before = "| 0.0.1 | 2025-01-02 | abc | 1 | 2 | 3 | 4 | 5 |\n| 0.0.2 | not released | def | 1 | 2 | 3 | 4 | 5 |\n"
        row = ["0.0.2", "2025-03-04", "fed", 6, 7, 8, 9, 10]
        self.assertEqual(SIZE.releases(before, row), [["0.0.1", "2025-01-02", "abc", "1", "2", "3", "4", "5"], row])
        self.assertEqual(len(SIZE.releases(before, ["0.0.3", *row[1:]])), 3)


if __name__ == "__main__":
    unittest.main()
