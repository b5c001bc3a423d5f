#!/usr/bin/env python3
"""Holds what every command of quilletctl answers with --json against its JSON Schema in docs/json.

Each schema is strict: every answer is also tried with a key too many and with a key too few, everywhere, and must be
refused then. Each line is also tried with --dry-run, which must tell what it would do and do nothing. Usage: json_schemas_test.py PROGRAM SCHEMAS MACHINE MAKE_FLASH_IMAGE (needs Debian's python3-jsonschema)
"""
import copy
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from jsonschema import Draft202012Validator, RefResolver

PROGRAM, SCHEMAS, MACHINE, MAKE_FLASH_IMAGE = (pathlib.Path(argument).resolve() for argument in sys.argv[1:5])

TEAM = "TEAM : Zürich"
PORT = "Zorel 10G Dual Port Server Adapter"
OTHER_PORT = "Zorel 10G Dual Port Server Adapter #2"
FREE = "Zorel Gigabit Server Adapter (東京)"
MEMBER = "Zorel Quad Port Gigabit Server Adapter #2"
SECURE = "Zorel Gigabit Server Adapter #2"
# Beside what the machine has: an adapter with link security, secrets included.
MORE = """
instance of Zorel_LinkSecConfiguration { DeviceID = "{B8A405BF-61B9-5217-AADA-670F163E6DF1}"; OuterEAPType = 2;
    LinksecCredPassword = "secret"; strTXSAKey = "secret"; strSecStats = "InPktsOK 7\\n"; };
instance of Zorel_PACFile { DeviceID = "{B8A405BF-61B9-5217-AADA-670F163E6DF1}"; FileName = "old.pac"; };
instance of Zorel_PACFile { DeviceID = ""; FileName = "new.pac"; PACFilePassword = "secret"; };
"""

# Machines on which something comes to its end half-way.
FAULTS = {
    "faulty.mof": """
instance of QuilletSimulator_Fault { Id = 1; Operation = "ExecMethod"; MethodName = "CreateVLAN"; Nth = 2; };
instance of QuilletSimulator_Fault { Id = 2; Operation = "PutInstance"; Nth = 2; };
instance of QuilletSimulator_Fault { Id = 3; Operation = "ExecMethod"; MethodName = "ProgramFlashEx"; };
""",
    "unclosed.mof": 'instance of QuilletSimulator_Fault { Id = 1; Operation = "ExecMethod"; MethodName = "Apply"; };',
}

# The lines of one run, each on the machine that the one before it left, or on the one that it names; with the exit
# status where it is not 0.
LINES = [
    (["adapter", "list"],), (["adapter", "show", FREE],), (["adapter", "capabilities", FREE],),
    (["adapter", "ports", MEMBER],), (["adapter", "identify", FREE, "--seconds", "1"],),
    (["setting", "list", FREE],), (["setting", "list", "*Quad*", "*JumboPacket"],),
    (["setting", "list", "--all-adapters", "--changed"],), (["team", "list", "--up"],), (["vlan", "list", "--down"],), (["setting", "list", TEAM, "--of", "team"],), (["setting", "list", "VoIP", "--of=vlan"],),
    (["setting", "list", FREE, "--of", "boot-agent"],), (["setting", "get", FREE, "*FlowControl"],),
    (["setting", "set", FREE, "*JumboPacket", "9014"],), (["setting", "set", FREE, "*JumboPacket", "9014"],),
    (["setting", "set", FREE, "DriverDate", "2012-01-01"], 3), (["setting", "set", FREE, "*TransmitBuffers", "7"], 1),
    (["setting", "set", "--all-adapters", "*JumboPacket", "4088"],),
    (["setting", "set", FREE, "*JumboPacket=9014", "*FlowControl=0"],), (["setting", "set", "*", "*TransmitBuffers=7"], 1),
    (["setting", "set", FREE, "*JumboPacket=1514", "DriverDate=2012"], 3),
    (["setting", "reset", FREE, "*FlowControl"],), (["setting", "reset", FREE, "DriverDate"], 3), (["setting", "reset", "*"],),
    (["setting", "reset", "*"],), (["profile", "set", FREE, "5"],), (["profile", "set", "*", "2"],),
    (["profile", "list"],), (["power", "show", FREE],), (["power", "set", FREE, "--mode", "1"],),
    (["power", "reapply", FREE],), (["power", "reapply", "*"], 1), (["power", "set", "*", "--smart-power-down", "off"],),
    (["wol", "set", "*", "--magic-packet", "off"],), (["wol", "show", FREE],), (["wol", "set", FREE, "--magic-packet", "on"],),
    (["vlan", "list"],), (["vlan", "check", TEAM, "12", "VoIP"], 3), (["vlan", "check", TEAM, "100", "Lab"],),
    (["vlan", "add", TEAM, "12", "VoIP"], 3), (["vlan", "add", TEAM, "100", "Lab", "--through", "101"],),
    (["vlan", "modify", TEAM, "100", "--name", "Labor"],), (["vlan", "modify", TEAM, "101", "--id", "100"], 3),
    (["vlan", "remove", TEAM, "100", "--yes"],),
    (["team", "list"],), (["team", "show", TEAM],), (["team", "modes", PORT, OTHER_PORT],),
    (["team", "modes", "--team", TEAM],), (["team", "create", "Front", PORT, OTHER_PORT, "--mode", "4"],),
    (["team", "create", "Front", PORT], 3), (["team", "add", TEAM, FREE],), (["team", "primary", FREE],),
    (["team", "remove", TEAM, FREE, "--yes"],), (["team", "modify", TEAM, "--name", "Back"],),
    (["team", "switch-test", "Front"],), (["team", "delete", "Front", "--yes"],),
    (["linksec", "show", SECURE],), (["linksec", "pac-show", SECURE, "old.pac"],), (["linksec", "pmk", SECURE],),
    (["linksec", "stats", SECURE],), (["linksec", "set-keys", SECURE],), (["linksec", "set-auth", SECURE],),
    (["linksec", "set-auth", SECURE, "--outer", "1", "--user", "nobody"], 1),
    (["linksec", "pmk", SECURE],), (["linksec", "import-pac", SECURE, "new.pac"],),
    (["linksec", "pac-delete", SECURE, "old.pac", "--yes"],),
    (["diag", "list", FREE],), (["diag", "run", FREE, "1", "--interval", "10"],), (["diag", "stop", FREE, "1"],),
    (["boot", "show", FREE],), (["boot", "read", FREE, "flash.bin"],), (["boot", "inspect", FREE, "new.img"],),
    (["boot", "verify", FREE, "new.img"],), (["boot", "write", FREE, "new.img", "--yes"],),
    (["machine", "record", "record.mof"],), (["report", "report.html"],), (["monitor", "--for", "1"],),
    (["iscsi", "list"],), (["iscsi", "show", FREE],), (["iscsi", "set", FREE, "primary"],),
    (["config", "show"],), (["config", "schema"],), (["config", "validate", "fits.json"],),
    (["config", "validate", "none.json"], 3), (["config", "diff", "fits.json"], 3), (["config", "apply", "none.json"], 3),
    (["config", "apply", "fits.json"],), (["config", "show", "--like", "fits.json"],), (["config", "diff", "fits.json"],),
    (["config", "apply", "fits.json"], 1, "faulty.mof"),
    (["warnings"],), (["trace"],), (["transaction", "try"],), (["version"],), (["completion", "zsh"],),
    (["help"],), (["help", "vlan", "add"],),
    (["adapter", "show", "nobody"], 2), (["adapter", "shew"], 2), (["linksec", "stats", FREE], 1),
    (["vlan", "add", TEAM, "200", "Lab", "--through", "202"], 1, "faulty.mof"),
    (["team", "add", TEAM, PORT, OTHER_PORT], 1, "faulty.mof"),
    (["boot", "write", FREE, "new.img", "--yes"], 1, "faulty.mof"),
    (["power", "set", FREE, "--mode", "1"], 1, "unclosed.mof"), (["transaction", "try"], 1, "unclosed.mof"),
]
DOCUMENTS = {
    "fits.json": {"adapters": [{"name": PORT, "settings": {"*JumboPacket": 1514, "*FlowControl": 0},
                                "vlans": [{"id": 7, "name": "A"}, {"id": 8, "name": "B"}]}]},
    "none.json": {"adapters": [{"name": "nobody"}]},
}
# These answer with a document, in which nearly every key may be missing, and with its schema.
LOOSE = {"config-show", "config-schema"}
# What these read from a descriptor.
SECRETS = {"set-keys": "one\ntwo\n", "set-auth": "one\n", "import-pac": "secret\n"}
# What a provider is asked without anything being changed. Every other method counts as a change.
ASKING = re.compile(r"Get\w+|Validate\w+|Verify\w+|Read\w+|Is\w+")


def changing_calls(journal):
    """The calls of a journal that open a client set or change something."""
    calls = []
    for call in journal.splitlines():
        method = re.search(r"^  ExecMethod .*, (\w+)\(", call)
        if method and not ASKING.fullmatch(method[1]) or call.startswith(("  PutInstance", "  DeleteInstance")):
            calls.append(call)
    return calls


def objects_in(document, path=(), most=None):
    """The places of the objects in a document, of those in a list only the first where there are many."""
    if isinstance(document, dict):
        yield path
    for key, value in document.items() if isinstance(document, dict) else enumerate(document[:most]):
        if isinstance(value, (dict, list)):
            yield from objects_in(value, (*path, key), most)


def at(document, path):
    for key in path:
        document = document[key]
    return document


class Schemas(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.schemas = {file.stem: json.loads(file.read_text(encoding="utf-8")) for file in SCHEMAS.glob("*.json")}
        cls.folder = tempfile.TemporaryDirectory()
        folder = pathlib.Path(cls.folder.name)
        (folder / "lab.mof").write_text(MACHINE.read_text(encoding="utf-8") + MORE, encoding="utf-8")
        for name, faults in FAULTS.items():
            (folder / name).write_text(MACHINE.read_text(encoding="utf-8") + faults, encoding="utf-8")
        for name, document in DOCUMENTS.items():
            (folder / name).write_text(json.dumps(document), encoding="utf-8")
        subprocess.run([MAKE_FLASH_IMAGE, folder / "new.img", "PXE:1.4.0", "iSCSI:2.1.7:1:3"], check=True,
                       capture_output=True)
        cls.answers, cls.dry_runs = [], []
        for line, *more in LINES:
            status, machine = (*more, 0)[0], ["--simulate", more[1]] if more[1:] else ["--state", "lab.mof"]
            before = cls.files_in(folder)
            dry = cls.run_line(folder, [*machine, "--journal", "--dry-run", *line])
            changed = cls.files_in(folder) != before
            run = cls.run_line(folder, [*machine, "--journal", *line])
            cls.answers.append((line, status, run))
            cls.dry_runs.append((line, dry, changed, run))

    @staticmethod
    def files_in(folder):
        return {file.name: file.read_bytes() for file in folder.iterdir() if file.suffix in (".mof", ".bin", ".img")}

    @staticmethod
    def run_line(folder, line):
        words, descriptors = [PROGRAM, "--json", *line], ()
        secret = next((SECRETS[word] for word in line if word in SECRETS), None)
        if secret:
            reading, writing = os.pipe()
            os.write(writing, secret.encode())
            os.close(writing)
            words, descriptors = [*words, "--secret-fd", str(reading)], (reading,)
        run = subprocess.run(words, cwd=folder, env={**os.environ, "Temp": str(folder)}, capture_output=True,
                             pass_fds=descriptors, check=False)
        for descriptor in descriptors:
            os.close(descriptor)
        return run

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def validator(self, name):
        document = SCHEMAS.parent.parent / "state/document.schema.json"
        resolver = RefResolver((SCHEMAS / f"{name}.json").as_uri(), self.schemas[name],
                               store={(SCHEMAS / "common.json").as_uri(): self.schemas["common"],
                                      document.as_uri(): json.loads(document.read_text(encoding="utf-8"))})
        return Draft202012Validator(self.schemas[name], resolver=resolver)

    @staticmethod
    def schema_for(line, answer):
        alone = ("warnings", "report", "monitor", "trace", "version", "completion", "help")
        return "error" if set(answer) == {"error"} else "-".join(line[:1] if line[0] in alone else line[:2])

    def test_every_answer_fits_and_nothing_else_does(self):
        used = set()
        for line, status, run in self.answers:
            with self.subTest(line=" ".join(line)):
                self.assertEqual(run.returncode, status, run.stdout.decode() + run.stderr.decode())
                answer = json.loads(run.stdout)
                name = self.schema_for(line, answer)
                used.add(name)
                validator = self.validator(name)
                validator.validate(answer)
                if name == "config-schema":
                    Draft202012Validator.check_schema(answer)
                for path in objects_in(answer, most=3) if name not in LOOSE else ():
                    changed = copy.deepcopy(answer)
                    at(changed, path)["unexpected"] = 1
                    self.assertFalse(validator.is_valid(changed), f"a key too many at {path}")
                    for key in at(answer, path):
                        changed = copy.deepcopy(answer)
                        del at(changed, path)[key]
                        self.assertFalse(validator.is_valid(changed), f"without {key} at {path}")
        self.assertEqual(used, set(self.schemas) - {"common", "dry-run"}, "every schema is used, and every answer has one")

    def test_a_dry_run_tells_what_it_would_change_and_changes_nothing(self):
        changing = 0
        for line, dry, changed, run in self.dry_runs:
            with self.subTest(line=" ".join(line)):
                self.assertFalse(changed, "a file is another")
                self.assertEqual(changing_calls(dry.stderr.decode()), [])
                answer = json.loads(dry.stdout)
                if changing_calls(run.stderr.decode()) or line[:2] == ["boot", "read"]:
                    changing += 1
                    self.assertEqual(dry.returncode, 0, dry.stderr.decode())
                    self.validator("dry-run").validate(answer)
                    self.assertTrue(answer["steps"])
                elif "dryRun" not in answer:
                    # A command that only tells something, or whose checks found something. Traces tell the time.
                    self.assertEqual(dry.returncode, run.returncode)
                    self.assertEqual(dry.stdout, run.stdout if line[0] not in ("trace", "monitor") else dry.stdout)
        self.assertGreater(changing, 30)

    def test_every_command_has_a_schema(self):
        tree = next(json.loads(run.stdout) for line, _, run in self.answers if line == ["help"])
        # What a configuration engine reads has a schema of its own, and dsc_test.py holds the answers against that.
        names = {command["name"] for command in tree["commands"] if not command["name"].startswith("dsc ")}
        self.assertEqual({name.replace(" ", "-") for name in names},
                         set(self.schemas) - {"common", "error", "dry-run"})

    def test_the_schemas_are_schemas_and_strict(self):
        for name, schema in self.schemas.items():
            with self.subTest(schema=name):
                Draft202012Validator.check_schema(schema)
                for path in objects_in(schema):
                    part = at(schema, path)
                    if part.get("type") == "object" and path[-1:] != ("properties",):
                        self.assertIs(part["additionalProperties"], False, path)
                        self.assertEqual(part["required"], list(part["properties"]), path)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
