#!/usr/bin/env python3
"""Tests of scripts/make-machine: python3 make_machine_test.py MAKE-MACHINE MACHINES SCHEMA"""

import hashlib
import os
import subprocess
import sys
import unittest

MAKE_MACHINE, MACHINES, SCHEMA = (os.path.abspath(path) for path in sys.argv[1:4])
CHECK = os.path.join(os.path.dirname(os.path.abspath(__file__)), "check_dmtf.py")


def run(*arguments):
    return subprocess.run([sys.executable, MAKE_MACHINE, *arguments], capture_output=True)


class MakeMachine(unittest.TestCase):
    def expect_up_to_date(self, file, *arguments):
        with open(os.path.join(MACHINES, file), "rb") as stream:
            shipped = stream.read()
        written = run(*arguments)
        self.assertEqual((0, b""), (written.returncode, written.stderr))
        self.assertTrue(shipped == written.stdout, f"{file} is not what make-machine {' '.join(arguments)} writes")

    def test_built_in_machine_is_up_to_date(self):
        self.expect_up_to_date("builtin.mof", "--builtin")

    def test_minimal_machine_is_up_to_date(self):
        self.expect_up_to_date("minimal.mof", "--bare", "1")

    def test_the_same_arguments_give_the_same_bytes(self):
        self.assertEqual(*(hashlib.sha256(run("50").stdout).digest() for _ in range(2)))

    def test_machines_are_dmtf_mof(self):
        for count in ("0", "1", "10", "100"):
            checked = subprocess.run(
                [sys.executable, CHECK, os.path.join(SCHEMA, "zorel.mof"), "-"],
                input=run(count).stdout,
                capture_output=True,
            )
            self.assertEqual((0, b""), (checked.returncode, checked.stderr), count)

    def test_counts_out_of_range_and_other_texts_are_bad_usage(self):
        for arguments in ((), ("-1",), ("100001",), ("ten",), ("²",), ("1", "2"), ("--bare",), ("--bare", "--builtin")):
            refused = run(*arguments)
            self.assertEqual((2, b""), (refused.returncode, refused.stdout), arguments)
            self.assertIn(b"expected a number of adapters", refused.stderr, arguments)

    def test_help_tells_the_usage(self):
        told = run("--help")
        self.assertEqual(0, told.returncode)
        for text in (b"make-machine N", b"--bare", b"--builtin"):
            self.assertIn(text, told.stdout)

    def test_a_reader_that_leaves_early_is_no_crash(self):
        command = f'"{sys.executable}" "{MAKE_MACHINE}" 5000 | head -c 1000'
        done = subprocess.run(["/bin/sh", "-c", command], capture_output=True)
        self.assertEqual((1000, b""), (len(done.stdout), done.stderr))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
