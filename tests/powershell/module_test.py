#!/usr/bin/env python3
"""Reads the PowerShell module, which nothing here can run, and tries the command lines that it has.

Usage: module_test.py MODULE MANIFEST PROGRAM
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

MODULE, MANIFEST = (pathlib.Path(argument).read_text(encoding="utf-8") for argument in sys.argv[1:3])
PROGRAM = pathlib.Path(sys.argv[3]).resolve()
COMMANDS = dict(
    re.findall(r"^    (\w+) += '([^']*)'$", re.search(r"\$Commands = @\{\n(.*?)\n\}", MODULE, re.DOTALL)[1], re.MULTILINE)
)
FUNCTIONS = dict(re.findall(r"^function ([\w-]+)(.*?)^\}$", MODULE, re.DOTALL | re.MULTILINE))
OPENED = {")": "(", "]": "[", "}": "{"}
ADAPTER = "Zorel Gigabit Server Adapter (東京)"
VALUES = {
    "Name": {"AdapterShow": ADAPTER, "TeamShow": "TEAM : Zürich"}, "Of": "adapter", "Owner": ADAPTER,
    "Caption": "*JumboPacket", "Value": "9014", "Pattern": "TEAM*",
}
DOCUMENT = json.dumps({"adapters": [{"name": ADAPTER, "settings": {"*FlowControl": 0}}]})
# What the module reads of an answer.
READ = {
    "AdapterList": {"adapters"}, "TeamList": {"teams"}, "VlanList": {"vlans"}, "SettingList": {"settings"},
    "SettingGet": {"setting"}, "ConfigDiff": {"changes", "problems", "warnings", "losses"},
}
CHANGING = {"SettingSet", "ConfigApply", "ConfigKeep"}


def without_texts(source):
    """A script without its comments and quoted texts. What a text in double quotes holds is code only in $(…)."""
    texts = re.compile(r"<#.*?#>|#[^\n]*|'(?:[^']|'')*'|\"(?:[^\"`]|`.|\"\")*\"", re.DOTALL)
    return texts.sub("", source)


class Module(unittest.TestCase):
    def test_brackets_and_quotes_are_balanced(self):
        for source in (MODULE, MANIFEST):
            code = without_texts(source)
            self.assertNotRegex(code, "['\"]")
            opened = []
            for sign in re.findall(r"[][(){}]", code):
                if sign in OPENED:
                    self.assertEqual(opened.pop() if opened else None, OPENED[sign])
                else:
                    opened.append(sign)
            self.assertEqual(opened, [])

    def test_the_manifest_exports_what_is_defined(self):
        exported = re.findall(r"^        '([\w-]+)'$", MANIFEST, re.MULTILINE)
        self.assertEqual(exported, [name for name, body in FUNCTIONS.items() if "[CmdletBinding(" in body])
        self.assertGreaterEqual(len(exported), 9)
        for name in exported:
            self.assertRegex(FUNCTIONS[name], r"^ \{\n    <#\n    \.SYNOPSIS\n", name)
            self.assertIn("    .EXAMPLE\n", FUNCTIONS[name], name)
            parameters = re.search(r"    param\((.*?)\)\n(?:    process|    \(|    if)", FUNCTIONS[name], re.DOTALL)[1]
            named = re.findall(r"\[(?:string(?:\[\])?|switch)\] \$(\w+)|\)\] \$(\w+)", parameters)
            for parameter in {one or other for one, other in named}:
                self.assertIn(f"    .PARAMETER {parameter}\n", FUNCTIONS[name], name)
        version = subprocess.run([PROGRAM, "version"], check=True, capture_output=True).stdout.decode().split()[1]
        self.assertIn(f"ModuleVersion     = '{version}'", MANIFEST)

    def test_what_changes_something_asks_first(self):
        for name, body in FUNCTIONS.items():
            changes = any(re.search(rf"\b{command}\b", body) for command in CHANGING)
            self.assertEqual(changes, "SupportsShouldProcess" in body and "$PSCmdlet.ShouldProcess(" in body, name)

    def test_the_commands_are_those_that_are_used(self):
        code = re.sub(r"\$Commands = @\{\n.*?\n\}", "", MODULE, flags=re.DOTALL)
        used = set(re.findall(r"Invoke-Quillet (\w+)", code)) | set(re.findall(r"\{ '(Config\w+)' \}", code))
        self.assertEqual(used, set(COMMANDS))
        for name, line in COMMANDS.items():
            for value in re.findall(r"\{(\w+)\}", line):
                self.assertRegex(code, rf"(?:Invoke-Quillet {name} |\$values = )@\{{[^}}]*\b{value} = ", name)

    def test_quilletctl_takes_every_command(self):
        with tempfile.TemporaryDirectory() as folder:
            for name, line in COMMANDS.items():
                words = []
                for word in line.split(" "):
                    value = VALUES[word[1:-1]] if word.startswith("{") else word
                    words.append(value[name] if isinstance(value, dict) else value)
                run = subprocess.run([PROGRAM, "--state", "machine.mof", "--json", *words], cwd=folder, check=False,
                                     input=DOCUMENT.encode(), capture_output=True)
                with self.subTest(command=name):
                    self.assertEqual(run.returncode, 3 if name == "ConfigDiff" else 0, run.stderr.decode())
                    answer = json.loads(run.stdout)
                    self.assertLessEqual(READ.get(name, set()), set(answer))
                    if name == "ConfigDiff":
                        self.assertIn("step", answer["changes"][0])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
