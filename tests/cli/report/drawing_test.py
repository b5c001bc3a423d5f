#!/usr/bin/env python3
"""The drawing in the documents is the one that is made now. Usage: drawing_test.py QUILLETCTL DRAWING"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

QUILLETCTL, DRAWING = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])


class DrawingTest(unittest.TestCase):
    def test_the_drawing_in_the_documents_is_current(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder, "machine.svg")
            subprocess.run([QUILLETCTL, "--simulate", "report", made], check=True, capture_output=True)
            self.assertEqual(made.read_text(encoding="utf-8"), DRAWING.read_text(encoding="utf-8"),
                             "write it anew: quilletctl --simulate report docs/machine.svg --yes")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
