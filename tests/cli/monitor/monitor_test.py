#!/usr/bin/env python3
"""A simulated machine that other commands change while it is watched. Usage: monitor_test.py PROGRAM"""
import json
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = pathlib.Path(sys.argv[1]).resolve()


class MonitorTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quilletctl-monitor-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_command(self, *words):
        subprocess.run([PROGRAM, "--state", "lab.mof", *words], cwd=self.folder, check=True, capture_output=True, timeout=60)

    def watch(self, *words):
        process = subprocess.Popen([PROGRAM, "--state", "lab.mof", "monitor", "--interval", "1", *words], cwd=self.folder,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def event(self, process):
        event = json.loads(process.stdout.readline())
        return tuple(event[key] for key in ("event", "kind", "name", "of", "from", "to"))

    def test_what_other_commands_change_is_told(self):
        self.run_command("transaction", "try")
        watched = self.watch("--json")
        self.assertEqual(self.event(watched)[:3], ("started", "machine", "this machine"))
        port, other = "Zorel 10G Dual Port Server Adapter", "Zorel 10G Dual Port Server Adapter #2"
        self.run_command("team", "create", "Front", port, other)
        self.assertEqual(self.event(watched), ("appeared", "team", "Front", None, None, "adaptive load balancing"))
        self.assertEqual({self.event(watched), self.event(watched)},
                         {("appeared", "member", port, "Front", None, "primary, active"),
                          ("appeared", "member", other, "Front", None, "secondary, active")})
        self.run_command("vlan", "add", "Front", "100", "Web")
        self.assertEqual(self.event(watched), ("appeared", "vlan", '100 "Web"', "Front", None, "enabled"))
        self.run_command("vlan", "modify", "Front", "100", "--name", "Mail")
        self.assertEqual(self.event(watched),
                         ("changed", "vlan", '100 "Web"', "Front", '100 "Web" (enabled)', '100 "Mail" (enabled)'))
        self.run_command("team", "primary", other)
        self.assertEqual({self.event(watched), self.event(watched)},
                         {("changed", "member", port, "Front", "primary, active", "secondary, active"),
                          ("changed", "member", other, "Front", "secondary, active", "primary, active")})
        state = self.folder / "lab.mof"
        text = state.read_text(encoding="utf-8")
        state.write_text("this is no machine\n", encoding="utf-8")
        event = self.event(watched)
        self.assertEqual(event[:2], ("gone", "machine"))
        self.assertIn("lab.mof:1:1", event[5])
        state.write_text(text.replace('Speed = 10000000000;', 'Speed = 1000000000;', 1), encoding="utf-8")
        self.assertEqual(self.event(watched)[:2], ("back", "machine"))
        self.assertEqual(self.event(watched), ("changed", "link", port, None, "10 Gbit/s, full duplex", "1 Gbit/s, full duplex"))

    def test_interrupting_ends_it_and_every_line_is_there_before(self):
        watched = self.watch()
        self.assertRegex(watched.stdout.readline(), r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\dZ  watching this machine every 1 s \(")
        for number in (signal.SIGINT, signal.SIGTERM):
            watched.send_signal(number)
        out, err = watched.communicate(timeout=30)
        self.assertEqual((watched.returncode, out, err), (130, "", "quilletctl: interrupted; nothing was changed\n"))

    def test_it_ends_after_its_time(self):
        begun = time.monotonic()
        out, err = self.watch("--for", "2").communicate(timeout=30)
        self.assertEqual((out.count("\n"), err), (1, ""))
        self.assertGreater(time.monotonic() - begun, 1.9)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
