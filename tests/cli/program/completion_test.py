#!/usr/bin/env python3
"""Asks bash for completions of quilletctl, as readline does: COMP_WORDS, COMP_CWORD, the function, COMPREPLY.

The expected words are those of `quilletctl help --json`. Usage: completion_test.py PROGRAM COMPLETION
"""
import json
import os
import subprocess
import sys
import tempfile
import unittest

PROGRAM, COMPLETION = map(os.path.abspath, sys.argv[1:3])

# Each line of input is a case: the words, separated by tabs, the last one under the cursor.
DRIVER = r"""
source "$1" || exit
registered=$(complete -p quilletctl) || exit
function=${registered#*-F }; function=${function%% *}
compopt() { told+=" $2"; }   # readline's own part
while IFS= read -r line; do
  COMP_WORDS=() told=
  while [[ $line == *$'\t'* ]]; do COMP_WORDS+=("${line%%$'\t'*}"); line=${line#*$'\t'}; done
  COMP_WORDS+=("$line")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_LINE="${COMP_WORDS[*]}" COMP_POINT=${#COMP_LINE} COMPREPLY=()
  "$function" quilletctl "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
  printf '%s\t' "$told" "${COMPREPLY[@]}"; printf '\n'
done
"""


def complete_all(lines, folder):
    """What bash proposes for each line (a list of words), and whether these are names of files."""
    text = "".join("\t".join(["quilletctl", *line]) + "\n" for line in lines)
    run = subprocess.run(["bash", "--norc", "-c", DRIVER, "bash", COMPLETION], input=text, cwd=folder,
                         capture_output=True, text=True, check=False)
    if run.returncode != 0 or run.stderr:
        raise AssertionError(f"bash ended with {run.returncode}: {run.stderr}")
    answers = []
    for line in run.stdout.splitlines():
        options, *words = line.split("\t")[:-1]
        answers.append((sorted(words), "filenames" in options))
    return answers


class Completion(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.tree = json.loads(subprocess.run([PROGRAM, "help", "--json"], check=True, capture_output=True).stdout)
        cls.nouns = [noun["name"] for noun in cls.tree["nouns"]]
        cls.everywhere = [option["name"] for option in cls.tree["options"]]
        cls.folder = tempfile.TemporaryDirectory()
        for name in ("lab one.mof", "lab.mof", "other.img"):
            open(os.path.join(cls.folder.name, name), "w", encoding="utf-8").close()
        os.mkdir(os.path.join(cls.folder.name, "labs"))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def check(self, cases):
        """Cases: the words of a line, and the words proposed for its last one."""
        answers = complete_all([line for line, _ in cases], self.folder.name)
        self.assertEqual(len(answers), len(cases))
        for (line, expected), (words, _) in zip(cases, answers):
            with self.subTest(line=" ".join(line)):
                self.assertEqual(words, sorted(expected))

    def check_files(self, lines, expected):
        for line, (words, are_files) in zip(lines, complete_all(lines, self.folder.name)):
            with self.subTest(line=" ".join(line)):
                self.assertEqual(words, sorted(expected))
                self.assertTrue(are_files)

    def verbs(self, noun):
        names = [command["name"].split() for command in self.tree["commands"]]
        return [name[1] for name in names if name[0] == noun and len(name) == 2]

    def test_nouns_and_verbs(self):
        cases = [([""], self.nouns), (["a"], [noun for noun in self.nouns if noun.startswith("a")])]
        for noun in self.nouns:
            if self.verbs(noun):
                cases.append(([noun, ""], self.verbs(noun)))
                for verb in self.verbs(noun):
                    cases.append(([noun, verb[:1]], [each for each in self.verbs(noun) if each[0] == verb[0]]))
        self.assertGreater(len(cases), 40)
        self.check(cases)

    def test_options_of_every_command(self):
        cases = [(["--"], self.everywhere)]
        for command in self.tree["commands"]:
            own = [option["name"] for option in command["options"]]
            words = command["name"].split()
            cases.append((words + ["--"], own + self.everywhere))
            for name in own:
                cases.append((words + [name], [each for each in own + self.everywhere if each.startswith(name)]))
        self.assertGreater(len(cases), 80)
        self.check(cases)

    def test_values_that_are_enumerations(self):
        cases = []
        for command in self.tree["commands"]:
            words = command["name"].split()
            for option in command["options"]:
                if option["words"]:
                    name, values = option["name"], option["words"]
                    cases.append((words + [name, ""], values))
                    cases.append((words + [name, values[-1]], [each for each in values if each.startswith(values[-1])]))
                    # As bash takes the line apart, and as it does where "=" breaks no words.
                    cases.append((words + [name, "="], values))
                    cases.append((words + [name, "=", values[0]], [each for each in values if each.startswith(values[0])]))
                    cases.append((words + [name + "="], [f"{name}={value}" for value in values]))
            for place, argument in enumerate(command["arguments"]):
                if argument["words"]:
                    cases.append((words + ["A"] * place + [""], argument["words"]))
        self.assertGreater(len(cases), 100)
        self.check(cases)

    def test_values_that_are_not(self):
        self.check([(["--machine", ""], []), (["trace", "--lines", ""], []), (["adapter", "show", ""], []),
                    (["adapter", "show", "A", ""], []), (["nonsense", ""], []), (["adapter", "nonsense", ""], [])])

    def test_options_before_the_noun(self):
        self.check([(["--machine", "adapter", ""], self.nouns), (["--json", "tr"], ["trace", "transaction"]),
                    (["--state", "lab.mof", "--yes", "vlan", "re"], ["remove"]),
                    (["--state", "=", "lab.mof", "vlan", "re"], ["remove"]),
                    (["--state=lab.mof", "vlan", "re"], ["remove"]),
                    (["--simulate", "vlan", "re"], ["remove"]), (["--simulate", "lab.mof", "vlan", "re"], ["remove"]),
                    (["--simulate", "--json", "vlan", "re"], ["remove"]),
                    (["vlan", "--simulate", "remove", "--j"], ["--json", "--journal"])])

    def test_an_option_is_proposed_once(self):
        self.check([(["--json", "adapter", "list", "--j"], ["--journal"]),
                    (["setting", "list", "A", "--of=vlan", "--o"], []),
                    (["boot", "verify", "A", "f", "--type", "PXE", "--t"], ["--type"]),
                    (["setting", "set", "--", "--o"], [])])

    def test_files(self):
        labs = ["lab one.mof", "lab.mof", "labs"]
        self.check_files([["--state", "lab"], ["--state", "=", "lab"], ["adapter", "list", "--state", "lab"],
                          ["boot", "read", "A", "lab"], ["boot", "write", "A", "--type", "PXE", "lab"],
                          ["boot", "verify", "--", "A", "lab"]], labs)
        self.check_files([["--state=lab"]], [f"--state={name}" for name in labs])
        # The file of --simulate may be left out, and the command follow.
        self.check_files([["--simulate", "l"]], labs + [noun for noun in self.nouns if noun.startswith("l")])
        self.check_files([["--simulate=lab"]], [f"--simulate={name}" for name in labs])

    def test_help(self):
        self.check([(["help", "tra"], ["trace", "transaction"]), (["help", "vlan", ""], self.verbs("vlan")),
                    (["help", "vlan", "add", ""], []), (["help", "trace", ""], [])])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
