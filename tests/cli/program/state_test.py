#!/usr/bin/env python3
"""Several processes and one state file. Usage: state_test.py PROGRAM [EMULATOR]..."""
import fcntl
import json
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM, *EMULATOR = sys.argv[1:]
ADAPTER = "{64D1BF82-B507-5E42-AED2-547CA8AAC36A}"
# A diagnostic test that runs until it is stopped.
LONG_TEST = 'instance of QuilletSimulator_DiagnosticTest { Name = "%s"; Milliseconds = 600000; };\n'


class StateTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quilletctl-state-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def start(self, *words):
        return subprocess.Popen([*EMULATOR, PROGRAM, "--json", *words], cwd=self.folder, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def ask(self, *words):
        process = self.start(*words)
        out, err = process.communicate(timeout=300)
        self.assertEqual(process.returncode, 0, err.decode())
        return json.loads(out)

    def vlans(self):
        listed = self.ask("--state", "lab.mof", "vlan", "list", ADAPTER)["vlans"]
        return sorted(vlan["number"] for vlan in listed)

    def add(self, number):
        return self.start("--state", "lab.mof", "vlan", "add", ADAPTER, str(number), f"Lab {number}")

    def start_long_test(self):
        """A command that has the file for itself until it is stopped."""
        test = self.ask("--simulate", "diag", "list", ADAPTER)["tests"][0]
        path = os.path.join(self.folder, "lab.mof")
        with open(path, encoding="utf-8") as file:
            text = file.read()
        with open(path, "w", encoding="utf-8") as file:
            file.write(text + LONG_TEST % test["name"])
        running = self.start("--state", "lab.mof", "diag", "run", ADAPTER, str(test["testId"]))
        self.addCleanup(running.communicate)
        self.addCleanup(running.kill)
        deadline = time.monotonic() + 60
        while not self.is_locked(path):
            self.assertIsNone(running.poll(), "the test runs")
            self.assertLess(time.monotonic(), deadline, "the file is not locked")
            time.sleep(0.02)
        return running

    @staticmethod
    def is_locked(path):
        with open(path, "rb") as file:
            try:
                fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                return True
        return False

    def test_none_of_sixteen_changes_at_once_is_lost_and_none_is_in_the_way_of_readers(self):
        numbers = list(range(101, 117))
        changes, readers = [], []
        for number in numbers:
            changes.append(self.add(number))
            readers.append(self.start("--state", "lab.mof", "adapter", "list"))
        for process in changes + readers:
            _, err = process.communicate(timeout=300)
            self.assertEqual(process.returncode, 0, err.decode())
        self.assertEqual(self.vlans(), numbers)
        self.assertEqual(os.listdir(self.folder), ["lab.mof"])

    @unittest.skipIf(EMULATOR, "what is killed would be the emulator")
    def test_a_command_waits_for_the_one_before_and_can_be_interrupted_meanwhile(self):
        self.ask("--state", "lab.mof", "transaction", "try")
        self.start_long_test()
        waiting = self.add(101)
        with self.assertRaises(subprocess.TimeoutExpired):
            waiting.wait(timeout=1)
        self.assertEqual(self.vlans(), [], "who only reads does not wait")
        waiting.send_signal(signal.SIGINT)
        waiting.communicate(timeout=10)
        self.assertNotEqual(waiting.returncode, 0)
        self.assertEqual(self.vlans(), [], "nothing was done")

    @unittest.skipIf(EMULATOR, "what is killed would be the emulator")
    def test_a_killed_command_leaves_no_lock(self):
        self.ask("--state", "lab.mof", "transaction", "try")
        running = self.start_long_test()
        waiting = self.add(101)
        running.kill()
        _, err = waiting.communicate(timeout=60)
        self.assertEqual(waiting.returncode, 0, err.decode())
        self.assertEqual(self.vlans(), [101])
        self.assertEqual(os.listdir(self.folder), ["lab.mof"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
