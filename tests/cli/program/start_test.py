#!/usr/bin/env python3
"""What quilletctl loads, and what it says where the module for machines over the network is not as it should be.

Usage: start_test.py QUILLETCTL MODULE ANOTHER_LIBRARY
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

QUILLETCTL, MODULE, ANOTHER_LIBRARY = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
SIMULATED = ("--simulate", "adapter", "list")
# Nobody answers there.
REMOTE = ("--machine", "127.0.0.1", "--port", "1", "adapter", "list")
NOBODY = "could not connect to 127.0.0.1: 127.0.0.1: nobody answers at this port: "
REFUSED = "quilletctl: could not load what reaches machines over the network: "
NOT_FOUND = ": 0x8007007E"


class StartTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quillet-start-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name).resolve()
        # The program as it is installed, but for its libraries.
        self.program = self.folder / "bin" / "quilletctl"
        self.module = self.folder / "lib" / "quillet" / "quilletctl-remote.so"
        for file in (self.program, self.module):
            file.parent.mkdir(parents=True)
        shutil.copy2(QUILLETCTL, self.program)

    def run_program(self, *words, program=None, **more):
        environment = {**os.environ, "LC_ALL": "C.UTF-8", "LD_LIBRARY_PATH": str(ANOTHER_LIBRARY.parent), **more}
        return subprocess.run([program or self.program, *words], cwd=self.folder, env=environment, text=True, timeout=60,
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)

    def loaded(self, *words, status):
        """The names of all files that the system's loader takes into the process, until its end."""
        done = self.run_program(*words, program=QUILLETCTL, LD_DEBUG="files", LD_DEBUG_OUTPUT=str(self.folder / "loader"))
        self.assertEqual(done.returncode, status, done.stderr)
        [log] = self.folder.glob("loader.*")
        text = log.read_text(encoding="utf-8", errors="replace")
        log.unlink()
        return {pathlib.Path(name).name for name in re.findall(r"file=(\S+) \[0\];  generating link map", text)}

    def refused(self, *words, **more):
        done = self.run_program(*(words or REMOTE), **more)
        self.assertEqual(done.returncode, 1, done.stderr)
        self.assertTrue(done.stderr.startswith(REFUSED), done.stderr)
        self.assertTrue(done.stderr.endswith(NOT_FOUND + "\n"), done.stderr)
        return done.stderr.removeprefix(REFUSED).removesuffix(NOT_FOUND + "\n"), done.stdout

    def test_only_what_reaches_other_machines_is_loaded_late(self):
        def late(names):
            return {part for part in ("libcurl", "libpugixml", "libssl", "quilletctl-remote") for name in names if part in name}

        here = self.loaded(*SIMULATED, status=0)
        self.assertIn("libquillet_platform.so.0", here)
        self.assertEqual(late(here), set())
        # The very same look finds them where they are.
        self.assertEqual(late(self.loaded(*REMOTE, status=1)), {"libcurl", "libpugixml", "libssl", "quilletctl-remote"})

    def test_the_module_is_found_from_where_the_program_lies(self):
        shutil.copy2(MODULE, self.module)
        link = self.folder / "elsewhere"
        link.symlink_to(self.program)
        for program in (self.program, link):
            self.assertIn(NOBODY, self.run_program(*REMOTE, program=program).stderr)

    def test_without_the_module(self):
        why = f"{self.module}: cannot open shared object file: No such file or directory"
        self.assertEqual(self.refused(), (why, ""))
        said, out = self.refused(*REMOTE, "--json")
        self.assertEqual(said, why)
        error = json.loads(out)["error"]
        self.assertEqual((error["status"], error["code"]), (1, "0x8007007E"))
        self.assertIn(why, error["message"])
        # Nobody is asked for a password in vain, and a file with one is not read.
        self.assertEqual(self.refused(*REMOTE, "--credentials", "no-such-file")[0], why)
        # Nothing else misses it.
        simulated = self.run_program(*SIMULATED)
        self.assertEqual((simulated.returncode, simulated.stderr), (0, ""))
        self.assertEqual(simulated.stdout, self.run_program(*SIMULATED, program=QUILLETCTL).stdout)

    def test_a_module_that_is_none(self):
        good = MODULE.read_bytes()
        of_no_processor = good[:18] + b"\xff\xff" + good[20:]
        for content in (b"", b"not a library\n" * 100, good[:60], of_no_processor):
            self.module.write_bytes(content)
            self.assertIn(f"{self.module}: ", self.refused()[0])
        self.module.unlink()
        self.module.mkdir()
        self.assertIn(f"{self.module}: ", self.refused()[0])

    def test_another_library_in_its_place(self):
        shutil.copy2(ANOTHER_LIBRARY, self.module)
        self.assertIn("QuilletctlRemoteModule", self.refused()[0])

    def test_the_module_of_another_version(self):
        version = re.search(r"\d+\.\d+\.\d+", self.run_program("version").stdout)[0]
        content = MODULE.read_bytes()
        here = b"\0" + version.encode() + b"\0"
        self.assertIn(here, content)
        other = re.sub(r"\d", "9", version)
        self.module.write_bytes(content.replace(here, b"\0" + other.encode() + b"\0"))
        self.assertEqual(self.refused()[0], f"{self.module} is of version {other}, this program of {version}")

    def test_the_environment_names_no_module(self):
        stranger = self.folder / "stranger"
        stranger.mkdir()
        shutil.copy2(MODULE, stranger / self.module.name)
        self.assertIn("No such file", self.refused(LD_LIBRARY_PATH=f"{stranger}:{ANOTHER_LIBRARY.parent}")[0])

    def test_the_module_exports_one_function(self):
        listing = subprocess.run(["nm", "-D", "--defined-only", "--format=just-symbols", MODULE], check=True,
                                 capture_output=True, text=True)
        self.assertEqual(listing.stdout.split(), ["QuilletctlRemoteModule"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
