"""The role's module against simulated machines, without Ansible around it.

    module_test.py QUILLETCTL WORK_DIR
"""

import io
import json
import os
import re
import shutil
import subprocess
import sys
import unittest
from contextlib import redirect_stdout

import role
import yaml
from ansible.module_utils import basic

QUILLETCTL, WORK = (os.path.abspath(argument) for argument in sys.argv[1:3])
STATE = os.path.join(WORK, "machine.mof")
ON_THE_MACHINE = [QUILLETCTL, "--state", STATE]
NETWORK = role.module()
GIGABIT = "Zorel Gigabit Server Adapter #2"
FAST = "Zorel 10G Dual Port Server Adapter #5"


def run(words):
    done = subprocess.run(words, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def make_machine(adapters, text=""):
    script = os.path.join(role.SOURCE, "scripts", "make-machine")
    made = subprocess.run([sys.executable, script, str(adapters)], check=True, stdout=subprocess.PIPE).stdout.decode()
    instances = re.split(r"\n\n(?=instance of )", made)
    light = [each for each in instances if not re.match(r"instance of Zorel_(BootAgent|Diag|Power)", each)]
    with open(STATE, "w", encoding="utf-8") as output:
        output.write("\n\n".join(light) + "\n" + text)


def saved():
    with open(STATE, encoding="utf-8") as file:
        return file.read()


def fault(**values):
    lines = "".join(f" {name} = {json.dumps(value)};" for name, value in values.items())
    return f"instance of QuilletSimulator_Fault {{ Id = 1;{lines} }};\n"


class OnAMachine(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        shutil.rmtree(WORK, ignore_errors=True)
        os.makedirs(WORK)


class ModuleTest(OnAMachine):
    def module(self, check=False, **parameters):
        """What the module answers."""
        parameters = {"command": ON_THE_MACHINE, "_ansible_check_mode": check, **parameters}
        basic._ANSIBLE_ARGS = json.dumps({"ANSIBLE_MODULE_ARGS": parameters}).encode()
        output = io.StringIO()
        with redirect_stdout(output), self.assertRaises(SystemExit):
            NETWORK.main()
        answer = json.loads(output.getvalue())
        answer.pop("invocation", None)
        return answer

    def test_check_mode_leaves_the_machine_alone_and_foretells_what_happens(self):
        make_machine(6)
        adapters = [{"name": GIGABIT, "settings": {"*SpeedDuplex": "100 Mbps Full Duplex"}}]
        teams = [{"name": "Ä \"1\" -", "members": [FAST], "vlans": [{"id": 5, "name": "-büro"}]}]
        before = saved()
        foretold = self.module(check=True, adapters=adapters, teams=teams)
        self.assertEqual(saved(), before)
        self.assertEqual((foretold["changed"], foretold["restart_required"]), (True, None))
        done = self.module(adapters=adapters, teams=teams)
        self.assertEqual(done["changes"], foretold["changes"])
        self.assertEqual(done["diff"], foretold["diff"])
        self.assertEqual(
            done["diff"],
            {
                "before": f"adapter {GIGABIT}, *SpeedDuplex: 0\n",
                "after": f"adapter {GIGABIT}, *SpeedDuplex: 4\n"
                f'team Ä "1" -, team: {{"mode": "adaptive load balancing", "members": ["{FAST}"]}}\n'
                'team Ä "1" -, VLAN 5: -büro\n',
            },
        )
        after = saved()
        again = self.module(adapters=adapters, teams=teams)
        self.assertEqual((again["changed"], again["changes"], again["restart_required"]), (False, [], False))
        self.assertEqual(again["diff"], {"before": "", "after": ""})
        self.assertEqual(saved(), after)

    def test_all_that_a_document_can_say(self):
        make_machine(8)
        ports = [{"slot": "Slot 2", "port": 1}, {"slot": 2, "port": "2"}]
        adapters = [
            {"match": "Zorel*#[!x]", "settings": {"*TransmitBuffers": "1024"}},
            {
                "name": GIGABIT, "profile": "2", "power": {"reduceSpeed": True}, "iscsi": "off",
                "wakeOnLan": {"magicPacket": "no"}, "vlans": [{"id": "7", "name": "Lab", "settings": {}}],
            },
        ]
        teams = [
            {
                "name": "Front", "mode": "1", "members": ports, "primary": ports[1], "secondary": ports[0],
                "multiVendor": False, "linkSecurity": False, "settings": {}, "vlans": [{"id": 100, "name": "Web"}],
            },
            {"name": "TEAM : 4", "primary": "", "secondary": ""},
        ]
        documents = []
        spy = 'tee "$DOCUMENT" | "$0" "$@"'
        os.environ["DOCUMENT"] = os.path.join(WORK, "document")
        for check in (True, False):
            self.module(check, command=["sh", "-c", spy, *ON_THE_MACHINE], adapters=adapters, teams=teams)
            with open(os.environ["DOCUMENT"], encoding="utf-8") as file:
                documents.append(json.load(file))
        self.assertEqual(documents[0], documents[1])
        present = {"state": "present"}
        self.assertEqual(
            documents[0],
            {
                "adapters": [
                    adapters[0],
                    {
                        **adapters[1], "wakeOnLan": {"magicPacket": False},
                        "vlans": [{"id": 7, "name": "Lab", "settings": {}, **present}],
                    },
                ],
                "teams": [
                    {**teams[0], **present, "vlans": [{"id": 100, "name": "Web", **present}]},
                    {"name": "TEAM : 4", "primary": None, "secondary": None, **present},
                ],
                "exclusive": False,
            },
        )

    def test_what_is_shown_is_a_description(self):
        make_machine(8)
        for by in ("name", "slot", "mac"):
            shown = json.loads(run([*ON_THE_MACHINE, "config", "show", "--by", by])[1])
            self.assertEqual((len(shown["adapters"]), len(shown["teams"])), (8, 1))
            answer = self.module(**shown)
            self.assertNotIn("failed", answer)
            self.assertFalse(answer["changed"], answer["changes"])

    def test_a_restart_that_the_provider_asks_for(self):
        make_machine(2, 'instance of QuilletSimulator_FollowUp { ClassName = "Zorel_VLAN"; Action = 1; };\n')
        adapter = {"name": GIGABIT, "settings": {"*JumboPacket": 9014}}
        self.assertFalse(self.module(adapters=[adapter])["restart_required"])
        self.assertTrue(self.module(adapters=[{**adapter, "vlans": [{"id": 5, "name": "x"}]}])["restart_required"])

    def test_a_description_that_does_not_fit_changes_nothing(self):
        make_machine(2)
        before = saved()
        adapters = [{"name": GIGABIT, "settings": {"*JumboPacket": 9014, "*None": 1}}, {"name": "Nobody"}]
        problems = ["adapters: there is no adapter \"Nobody\"", f"adapter {GIGABIT}: it has no setting *None"]
        for check in (True, False):
            answer = self.module(check, adapters=adapters)
            self.assertEqual(answer["problems"], problems)
            self.assertEqual(answer["msg"], "the description does not fit the machine: " + "; ".join(problems))
            self.assertTrue(answer["failed"])
            self.assertFalse(answer["changed"])
            self.assertEqual(saved(), before)

    def test_what_no_document_can_say_is_told_at_once(self):
        make_machine(2)
        before = saved()
        answer = self.module(
            adapters=[{"name": GIGABIT, "settings": {"*RSS": True}}], teams=[{"name": "x", "mode": "sideways"}]
        )
        self.assertTrue(answer["failed"])
        self.assertIn("adapters[0].settings.*RSS: a whole number, a text", answer["msg"])
        self.assertIn('teams[0]: no team mode is called "sideways"', answer["msg"])
        self.assertNotIn("\n", answer["msg"])
        self.assertEqual(saved(), before)

    def test_an_adapter_is_named_in_one_way(self):
        make_machine(2)
        for entry in ({}, {"name": GIGABIT, "slot": "Slot 1"}, {"name": GIGABIT, "match": "*"}, {"match": "*", "port": 1}):
            answer = self.module(adapters=[entry])
            self.assertTrue(answer["failed"], entry)
            self.assertIn("found in adapters", answer["msg"])

    def test_a_machine_that_cannot_be_read(self):
        make_machine(2, fault(Operation="CreateInstanceEnum", Target="Zorel_TeamOfAdapters", Code=0x80041003))
        answer = self.module(teams=[{"name": "Gone", "state": "absent"}])
        self.assertTrue(answer["failed"])
        self.assertEqual((answer["provider_code"], answer["changes"]), ("0x80041003", []))
        self.assertEqual(answer["provider_code_name"], "WBEM_E_ACCESS_DENIED")

    # Two changes, of which the provider refuses the second.
    HALF_WAY = {
        "adapters": [
            {"name": GIGABIT, "settings": {"*JumboPacket": 9014}, "vlans": [{"id": 5, "name": "x"}, {"id": 6, "name": "y"}]}
        ]
    }

    def fail_half_way(self, **parameters):
        make_machine(2, fault(Operation="ExecMethod", MethodName="CreateVLAN", Code=0x80041003, Repeat=True))
        answer = self.module(**self.HALF_WAY, **parameters)
        self.assertTrue(answer["failed"])
        self.assertEqual((answer["provider_code"], answer["provider_code_name"]), ("0x80041003", "WBEM_E_ACCESS_DENIED"))
        self.assertEqual(answer["failed_change"]["what"], "VLAN 5")
        self.assertEqual([change["what"] for change in answer["pending_changes"]], ["VLAN 6"])
        self.assertIn("1 of 3 changes were made, then: ", answer["msg"])
        self.assertIn("WBEM_E_ACCESS_DENIED", answer["msg"])
        shown = run([*ON_THE_MACHINE, "config", "show", GIGABIT])[1]
        return answer, json.loads(shown)["adapters"][0]["settings"]["*JumboPacket"]

    def test_what_was_made_is_taken_back(self):
        answer, jumbo = self.fail_half_way()
        self.assertEqual((answer["went_back"], answer["not_restored"], jumbo), (True, [], 1514))
        self.assertEqual((answer["changed"], answer["changes"]), (False, []))
        self.assertTrue(answer["msg"].endswith("; everything is as it was before"), answer["msg"])
        self.assertEqual(answer["diff"], {"before": "", "after": ""})

    def test_what_was_made_stays_without_rollback(self):
        answer, jumbo = self.fail_half_way(rollback=False)
        self.assertEqual((answer["went_back"], answer["not_restored"], jumbo), (False, [], 9014))
        self.assertEqual((answer["changed"], [change["what"] for change in answer["changes"]]), (True, ["*JumboPacket"]))
        self.assertEqual(answer["diff"]["after"], f"adapter {GIGABIT}, *JumboPacket: 9014\n")

    def test_a_provider_that_says_yes_and_does_nothing(self):
        make_machine(2, fault(Operation="PutInstance", Effect="FailStatus", Code=0, Repeat=True))
        answer = self.module(adapters=[{"name": GIGABIT, "settings": {"*JumboPacket": 9014}}])
        self.assertTrue(answer["failed"])
        self.assertEqual(answer["differences"], [f"adapter {GIGABIT}, *JumboPacket: it is 1514, not 9014"])
        self.assertIn(answer["differences"][0], answer["msg"])
        self.assertEqual((answer["changed"], answer["went_back"]), (False, True))
        self.assertNotIn("failed_change", answer)

    def test_the_way_to_the_machine(self):
        """What the module takes for it is what quilletctl is told."""
        told = ["sh", "-c", 'printf "%s" "$*" >&2; exit 1', "quilletctl"]
        way = {"machine": "host", "port": 5987, "auth": "ntlm", "credentials": "/c", "ca": "/a.pem"}
        words = "--json --yes --machine=host --port=5987 --auth=ntlm --credentials=/c --ca=/a.pem config"
        verbs = ((True, True, "diff -"), (False, True, "apply -"), (False, False, "apply - --no-rollback"))
        for check, rollback, verb in verbs:
            answer = self.module(check, command=told, rollback=rollback, **way)
            self.assertEqual(answer["msg"], f"quilletctl did not answer in JSON: {words} {verb}")

    def test_a_program_that_is_not_there(self):
        answer = self.module(command=["/nowhere/quilletctl"])
        self.assertIn("cannot run /nowhere/quilletctl: ", answer["msg"])


class DocumentsTest(unittest.TestCase):
    """What is written of the options agrees with the options."""

    maxDiff = None

    def options(self, documented, nested):
        """Options without their texts."""
        kept = ("type", "elements", "default", "choices", "required")
        plain = {}
        for name, option in documented.items():
            plain[name] = {key: option[key] for key in kept if key in option}
            if nested in option:
                plain[name]["options"] = self.options(option[nested], nested)
        return plain

    def test_the_documentation_names_what_the_module_takes(self):
        documented = yaml.safe_load(NETWORK.DOCUMENTATION)["options"]
        self.assertEqual(self.options(documented, "suboptions"), self.options(NETWORK.ARGUMENTS, "options"))

    def test_the_role_takes_what_the_module_takes(self):
        def loaded(*place):
            with open(os.path.join(role.ROLE, *place), encoding="utf-8") as file:
                return yaml.safe_load(file)

        options = loaded("meta", "argument_specs.yml")["argument_specs"]["main"]["options"]
        defaults = loaded("defaults", "main.yml")
        self.assertEqual({name: option["default"] for name, option in options.items()}, defaults)
        self.assertEqual(set(options), {"quillet_" + name for name in NETWORK.ARGUMENTS} | {"quillet_controller"})
        plain = self.options(options, "options")
        module = self.options(NETWORK.ARGUMENTS, "options")
        for name in ("adapters", "teams", "exclusive", "rollback", "command"):
            self.assertEqual(plain["quillet_" + name], module[name], name)

    def test_examples_and_returns_are_yaml(self):
        for task in yaml.safe_load(NETWORK.EXAMPLES):
            self.assertLessEqual(set(task["quillet_network"]), set(NETWORK.ARGUMENTS))
        self.assertIn("restart_required", yaml.safe_load(NETWORK.RETURN))

    def test_the_module_takes_what_a_document_takes(self):
        schema = json.loads(run([QUILLETCTL, "--simulate", "config", "schema"])[1])
        parts = schema["$defs"]

        def keys(part):
            return set(part["properties"])

        adapter, team = (NETWORK.ARGUMENTS[name]["options"] for name in ("adapters", "teams"))
        self.assertEqual(set(adapter), keys(parts["adapter"]))
        self.assertEqual(set(team), keys(parts["team"]))
        self.assertEqual(set(adapter["vlans"]["options"]), keys(parts["vlans"]["items"]))
        for key in ("power", "wakeOnLan"):
            self.assertEqual(set(adapter[key]["options"]), keys(parts["adapter"]["properties"][key]))
        self.assertEqual({"adapters", "teams", "exclusive"}, keys(schema) - {"$schema"})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
