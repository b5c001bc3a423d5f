#!/usr/bin/env python3
"""quilletctl --machine: a machine over HTTPS is one like any other."""
import json
import os
import subprocess
import sys

sys.dont_write_bytecode = True
import served  # noqa: E402
from served import PASSWORD, QUILLETCTL  # noqa: E402


class QuilletctlTest(served.ServingTest):
    def setUp(self):
        super().setUp()
        _, url = self.start_secure("--journal", "journal.txt")
        self.port = url.split(":")[2].split("/")[0]
        self.write("credentials", f"user = tester\npassword = {PASSWORD}\n", 0o600)

    def run_tool(self, *words, machine="localhost", secrets="", more=None):
        """Its status, answer and errors; no password is in them."""
        line = [QUILLETCTL, *(("--machine", machine, "--port", self.port, "--auth", "basic") if machine else ()), *words]
        environment = {**os.environ, **(more or {})}
        read, write = os.pipe()
        os.write(write, secrets.encode())
        os.close(write)
        done = subprocess.run([str(word).replace("FD", str(read)) for word in line], cwd=self.folder, capture_output=True,
                              text=True, timeout=60, check=False, pass_fds=(read,), env=environment)
        os.close(read)
        self.assertNotIn(PASSWORD, done.stdout + done.stderr)
        return done.returncode, done.stdout, done.stderr

    def answer(self, *words, **how):
        status, out, errors = self.run_tool("--ca", "cert.pem", "--credentials", "credentials", *words, **how)
        self.assertEqual((status, errors), (0, ""), out)
        return out

    def test_says_what_a_simulated_machine_says(self):
        for words in (("adapter", "list"), ("team", "list"), ("setting", "list", "TEAM : Zürich"), ("diag", "list"),
                      ("vlan", "list", "--json"), ("iscsi", "list"), ("boot", "show", "{16CDCBB2-B8CE-5ADF-895E-46E75F39BB9F}"),
                      ("power", "show", "{16CDCBB2-B8CE-5ADF-895E-46E75F39BB9F}")):
            with self.subTest(words):
                simulated = self.run_tool("--simulate", *words, machine="")
                remote = self.run_tool("--ca", "cert.pem", "--credentials", "credentials", *words)
                self.assertEqual(remote, simulated)

    def test_records_and_draws_what_a_simulated_machine_is(self):
        for noun in (("machine", "record"), ("report",)):
            with self.subTest(noun):
                ending = "mof" if noun == ("machine", "record") else "svg"
                self.answer(*noun, f"remote.{ending}")
                self.run_tool("--simulate", *noun, f"here.{ending}", machine="")
                remote, here = ((self.folder / f"{place}.{ending}").read_text(encoding="utf-8") for place in ("remote", "here"))
                self.assertEqual(remote.replace("adapters of localhost", "adapters of this machine"), here)

    def test_changes_the_machine_and_reads_back(self):
        free = [each["objectId"] for each in json.loads(self.answer("adapter", "list", "--json"))["adapters"][4:6]]
        self.answer("team", "create", "Pair", *free, "--yes")
        self.assertIn("Pair", self.answer("team", "list"))
        self.answer("vlan", "add", "Pair", "77", "Labor")
        self.assertIn("Labor", self.answer("vlan", "list", "Pair"))
        journal = (self.folder / "journal.txt").read_text(encoding="utf-8")
        self.assertEqual(journal.count("BeginApply"), 2)
        self.assertNotIn(PASSWORD, journal + (self.folder / "log.txt").read_text(encoding="utf-8"))

    def test_the_ways_of_a_password(self):
        ca = ("--ca", "cert.pem")
        self.assertEqual(self.run_tool(*ca, "--user", "tester", "--password-fd", "FD", "team", "list",
                                       secrets=PASSWORD + "\n")[0], 0)
        self.assertEqual(self.run_tool(*ca, "team", "list", more={"QUILLET_CREDENTIALS": "credentials"})[0], 0)
        status, _, errors = self.run_tool(*ca, "--user", "tester", "--password-fd", "FD", "team", "list", secrets="wrong\n")
        self.assertEqual(status, 1)
        self.assertIn("does not take this user and password", errors)
        self.assertNotIn("wrong", errors)
        status, _, errors = self.run_tool(*ca, "--user", "tester", "team", "list")
        self.assertEqual(status, 2, errors)  # nobody can be asked

    def test_certificates(self):
        mine = ("--credentials", "credentials")
        status, _, errors = self.run_tool(*mine, "team", "list")
        self.assertEqual(status, 1)
        self.assertIn("its certificate is not trusted", errors)
        status, out, errors = self.run_tool(*mine, "--insecure", "team", "list")
        self.assertEqual((status, errors), (0, "quilletctl: warning: --insecure: the machine's certificate is not checked; "
                                               "somebody else may answer in its place\n"))
        self.assertIn("TEAM : Zürich", out)
        status, _, errors = self.run_tool(*mine, "--ca", "nowhere.pem", "team", "list")
        self.assertEqual(status, 1)
        self.assertIn("nowhere.pem", errors)

    def test_a_machine_that_goes(self):
        process, url = self.start_secure()
        self.port = url.split(":")[2].split("/")[0]
        self.answer("team", "list")
        process.kill()
        process.wait()
        status, _, errors = self.run_tool("--ca", "cert.pem", "--credentials", "credentials", "team", "list")
        self.assertEqual(status, 1)
        self.assertIn("localhost: nobody answers at this port: ", errors)
        self.assertIn(f"(https://localhost:{self.port}/wsman): 0x800706BA RPC_S_SERVER_UNAVAILABLE", errors)


if __name__ == "__main__":
    served.main()
