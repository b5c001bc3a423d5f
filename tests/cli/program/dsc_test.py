#!/usr/bin/env python3
"""Drives quilletctl as a configuration engine does: by what its manifest says, and by nothing else.

The engine looks the programs up in the PATH, hands an instance over on standard input, takes one line of JSON from standard
output and an object a line from standard error, and reads the exit status as the manifest explains it.

Usage: dsc_test.py MANIFEST PROGRAM MACHINE [EMULATOR...] (needs Debian's python3-jsonschema)
"""
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

from jsonschema import Draft202012Validator

MANIFEST, PROGRAM, MACHINE = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
EMULATOR = sys.argv[4:]
ADAPTER = "Zorel Gigabit Server Adapter (東京)"
WITH_INPUT = {"get", "set", "test", "whatIf"}
# What an operation may have in a manifest.
KEYS = {
    "get": {"executable", "args", "input"},
    "set": {"executable", "args", "input", "implementsPretest", "handlesExist", "return"},
    "test": {"executable", "args", "input", "return"},
    "whatIf": {"executable", "args", "input", "return"},
    "export": {"executable", "args"},
}
LEVELS = {"error", "warn", "info", "debug", "trace"}


class Failure(Exception):
    def __init__(self, status, messages):
        super().__init__(f"{status}: {messages}")
        self.status, self.messages = status, messages


class Engine:
    """Knows the manifest, and a machine in a file."""

    def __init__(self, folder, faults=""):
        self.manifest = json.loads(MANIFEST.read_text(encoding="utf-8"))
        self.machine = folder / "machine.mof"
        self.machine.write_text(MACHINE.read_text(encoding="utf-8") + faults, encoding="utf-8")
        program = folder / "quilletctl"
        words = shlex.join([*EMULATOR, str(PROGRAM), "--state"])
        program.write_text(f'#!/bin/sh\ncd "{folder}" && exec {words} machine.mof "$@"\n', encoding="utf-8")
        program.chmod(0o755)
        self.path = f"{folder}{os.pathsep}{os.environ['PATH']}"
        self.messages = []
        validator = Draft202012Validator(self.start(self.manifest["schema"]["command"], ""))
        validator.check_schema(validator.schema)
        self.validate = validator.validate

    def start(self, command, text):
        run = subprocess.run([command["executable"], *command["args"]], input=text.encode(), capture_output=True,
                             check=False, env={**os.environ, "PATH": self.path, "LC_ALL": "C.UTF-8"})
        self.messages = [json.loads(line) for line in run.stderr.decode().splitlines()]
        for message in self.messages:
            (level, said), = message.items()
            assert level in LEVELS and isinstance(said, str), message
        if run.returncode != 0:
            assert str(run.returncode) in self.manifest["exitCodes"], run.returncode
            assert run.stdout == b"", run.stdout
            raise Failure(run.returncode, self.told("error"))
        lines = run.stdout.decode().splitlines()
        assert len(lines) == 1, lines
        return json.loads(lines[0])

    def told(self, level):
        return [message[level] for message in self.messages if level in message]

    def do(self, operation, instance=None):
        text = instance if isinstance(instance, str) else "" if instance is None else json.dumps(instance)
        answer = self.start(self.manifest[operation], text)
        self.validate(answer)
        return answer

    def saved(self):
        return self.machine.read_bytes()


class Dsc(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def engine(self, **options):
        return Engine(self.folder, **options)

    WANTED = {
        "adapters": [{"name": ADAPTER, "settings": {"*JumboPacket": "9014 Bytes"}, "vlans": [{"id": 7, "name": "Büro"}]}]
    }

    def test_the_manifest(self):
        manifest = json.loads(MANIFEST.read_text(encoding="utf-8"))
        self.assertEqual(MANIFEST.name, "quillet.dsc.resource.json")
        self.assertEqual(manifest["$schema"], "https://aka.ms/dsc/schemas/v3/bundled/resource/manifest.json")
        self.assertRegex(manifest["type"], r"^\w+(\.\w+){0,2}/\w+$")
        self.assertRegex(manifest["version"], r"^\d+\.\d+\.\d+$")
        version = subprocess.run([*EMULATOR, PROGRAM, "version"], check=True, capture_output=True).stdout.decode()
        self.assertEqual(version.split(), ["quilletctl", manifest["version"]])
        self.assertLessEqual(
            set(manifest), {"$schema", "type", "version", "description", "tags", "schema", "exitCodes", *KEYS}
        )
        for name, keys in KEYS.items():
            operation = manifest[name]
            self.assertEqual(set(operation), keys, name)
            self.assertTrue(all(isinstance(word, str) for word in operation["args"]), name)
            self.assertEqual(operation.get("input"), "stdin" if name in WITH_INPUT else None, name)
            self.assertEqual(operation.get("return"), "state" if name in WITH_INPUT - {"get"} else None, name)
        self.assertEqual(set(manifest["schema"]), {"command"})
        self.assertEqual(set(manifest["schema"]["command"]), {"executable", "args"})
        self.assertTrue(all(re.fullmatch(r"\d+", code) for code in manifest["exitCodes"]))
        help_text = subprocess.run([*EMULATOR, PROGRAM, "help", "dsc"], check=True, capture_output=True).stdout.decode()
        for operation in [*(manifest[name] for name in KEYS), manifest["schema"]["command"]]:
            noun, verb = operation["args"]
            self.assertEqual((operation["executable"], noun), ("quilletctl", "dsc"))
            self.assertRegex(help_text, rf"(?m)^ *(quilletctl )?(dsc )?{verb}\b")

    def test_a_machine_becomes_what_an_instance_says_and_stays_so(self):
        engine = self.engine()
        before = engine.saved()
        is_before = engine.do("get", self.WANTED)
        self.assertEqual(is_before["adapters"][0]["vlans"], [{"id": 7, "state": "absent"}])
        self.assertEqual(engine.do("test", self.WANTED), {**is_before, "_inDesiredState": False})
        self.assertEqual(engine.do("whatIf", self.WANTED), self.WANTED)
        self.assertEqual([text[:9] for text in engine.told("info")], ["would set", "would add"])
        self.assertEqual(engine.saved(), before)

        self.assertEqual(engine.do("set", self.WANTED), {**self.WANTED, "_rebootRequested": False})
        self.assertEqual([text[:3] for text in engine.told("info")], ["set", "add"])
        after = engine.saved()
        self.assertNotEqual(after, before)
        self.assertEqual(engine.do("get", self.WANTED), self.WANTED)
        self.assertEqual(engine.do("test", self.WANTED), {**self.WANTED, "_inDesiredState": True})
        self.assertEqual(engine.do("set", self.WANTED), {**self.WANTED, "_rebootRequested": False})
        self.assertEqual(engine.messages, [])
        self.assertEqual(engine.saved(), after)

    def test_what_is_exported_is_an_instance(self):
        engine = self.engine()
        exported = engine.do("export")
        for everything in (None, "\n", {}):
            self.assertEqual(engine.do("get", everything), exported)
        self.assertGreater(len(exported["adapters"]), 3)
        self.assertTrue(engine.do("test", exported)["_inDesiredState"])
        self.assertTrue(engine.do("test", {**exported, "exclusive": True})["_inDesiredState"])

    def test_an_exclusive_instance_owns_the_lists(self):
        engine = self.engine()
        nothing = {"exclusive": True}
        is_before = engine.do("get", nothing)
        self.assertGreater(len(is_before["teams"]), 0)
        self.assertIs(engine.do("test", nothing)["_inDesiredState"], False)
        self.assertEqual(engine.do("set", nothing), {**nothing, "_rebootRequested": False})
        self.assertTrue(any("object ID" in text for text in engine.told("warn")))
        self.assertEqual(engine.do("export")["teams"], [])

        engine.do("set", self.WANTED)
        no_vlans = {"adapters": [{"name": ADAPTER}], "exclusive": True}
        vlan, = engine.do("get", no_vlans)["adapters"][0]["vlans"]
        self.assertEqual((vlan["id"], vlan["name"]), (7, "Büro"))

    def test_a_restart(self):
        engine = self.engine(faults='instance of QuilletSimulator_FollowUp { ClassName = "Zorel_VLAN"; Action = 1; };\n')
        self.assertIs(engine.do("set", self.WANTED)["_rebootRequested"], True)

    def test_a_change_that_is_refused(self):
        engine = self.engine(faults="""instance of QuilletSimulator_Fault { Id = 1; Operation = "ExecMethod";
            MethodName = "CreateVLAN"; Code = 0x80041003; Repeat = TRUE; };""")
        before = engine.do("export")
        with self.assertRaises(Failure) as failed:
            engine.do("set", self.WANTED)
        self.assertEqual(failed.exception.status, 1)
        message, = failed.exception.messages
        self.assertIn("0x80041003 WBEM_E_ACCESS_DENIED", message)
        self.assertTrue(message.endswith("; everything is as it was before"), message)
        self.assertEqual(engine.do("export"), before)

    def test_an_instance_that_does_not_fit(self):
        engine = self.engine()
        before = engine.saved()
        wrong = {"adapters": [{"name": ADAPTER, "settings": {"*None": 1, "*JumboPacket": 9014}}, {"name": "Nobody"}]}
        for operation in ("test", "whatIf", "set"):
            with self.assertRaises(Failure) as failed:
                engine.do(operation, wrong)
            self.assertEqual((failed.exception.status, len(failed.exception.messages)), (3, 2), operation)
        self.assertEqual(engine.saved(), before)

    def test_what_is_no_instance(self):
        engine = self.engine()
        before = engine.saved()
        for operation in WITH_INPUT:
            for text in ("{", "[]", '{"adapters": 1}', '{"adapters": [{"name": "\\u001b]0;x"}], "x": 1}', "\x1b"):
                with self.assertRaises(Failure) as failed:
                    engine.do(operation, text)
                self.assertEqual((failed.exception.status, len(failed.exception.messages)), (2, 1), (operation, text))
        with self.assertRaises(Failure) as failed:
            engine.do("get", {"adapters": [{"name": "Nobody"}]})
        self.assertEqual(failed.exception.status, 2)
        self.assertEqual(engine.saved(), before)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
