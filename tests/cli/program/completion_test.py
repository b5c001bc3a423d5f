#!/usr/bin/env python3
"""Asks quilletctl what may stand at the cursor, and lets bash, zsh and fish complete lines on a terminal.

The expected words are those of `quilletctl help --json`; what a shell made of a line is what it hands to the program.
Usage: completion_test.py PROGRAM
"""
import json
import os
import pathlib
import pty
import select
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = os.path.abspath(sys.argv[1])

# Each begins with a letter of its own, and has what a shell or a terminal would take for something else.
NAMES = ['Ab"quote"', "Bc'tick'", "Cd $HOME $(touch x) `touch y`", "De\\back\\", "Ef line\nbreak", "Fg!bang!1",
         "Gh Zürich 東京", "Hi;semi|pipe&amp>out<in", "Ij*star?", "Jk[a-z]{a,b}", "Kl ~tilde #hash", "Lm\ttab", "Mn:colon=equals",
         "No\x1b[31mred", "Op(brackets)", "Pq%percent^caret", "Qr,comma@at+plus", "Rs  two blanks ", "St\\", "Tu'\"both"]
# Characters that would steer a terminal are shown as U+FFFD, and such a name is a name as well.
SHOWN = [name.replace("\n", "\ufffd").replace("\t", "\ufffd").replace("\x1b", "\ufffd") for name in NAMES]

# Stands for the program on the terminal: answers the shell's questions, however long that takes where much else runs, and
# notes what else it is called with.
STAND_IN = """#!/bin/sh
[ "$1 $2" = "complete --within=500" ] && shift 2 && exec "$PROGRAM" complete "$@"
for argument; do printf '%s\\0' "$argument"; done > "$NOTES.new"
mv "$NOTES.new" "$NOTES"
"""

ROOT = pathlib.Path(__file__).resolve().parents[3]
EMPTY = (ROOT / "simulator/machines/empty.mof").read_text(encoding="utf-8")

SHELLS = {
    "bash": ["bash", "--norc", "--noprofile", "-i"],
    "zsh": ["zsh", "-f", "-i"],
    "fish": ["fish", "--no-config", "-i"],
}
START = {
    "bash": 'source <(quilletctl-real completion bash); PS1=""',
    "zsh": 'autoload -U compinit; compinit -u -D; source <(quilletctl-real completion zsh); PS1=""',
    "fish": "quilletctl-real completion fish | source",
}


def mof_text(text):
    for plain, escaped in (("\\", "\\\\"), ('"', '\\"'), ("\n", "\\n"), ("\t", "\\t"), ("\x1b", "\\x1b")):
        text = text.replace(plain, escaped)
    return text


def machine():
    adapters = [f"""instance of Zorel_PhysicalEthernetAdapter {{ DeviceID = "{{{number}}}"; Name = "{mof_text(name)}";
        OriginalDisplayName = "Port {number}"; SlotID = "1"; }};\n""" for number, name in enumerate(NAMES)]
    twins = [f"""instance of Zorel_PhysicalEthernetAdapter {{ DeviceID = "{{twin {number}}}"; Name = "Zz twin";
        OriginalDisplayName = "Twin"; SlotID = "1"; }};\n""" for number in (1, 2)]
    return EMPTY + "".join(adapters + twins)


class Terminal:
    """A shell with a terminal of its own. What it prints is read and thrown away, so that it never waits."""

    def __init__(self, shell, folder):
        self.folder = pathlib.Path(folder)
        environment = {"PATH": f"{folder}/bin:{os.environ['PATH']}", "HOME": str(folder), "LANG": "C.UTF-8", "TERM": "xterm",
                       "PROGRAM": PROGRAM, "NOTES": str(self.folder / "notes"), "Temp": str(folder)}
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            os.execvpe(SHELLS[shell][0], SHELLS[shell], environment)
        self.printed = b""
        self.send(START[shell] + "\r")
        self.arguments("quilletctl ready\r")

    def send(self, text):
        os.write(self.terminal, text.encode())

    def arguments(self, typed):
        """What the program is called with when this is typed."""
        notes = self.folder / "notes"
        notes.unlink(missing_ok=True)
        self.send(typed)
        end = time.monotonic() + 30
        while not notes.exists():
            self.read(0.02)
            if time.monotonic() > end:
                self.send("\x03")
                raise AssertionError(f"{typed!r} ran nothing; the terminal shows {self.printed[-600:]!r}")
        return notes.read_bytes().decode().split("\0")[:-1]

    def read(self, seconds):
        while select.select([self.terminal], [], [], seconds)[0]:
            try:
                self.printed += os.read(self.terminal, 65536)
            except OSError:
                return

    def close(self):
        os.close(self.terminal)
        os.kill(self.process, 9)
        os.waitpid(self.process, 0)


def answer(words, current="", more=()):
    run = subprocess.run([PROGRAM, "complete", f"--current={current}", *more, *words], check=True, capture_output=True)
    first, *lines = run.stdout.decode().splitlines()
    return [line.split("\t")[0] for line in lines], first == "files"


class Answers(unittest.TestCase):
    """What the program says, whatever the shell."""
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.tree = json.loads(subprocess.run([PROGRAM, "help", "--json"], check=True, capture_output=True).stdout)
        cls.nouns = [noun["name"] for noun in cls.tree["nouns"]]
        cls.everywhere = [option["name"] for option in cls.tree["options"]]

    def check(self, words, expected, current="", files=False):
        with self.subTest(line=[*words, current]):
            self.assertEqual(answer(words, current), (expected, files))

    def verbs(self, noun):
        names = [command["name"].split() for command in self.tree["commands"]]
        return [name[1] for name in names if name[0] == noun and len(name) == 2]

    def test_nouns_verbs_and_options_of_every_command(self):
        self.check([], self.nouns)
        for noun in self.nouns:
            if self.verbs(noun):
                self.check([noun], self.verbs(noun))
        for command in self.tree["commands"]:
            words, own = command["name"].split(), [option["name"] for option in command["options"]]
            self.check(words, own + self.everywhere, "--")
            for option in command["options"]:
                if option["words"]:
                    self.check([*words, option["name"]], option["words"])
                    self.check(words, [f"{option['name']}={word}" for word in option["words"]], option["name"] + "=")
            for place, argument in enumerate(command["arguments"]):
                if argument["words"]:
                    self.check(words + ["2:1"] * place, argument["words"])

    def test_options_before_the_noun(self):
        self.check(["--machine", "adapter"], self.nouns)
        self.check(["--state", "lab.mof", "--yes", "wol"], self.verbs("wol"))
        self.check(["--state=lab.mof", "wol"], self.verbs("wol"))
        self.check(["--simulate", "wol"], self.verbs("wol"))
        self.check(["--simulate", "lab.mof", "wol"], self.verbs("wol"))
        self.check(["--simulate", "--json", "wol"], self.verbs("wol"))

    def test_an_option_is_proposed_once(self):
        self.assertNotIn("--json", answer(["--json", "adapter", "list"], "--")[0])
        self.assertNotIn("--of", answer(["setting", "list", "A", "--of=vlan"], "--")[0])
        self.assertIn("--type", answer(["boot", "verify", "A", "f", "--type", "PXE"], "--")[0])
        self.assertEqual(answer(["diag", "run", "2:1", "1", "--"], "--")[0], [])

    def test_files(self):
        for words in (["--state"], ["adapter", "list", "--state"], ["boot", "read", "2:1"], ["boot", "verify", "--", "2:1"]):
            self.check(words, [], files=True)
        self.check(["adapter"], [], "--state=", files=True)
        self.check(["--simulate"], self.nouns, files=True)

    def test_help(self):
        self.check(["help"], self.nouns)
        self.check(["help", "vlan"], self.verbs("vlan"))

    def test_what_the_machine_has(self):
        port = "Zorel 10G Dual Port Server Adapter"
        adapters = answer(["adapter", "show"])[0]
        self.assertEqual((len(adapters), adapters[0]), (10, port))
        self.check(["team", "show"], ["TEAM : Zürich"])
        self.check(["team", "modes"], ["--team=TEAM : Zürich"], "--team=")
        self.check(["vlan", "list"], ["TEAM : Zürich", *adapters])
        self.check(["vlan", "remove", "TEAM : Zürich"], ["untagged", "12", "340"])
        self.check(["setting", "list", "--of", "vlan"], ["Untagged", "Büro", "VoIP"])
        self.check(["team", "remove", "TEAM : Zürich"], adapters[2:4])
        self.check(["team", "create", "T", adapters[0]], adapters[1:])
        self.assertIn("Link test - " + port, answer(["diag", "run", "2:1"])[0])
        self.assertIn("Standard Server", answer(["profile", "set", port])[0])
        self.assertIn("*JumboPacket", answer(["setting", "get", "2:1"])[0])
        frames = ["Disabled", "4088 Bytes", "9014 Bytes"]
        self.check(["setting", "set", "2:1", "*JumboPacket"], frames)
        self.check(["setting", "set", "Zorel*", "*JumboPacket"], frames)
        self.check(["setting", "set", "--all-adapters", "Jumbo Packet"], frames)
        self.check(["setting", "set", "2:1"], [f"*JumboPacket={frame}" for frame in frames], "*JumboPacket=")
        self.assertIn("*FlowControl=", answer(["setting", "set", "2:1", "*JumboPacket=1514"])[0])
        self.assertIn("*FlowControl", answer(["setting", "reset", "2:1", "*JumboPacket"])[0])

    def test_lines_that_make_no_sense(self):
        for words in (["nonsense"], ["adapter", "nonsense"], ["adapter", "show", "2:1"], ["setting", "get", "nobody"],
                      ["setting", "set", "2:1", "nothing"], ["--simulate", "missing.mof", "adapter", "show"],
                      ["--state", "/", "adapter", "show"], ["--port", "x", "adapter", "show"], ["vlan", "remove", "nobody"]):
            self.check(words, [])

    def test_a_machine_over_the_network_is_not_asked(self):
        for more in ([], ["--user", "somebody"], ["--user", "somebody", "--password-fd", "0"], ["--insecure"]):
            self.check(["--machine", "192.0.2.1", *more, "adapter", "show"], [])

    def test_nobody_waits_for_a_slow_machine(self):
        with tempfile.TemporaryDirectory() as folder:
            slow = os.path.join(folder, "slow.mof")
            pathlib.Path(slow).write_text(EMPTY + """instance of QuilletSimulator_Fault { Id = 1; Operation = "ConnectServer";
                Effect = "Delay"; Milliseconds = 20000; };""", encoding="utf-8")
            start = time.monotonic()
            run = subprocess.run([PROGRAM, "complete", "--within=500", "--current=", "--simulate", slow, "adapter", "show"],
                                 capture_output=True, check=False)
            self.assertEqual((run.returncode, run.stdout, run.stderr), (0, b"\n", b""))
            self.assertGreater(time.monotonic() - start, 0.4)
            self.assertLess(time.monotonic() - start, 10)

    def test_the_scripts(self):
        scripts = {shell: subprocess.run([PROGRAM, "completion", shell], check=True, capture_output=True).stdout.decode()
                   for shell in (*SHELLS, "powershell")}
        folder = ROOT / "cli/completion"
        for shell, script in scripts.items():
            file = folder / ("quilletctl." + {"powershell": "ps1"}.get(shell, shell))
            self.assertEqual(script, file.read_text(encoding="utf-8"))
            self.assertIn(" complete --within=500 ", script)
        for shell in ("bash", "zsh", "fish"):
            run = subprocess.run([shell, "-n"], input=scripts[shell], capture_output=True, text=True, check=False)
            self.assertEqual((run.returncode, run.stderr), (0, ""), shell)
        # PowerShell runs nowhere here: at least nothing stands open.
        for left, right in ("()", "{}", "[]"):
            self.assertEqual(scripts["powershell"].count(left), scripts["powershell"].count(right))


class OnATerminal(unittest.TestCase):
    """What a shell makes of a line with a tab in it."""

    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        (cls.folder / "bin").mkdir()
        stand_in = cls.folder / "bin/quilletctl"
        stand_in.write_text(STAND_IN, encoding="utf-8")
        stand_in.chmod(0o755)
        (cls.folder / "bin/quilletctl-real").symlink_to(PROGRAM)
        (cls.folder / "names.mof").write_text(machine(), encoding="utf-8")

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.folder, ignore_errors=True)

    def check(self, terminal, typed, expected):
        with self.subTest(typed=typed):
            self.assertEqual(terminal.arguments(f"quilletctl {typed}\r"), expected)

    def complete_everything(self, shell):
        terminal = Terminal(shell, self.folder)
        try:
            # Completing does not begin the trace anew.
            subprocess.run([PROGRAM, "team", "list"], env={"Temp": str(self.folder)}, check=True, capture_output=True)
            traces = {file: file.read_bytes() for file in self.folder.glob("*.txt")}
            self.assertEqual(len(traces), 1)
            self.check(terminal, "wol se\t2:1", ["wol", "set", "2:1"])
            self.check(terminal, "setting list 2:1 --of=te\t", ["setting", "list", "2:1", "--of=team"])
            self.check(terminal, "setting list 2:1 --of te\t", ["setting", "list", "2:1", "--of", "team"])
            self.check(terminal, "--state nam\tadapter list", ["--state", "names.mof", "adapter", "list"])
            self.check(terminal, "adapter list --state=nam\t", ["adapter", "list", "--state=names.mof"])
            self.check(terminal, "team show TE\t", ["team", "show", "TEAM : Zürich"])
            self.check(terminal, "setting set 2:1 \\*Ju\t9\t", ["setting", "set", "2:1", "*JumboPacket", "9014 Bytes"])
            self.check(terminal, "setting set 2:1 \\*JumboPacket=9\t", ["setting", "set", "2:1", "*JumboPacket=9014 Bytes"])
            before = ["--simulate", "names.mof", "adapter", "show"]
            for name in SHOWN:
                for quote in ("", '"', "'"):
                    self.check(terminal, " ".join(before) + f" {quote}{name[:2]}\t", [*before, name])
            self.check(terminal, " ".join(before) + " \\{twin\\ 2\t", [*before, "{twin 2}"])
            self.assertEqual([name for name in ("x", "y", "out") if (self.folder / name).exists()], [])
            self.assertEqual({file: file.read_bytes() for file in self.folder.glob("*.txt")}, traces)
        finally:
            terminal.close()

    def test_bash(self):
        self.complete_everything("bash")

    def test_zsh(self):
        self.complete_everything("zsh")

    def test_fish(self):
        self.complete_everything("fish")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
