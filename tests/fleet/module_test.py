"""The role's module against simulated machines, without Ansible around it.

    module_test.py QUILLETCTL WORK_DIR
"""

import io
import json
import os
import random
import re
import shutil
import subprocess
import sys
import unittest
from contextlib import redirect_stdout

import role
import yaml
from ansible.module_utils import basic
from ansible.module_utils.quillet_plan import TEAM_MODES, DescriptionError, plan, read
from ansible.module_utils.quillet_tool import Tool

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
                f'team Ä "1" -, team: {{"mode": 1, "members": ["{FAST}"]}}\n'
                'team Ä "1" -, VLAN 5: -büro\n',
            },
        )
        after = saved()
        again = self.module(adapters=adapters, teams=teams)
        self.assertEqual((again["changed"], again["changes"], again["restart_required"]), (False, [], False))
        self.assertEqual(again["diff"], {"before": "", "after": ""})
        self.assertEqual(saved(), after)

    def test_a_restart_that_the_provider_asks_for(self):
        make_machine(2, 'instance of QuilletSimulator_FollowUp { ClassName = "Zorel_VLAN"; Action = 1; };\n')
        adapter = {"name": GIGABIT, "settings": {"*JumboPacket": 9014}}
        self.assertFalse(self.module(adapters=[adapter])["restart_required"])
        self.assertTrue(self.module(adapters=[{**adapter, "vlans": [{"id": 5, "name": "x"}]}])["restart_required"])

    def test_a_description_that_does_not_fit_changes_nothing(self):
        make_machine(2)
        before = saved()
        settings = {"*JumboPacket": 9014, "*None": 1}
        answer = self.module(adapters=[{"name": GIGABIT, "settings": settings}, {"name": "Nobody"}])
        problems = ["adapters: there is no adapter with name Nobody", f"{GIGABIT} has no setting *None"]
        self.assertEqual(answer["problems"], problems)
        self.assertEqual(answer["msg"], "the description does not fit the machine: " + "; ".join(problems))
        self.assertTrue(answer["failed"])
        self.assertFalse(answer["changed"])
        self.assertEqual(saved(), before)

    def test_an_adapter_is_named_in_one_way(self):
        make_machine(2)
        for entry in ({}, {"name": GIGABIT, "slot": "Slot 1"}, {"name": GIGABIT, "port": "1"}):
            answer = self.module(adapters=[entry])
            self.assertTrue(answer["failed"], entry)
            self.assertIn("found in adapters", answer["msg"])

    def test_what_the_checks_find_is_told(self):
        # The two are made alike only in part.
        make_machine(8)
        teams = [{"name": "Mixed", "mode": "static link aggregation", "members": [GIGABIT, FAST]}]
        adapters = [{"name": GIGABIT, "settings": {"*JumboPacket": 9014}}]
        answer = self.module(adapters=adapters, teams=teams)
        self.assertTrue(answer["failed"])
        self.assertIn("the adapters differ in a setting that a team needs to be alike", answer["problems"])
        self.assertEqual([change["what"] for change in answer["changes"]], ["*JumboPacket"])
        self.assertEqual(answer["failed_change"]["subject"], "team Mixed")
        self.assertEqual(answer["pending_changes"], [])
        self.assertTrue(answer["changed"])
        self.assertIsNone(answer["provider_code"])

    def test_a_machine_that_cannot_be_read(self):
        make_machine(2, fault(Operation="CreateInstanceEnum", Target="Zorel_TeamOfAdapters", Code=0x80041003))
        answer = self.module(teams=[{"name": "Gone", "state": "absent"}])
        self.assertTrue(answer["failed"])
        self.assertEqual((answer["provider_code"], answer["changes"]), ("0x80041003", []))

    def test_a_value_that_the_provider_refuses(self):
        make_machine(2, fault(Operation="PutInstance", Code=0x80041001))
        answer = self.module(adapters=[{"name": GIGABIT, "settings": {"*JumboPacket": 9014}}])
        self.assertEqual(answer["provider_code"], "0x80041001")
        self.assertEqual((answer["changed"], answer["failed_change"]["what"]), (False, "*JumboPacket"))
        self.assertEqual(answer["restart_required"], False)

    def test_a_provider_that_says_yes_and_does_nothing(self):
        make_machine(2)
        liar = 'case "$*" in *"setting set"*) echo "{}";; *) exec "$0" "$@";; esac'
        parameters = {"adapters": [{"name": GIGABIT, "settings": {"*JumboPacket": 9014}}]}
        answer = self.module(command=["sh", "-c", liar, *ON_THE_MACHINE], **parameters)
        self.assertTrue(answer["failed"])
        self.assertEqual(
            answer["msg"],
            "the machine took every change and still differs from the description: "
            f"adapter {GIGABIT}, *JumboPacket is 1514",
        )
        self.assertEqual(len(answer["pending_changes"]), 1)
        unverified = self.module(command=["sh", "-c", liar, *ON_THE_MACHINE], verify=False, **parameters)
        self.assertNotIn("failed", unverified)

    def test_the_way_to_the_machine(self):
        """What the module takes for it is what quilletctl is told."""
        answer = self.module(
            command=["sh", "-c", 'echo "$*" >&2; exit 1', "quilletctl"],
            machine="host", port=5987, auth="ntlm", credentials="/c", ca="/a.pem",
        )
        words = "--json --yes --machine=host --port=5987 --auth=ntlm --credentials=/c --ca=/a.pem adapter list"
        self.assertEqual(answer["msg"], words)

    def test_a_program_that_is_not_there(self):
        answer = self.module(command=["/nowhere/quilletctl"])
        self.assertIn("cannot run /nowhere/quilletctl: ", answer["msg"])


class ConvergenceTest(OnAMachine):
    """Descriptions by chance, one after the other, on one machine: each leads where it says, and nowhere twice."""

    ROUNDS = 12

    def description(self, chance, names):
        free = names[:]
        chance.shuffle(free)
        teams = []
        for name in ("TEAM : 4", "Blue", "Gr\u00fcn"):
            if chance.random() < 0.3:
                teams.append({"name": name, "state": "absent"})
                continue
            members = [free.pop() for _ in range(chance.randint(1, 3))]
            teams.append(
                {
                    "name": name, "mode": chance.choice([0, 1, "fault tolerance"]), "members": members,
                    "primary": chance.choice(members), "vlans": self.vlans(chance),
                }
            )
        jumbo = chance.choice(["Disabled", 4088, 9014])  # the members of a team are to be alike
        adapters = []
        for name in names:
            settings = {"*JumboPacket": jumbo, "*TransmitBuffers": 80 + 8 * chance.randint(0, 246)}
            vlans = self.vlans(chance) if name in free else []
            adapters.append({"name": name, "settings": settings, "vlans": vlans})
        return adapters, teams

    @staticmethod
    def vlans(chance):
        numbers = chance.sample(range(1, 9), chance.randint(0, 4))
        described = [{"id": number, "name": f"{chance.choice('XYZ')} {number}"} for number in numbers]
        return described + ([{"id": 0, "name": "untagged"}] if described and chance.random() < 0.3 else [])

    def test_descriptions_by_chance(self):
        make_machine(8, "instance of QuilletSimulator_Machine { Name = \"strict\"; Strict = TRUE; };\n")
        chance = random.Random(20)
        tool = Tool(run, ON_THE_MACHINE)
        names = [adapter.name for adapter in tool.read_adapters()]
        made = 0
        for number in range(self.ROUNDS):
            adapters, teams = self.description(chance, names)
            with self.subTest(round=number, adapters=adapters, teams=teams):
                try:
                    changes = plan(read(tool, adapters, teams, True), adapters, teams, True)
                except DescriptionError as mistake:
                    # Only what two teams do to each other is more than one run can do.
                    self.assertTrue(all("in one run" in problem for problem in mistake.problems), mistake)
                    continue
                handles = {}
                for change in changes:
                    tool.make(change, handles)
                left = plan(read(tool, adapters, teams, True), adapters, teams, True)
                self.assertEqual([change.told() for change in left], [])
                made += len(changes)
        self.assertGreater(made, 10 * self.ROUNDS)

    def test_whatever_fails_the_next_run_goes_on_from_there(self):
        make_machine(8)
        chance = random.Random(7)
        tool = Tool(run, ON_THE_MACHINE)
        names = [adapter.name for adapter in tool.read_adapters()]
        adapters, teams = self.description(chance, names)
        fresh = saved()
        count = len(plan(read(tool, adapters, teams), adapters, teams))
        self.assertGreater(count, 10)
        for stop in range(0, count, 4):
            with open(STATE, "w", encoding="utf-8") as output:
                output.write(fresh)
            changes = plan(read(tool, adapters, teams), adapters, teams)
            handles = {}
            for change in changes[:stop]:
                tool.make(change, handles)
            rest = plan(read(tool, adapters, teams), adapters, teams)
            self.assertEqual([each.told() for each in rest], [each.told() for each in changes[stop:]])
        handles = {}
        for change in rest:
            tool.make(change, handles)
        self.assertEqual(plan(read(tool, adapters, teams), adapters, teams), [])


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
        for name in ("adapters", "teams", "exclusive", "command", "verify"):
            self.assertEqual(plain["quillet_" + name], module[name], name)

    def test_examples_and_returns_are_yaml(self):
        for task in yaml.safe_load(NETWORK.EXAMPLES):
            self.assertLessEqual(set(task["quillet_network"]), set(NETWORK.ARGUMENTS))
        self.assertIn("restart_required", yaml.safe_load(NETWORK.RETURN))

    def test_team_modes_are_called_as_quilletctl_calls_them(self):
        errors = run([QUILLETCTL, "--simulate", "team", "create", "x", "Zorel Fast Ethernet Adapter", "--mode", "?"])[2]
        self.assertEqual(
            re.findall(r"(\d) \(([^)]*)\)", errors), [(str(number), mode) for number, mode in enumerate(TEAM_MODES)]
        )


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
