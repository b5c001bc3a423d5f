"""What the role plans for a machine, without one."""

import json
import unittest

import role  # noqa: F401  the modules below are the role's
from ansible.module_utils.quillet_plan import DescriptionError, operand, plan, read, wanted_value
from ansible.module_utils.quillet_tool import Adapter, Machine, NewTeam, Team, Tool, ToolFailure

BOARDS = {1: ("Slot 1", "1"), 2: ("Slot 1", "2"), 3: ("Slot 2", "1"), 4: ("Slot 2", "2"), 5: ("Onboard", "1")}
JUMBO = {
    "caption": "*JumboPacket", "kind": "enum", "writable": True, "current": 1514,
    "possible": [{"value": 1514, "text": "Disabled"}, {"value": 9014, "text": "9014 Bytes"}],
}
DATE = {"caption": "DriverDate", "kind": "string", "writable": False, "current": "2011", "maxLength": 4}


def path_of(number):
    return f'\\\\HOST\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID="{{{number}}}"'


def an_adapter(number):
    """Adapters 1 to 4 are of one make; the names tell them apart and the display names do not."""
    made = Adapter(
        {
            "path": path_of(number), "objectId": f"{{{number}}}", "deviceId": f"{{{number}}}",
            "name": f"Port {number}", "displayName": "Onboard Port" if number == 5 else "Zorel Port",
        }
    )
    made.slot, made.port = BOARDS[number]
    made.mac = f"02-00-5E-00-00-0{number}"
    made.settings = {each["caption"]: dict(each) for each in (JUMBO, DATE)}
    return made


def a_team(name, members, mode=1, vlans=None):
    made = Team(
        {
            "path": f'\\\\HOST\\ROOT\\MarloLUM2:Zorel_TeamOfAdapters.Name="{{{name}}}"', "objectId": f"{{{name}}}",
            "name": name, "mode": {"code": mode, "text": ""},
            "members": [
                {"path": path_of(number), "role": {"code": index + 1 if index < 2 else 0}}
                for index, number in enumerate(members)
            ],
        }
    )
    made.vlans = vlans or {}
    return made


def a_machine(*teams, vlans=None):
    machine = Machine([an_adapter(number) for number in BOARDS], list(teams))
    for number, carried in (vlans or {}).items():
        machine.adapters[number - 1].vlans = carried
    return machine


def commands(changes):
    """The command line of each change."""
    return [
        " ".join(change.verb + list(change.options) + ["--"] + [str(word) for word in change.operands])
        for change in changes
    ]


class PlanTest(unittest.TestCase):
    maxDiff = None

    def planned(self, machine, adapters=(), teams=(), exclusive=False):
        return commands(plan(machine, list(adapters), list(teams), exclusive))

    def problems(self, machine, adapters=(), teams=(), exclusive=False):
        with self.assertRaises(DescriptionError) as raised:
            plan(machine, list(adapters), list(teams), exclusive)
        return raised.exception.problems


class Adapters(PlanTest):
    def setting_of(self, **selector):
        return self.planned(a_machine(), [{**selector, "settings": {"*JumboPacket": 9014}}])

    def test_every_way_to_name_an_adapter(self):
        expected = ["setting set -- {2} *JumboPacket 9014"]
        for name in ("Port 2", "port 2", "{2}", "2", path_of(2), path_of(2).lower(), "02-00-5e-00-00-02"):
            self.assertEqual(self.setting_of(name=name), expected, name)
        for mac in ("02-00-5E-00-00-02", "02:00:5e:00:00:02", "0200.5e00.0002", "02005E000002"):
            self.assertEqual(self.setting_of(mac=mac), expected, mac)
        self.assertEqual(self.setting_of(slot="slot 1", port="2"), expected)
        self.assertEqual(self.setting_of(slot="Onboard"), ["setting set -- {5} *JumboPacket 9014"])
        self.assertEqual(self.setting_of(name="Onboard Port"), ["setting set -- {5} *JumboPacket 9014"])

    def test_a_name_wins_over_a_display_name(self):
        machine = a_machine()
        machine.adapters[3].display_name = "Port 1"
        self.assertEqual(
            self.planned(machine, [{"name": "Port 1", "settings": {"*JumboPacket": 9014}}]),
            ["setting set -- {1} *JumboPacket 9014"],
        )

    def test_names_that_nothing_or_several_have(self):
        entries = [
            {"name": "Port 9"}, {"name": "Zorel Port"}, {"mac": "02-00-5E-00-00-09"}, {"mac": "x"},
            {"slot": "Slot 1"}, {"slot": "Slot 1", "port": "3"}, {"name": "Port 1"}, {"mac": "02-00-5E-00-00-01"},
        ]
        self.assertEqual(
            self.problems(a_machine(), entries),
            [
                "adapters: there is no adapter with name Port 9",
                "adapters: several adapters with name Zorel Port: {1}, {2}, {3}, {4}",
                "adapters: there is no adapter with mac 02-00-5E-00-00-09",
                'adapters: "x" is no MAC address',
                "adapters: several adapters with slot Slot 1: {1}, {2}",
                "adapters: there is no adapter with slot Slot 1, port 3",
                "adapters: Port 1 is described twice",
            ],
        )

    def test_members_of_a_team_may_share_an_address(self):
        machine = a_machine()
        machine.adapters[1].mac = machine.adapters[0].mac
        self.assertEqual(
            self.problems(machine, [{"mac": "02-00-5E-00-00-01"}]),
            ["adapters: several adapters with mac 02-00-5E-00-00-01: {1}, {2}"],
        )

    def test_selectors_that_are_none(self):
        members = ["Port 1", 7, {"port": "1"}, {"name": "Port 2", "mac": "x"}, {"nmae": "Port 2"}, {}, ""]
        self.assertEqual(
            self.problems(a_machine(), [], [{"name": "T", "members": members}]),
            ["team T: an adapter is named by a text, or by name, mac, or slot and port"]
            + ["team T: an adapter is named by one of name, mac and slot; port goes with slot"] * 2
            + ["team T: an adapter is not named by nmae"]
            + ["team T: an adapter is named by one of name, mac and slot; port goes with slot"]
            + ["team T: an adapter is named by a text, or by name, mac, or slot and port"],
        )


class Settings(PlanTest):
    def test_only_what_differs(self):
        self.assertEqual(self.planned(a_machine(), [{"name": "Port 1", "settings": {"*JumboPacket": "disabled"}}]), [])
        change = plan(a_machine(), [{"name": "Port 1", "settings": {"*JumboPacket": "9014 bytes"}}], [])[0]
        self.assertEqual(
            change.told(), {"subject": "adapter Port 1", "what": "*JumboPacket", "before": 1514, "after": 9014}
        )

    def test_what_cannot_be_set(self):
        settings = {"*JumboPacket": 4088, "*RSS": 1, "DriverDate": "2012"}
        self.assertEqual(
            self.problems(a_machine(), [{"name": "Port 1", "settings": settings}]),
            [
                "*JumboPacket of Port 1: 4088 is none of its values",
                "Port 1 has no setting *RSS",
                "DriverDate of Port 1 is read only, and is 2011",
            ],
        )
        self.assertEqual(self.planned(a_machine(), [{"name": "Port 1", "settings": {"DriverDate": "2011"}}]), [])

    def test_values(self):
        enum = {"kind": "enum", "possible": [{"value": 1, "text": "2"}, {"value": 2, "text": "Off"}]}
        bits = {"kind": "multiSelection", "possible": [{"value": 1, "text": "A"}, {"value": 4, "text": "B"}]}
        number = {"kind": "int", "minimum": -8, "maximum": 8, "step": 4}
        slider = {"kind": "slider", "possible": [5, 10]}
        text = {"kind": "string", "maxLength": 3}
        several = {"kind": "multiString", "maxLength": 3}
        for setting, value, expected in (
            (enum, "off", 2), (enum, 1, 1), (enum, "1", 1), (enum, "2", 1), (enum, 2, 2),
            (bits, "a + b", 5), (bits, ["A", 4], 5), (bits, 4, 4), (bits, "4", 4), (bits, 0, 0), (bits, [], 0),
            (number, -4, -4), (number, "8", 8), (slider, 10, 10), (text, "abc", "abc"), (text, "", ""),
            (several, ["a", "b"], ["a", "b"]),
        ):
            self.assertEqual(wanted_value(setting, value), expected, (setting["kind"], value))
        for setting, value, problem in (
            (enum, 3, "is none of its values"), (enum, "on", "is none of its values"),
            (enum, True, "is true or false to YAML; put the word between quotes"),
            (bits, 2, "has bits that are none of its values"), (bits, -1, "has bits that are none of its values"),
            (bits, "A+C", "is none of its values"), (number, 12, "is not from -8 to 8"),
            (number, 1, "is no step of 4 from -8"), (number, "x", "is no whole number"),
            (number, 4.0, "is no whole number"), (slider, 7, "is none of its values"),
            (text, 12, "is no text; put it between quotes"), (text, "abcd", "has more than 3 characters"),
            (several, "abc", "is no list of texts"), (several, [], "is no list of texts"),
            (several, ["a,b"], "holds a comma, which quilletctl takes for the end of a text"),
            ({"kind": "blob"}, 1, "is of a kind that is not known here"),
        ):
            with self.assertRaises(ValueError, msg=(setting["kind"], value)) as raised:
                wanted_value(setting, value)
            self.assertEqual(str(raised.exception), problem)
        # quilletctl takes "2" for the text, so the value 2 goes by its own.
        self.assertEqual([operand(enum, 1), operand(enum, 2)], ["1", "Off"])
        self.assertEqual([operand(number, -4), operand(several, ["a", "b"])], ["-4", "a,b"])


class Teams(PlanTest):
    def test_a_new_team_leads_with_its_primary_member(self):
        team = {"name": "New", "members": ["Port 1", "Port 2"], "primary": "Port 2", "vlans": [{"id": 7, "name": "x"}]}
        changes = plan(a_machine(), [], [team])
        self.assertEqual(commands(changes), ["team create --mode=1 -- New {2} {1}", "vlan add -- New 7 x"])
        self.assertEqual(changes[0].makes, "New")
        self.assertIsInstance(changes[1].operands[0], NewTeam)

    def test_a_team_that_is_as_described(self):
        machine = a_machine(a_team("Front", [1, 2], vlans={7: "x"}))
        teams = [
            {"name": "front", "mode": "Adaptive load balancing", "members": ["Port 2", {"slot": "Slot 1", "port": 1}],
             "primary": "Port 1", "vlans": [{"id": 7}, {"id": 8, "state": "absent"}]},
            {"name": "Gone", "state": "absent"},
        ]
        self.assertEqual(self.planned(machine, [], teams), [])

    def test_everything_about_a_team_in_the_order_that_lets_it_happen(self):
        machine = a_machine(
            a_team("Front", [1, 2], vlans={7: "x", 8: "y"}), a_team("Old", [3, 4]), vlans={5: {9: "z"}}
        )
        teams = [
            {"name": "Front", "mode": 4, "members": ["Port 2", "Port 3", "Port 5"], "primary": "Port 3",
             "vlans": [{"id": 7, "name": "y"}, {"id": 8, "name": "x2"}, {"id": 0, "name": "u"}, {"id": 6, "name": "w"}]},
            {"name": "Old", "state": "absent"},
        ]
        adapters = [
            {"name": "Port 5", "vlans": [{"id": 9, "state": "absent"}], "settings": {"*JumboPacket": 9014}}
        ]
        self.assertEqual(
            self.planned(machine, adapters, teams),
            [
                "team delete -- {Old}",
                "vlan remove -- {5} 9",
                "team remove -- {Front} {1}",
                "setting set -- {5} *JumboPacket 9014",
                "team modify --mode=4 -- {Front}",
                "team add -- {Front} {3} {5}",
                "team primary -- {3}",
                "vlan modify --name=x2 -- {Front} 8",
                "vlan modify --name=y -- {Front} 7",
                "vlan add -- {Front} 6 w",
                "vlan add -- {Front} 0 u",
            ],
        )

    def test_a_team_never_loses_its_last_member_before_new_ones_come(self):
        self.assertEqual(
            self.planned(a_machine(a_team("Front", [1, 2])), [], [{"name": "Front", "members": ["Port 3"]}]),
            ["team add -- {Front} {3}", "team remove -- {Front} {1} {2}"],
        )

    def test_moving_a_member(self):
        machine = a_machine(a_team("One", [1, 2]), a_team("Two", [3, 4]))
        two = {"name": "Two", "members": ["Port 2", "Port 3", "Port 4"]}
        self.assertEqual(
            self.planned(machine, [], [two, {"name": "One", "members": ["Port 1"]}]),
            ["team remove -- {One} {2}", "team add -- {Two} {2}"],
        )
        told = (
            "Port 2 is a member of team One: describe that team's members, or its absence, before it can be moved "
            "to team Two"
        )
        self.assertEqual(self.problems(machine, [], [two]), [told])
        self.assertEqual(self.problems(machine, [], [two, {"name": "One"}]), [told])
        self.assertEqual(
            self.planned(machine, [], [two], exclusive=True), ["team delete -- {One}", "team add -- {Two} {2}"]
        )
        self.assertEqual(
            self.problems(machine, [], [two, {"name": "One", "members": ["Port 5"]}]),
            ["Port 2 cannot be moved from team One to team Two in one run, because team One gets all its members "
             "replaced"],
        )

    def test_descriptions_that_contradict_themselves(self):
        machine = a_machine(a_team("Twin", [1]), a_team("twin", [2]), vlans={5: {9: "z"}})
        teams = [
            {"name": "A", "members": ["Port 3", "Port 3"]}, {"name": "a", "members": ["Port 3"]},
            {"name": "B", "members": ["Port 3"]}, {"name": "C"}, {"name": "D", "members": []}, {"name": "Twin"},
            {"name": "E", "members": ["Port 4"], "primary": "Port 1", "mode": "fast"},
            {"name": "F", "members": ["Port 5"]},
        ]
        adapters = [{"name": "Port 4", "vlans": [{"id": 5, "name": "x"}]}]
        self.assertEqual(
            self.problems(machine, adapters, teams),
            [
                "teams: a is described twice",
                "teams: several teams are called Twin: {Twin}, {twin}",
                "team A: Port 3 is named twice",
                "team C: there is none yet, and without members it cannot be made",
                "team D: a team has a member at least; state: absent deletes it",
                'team E: no team mode is called "fast"',
                "team E: Port 1 is to be primary, but no member",
                "Port 3 is to be a member of team A and of team B",
                "Port 4 cannot carry VLANs (5) and be a member of team E: VLANs go on the team",
                "Port 5 cannot carry VLANs (9) and be a member of team F: VLANs go on the team",
            ],
        )

    def test_a_member_that_carries_vlans_already_is_left_in_peace(self):
        machine = a_machine(a_team("Front", [1, 2]), vlans={1: {9: "z"}})
        self.assertEqual(self.planned(machine, [], [{"name": "Front", "members": ["Port 1", "Port 2"]}]), [])
        self.assertEqual(
            self.problems(machine, [{"name": "Port 1", "vlans": [{"id": 8, "name": "y"}]}]),
            ["Port 1 cannot carry VLANs (8, 9) and be a member of team Front: VLANs go on the team"],
        )

    def test_exclusive_removes_what_is_not_described(self):
        machine = a_machine(
            a_team("One", [1], vlans={1: "a"}), a_team("Two", [2], vlans={0: "u", 2: "b"}), vlans={3: {3: "c"}}
        )
        described = [{"name": "Two", "vlans": [{"id": 2}]}]
        self.assertEqual(self.planned(machine, [], described), [])
        self.assertEqual(
            self.planned(machine, [], described, exclusive=True),
            ["team delete -- {One}", "vlan remove -- {Two} 0", "vlan remove -- {3} 3"],
        )


class Vlans(PlanTest):
    def one(self, current, *entries):
        return self.planned(a_machine(vlans={1: current}), [{"name": "Port 1", "vlans": list(entries)}])

    def problem(self, current, *entries):
        return self.problems(a_machine(vlans={1: current}), [{"name": "Port 1", "vlans": list(entries)}])

    def test_by_their_ids(self):
        self.assertEqual(
            self.one({1: "a", 2: "b"}, {"id": 1, "name": "A"}, {"id": 2, "state": "absent"}, {"id": 3, "name": "b"}),
            ["vlan remove -- {1} 2", "vlan modify --name=A -- {1} 1", "vlan add -- {1} 3 b"],
        )

    def test_that_cannot_be(self):
        self.assertEqual(
            self.problem({}, {"id": 4095, "name": "x"}, {"id": 1}, {"id": 2, "name": "y"}, {"id": 2, "name": "z"}),
            [
                "adapter Port 1: 4095 is no VLAN ID",
                "adapter Port 1: VLAN 2 is described twice",
                "adapter Port 1: VLAN 1 is not there yet and needs a name",
            ],
        )
        self.assertEqual(
            self.problem({1: "lab"}, {"id": 2, "name": "Lab"}),
            ["adapter Port 1: several VLANs would be called Lab", "adapter Port 1: several VLANs would be called lab"],
        )
        self.assertEqual(
            self.problem({1: "a", 2: "b"}, {"id": 1, "name": "b"}, {"id": 2, "name": "a"}),
            ["adapter Port 1: VLANs 1, 2 cannot take each other's names in one run"],
        )


class Reading(unittest.TestCase):
    """What is asked of quilletctl, and what its answers are taken for."""

    def tool(self, *answers, **options):
        self.asked = []
        left = list(answers)

        def run(words):
            self.asked.append(words)
            return left.pop(0)

        return Tool(run, ["wrap", "quilletctl"], **options)

    def test_where_quilletctl_is_pointed(self):
        tool = self.tool((0, "{}", ""), access={"machine": "host", "port": 5987, "auth": None, "ca": "ca.pem"})
        tool.ask(["vlan", "modify"], ["-x", "5"], ["--name=-y"])
        words = "wrap quilletctl --json --yes --machine=host --port=5987 --ca=ca.pem vlan modify --name=-y -- -x 5"
        self.assertEqual(" ".join(self.asked[0]), words)

    def test_no_more_than_a_description_needs(self):
        listed = {"path": path_of(1), "objectId": "{1}", "deviceId": "{1}", "name": "Port 1", "displayName": "P"}
        adapters = (0, json.dumps({"adapters": [listed]}), "")
        teams = (0, '{"teams": []}', "")
        tool = self.tool(adapters, teams)
        read(tool, [{"name": "Port 1"}], [])
        self.assertEqual([words[4:6] for words in self.asked], [["adapter", "list"], ["team", "list"]])
        shown = (0, '{"macAddress": "02-00-5E-00-00-01", "slotId": "Slot 1", "portNumber": "1"}', "")
        tool = self.tool(adapters, shown, teams, (0, '{"vlans": []}', ""), (0, '{"settings": []}', ""))
        machine = read(tool, [{"slot": "Slot 1", "settings": {"x": 1}, "vlans": [{"id": 1}]}], [])
        self.assertEqual(
            [words[4:] for words in self.asked[1:]],
            [["adapter", "show", "--", "{1}"], ["team", "list"], ["vlan", "list"], ["setting", "list", "--", "{1}"]],
        )
        self.assertEqual(machine.adapters[0].slot, "Slot 1")
        # Places do not change, so looking again asks for none.
        tool = self.tool(adapters, teams)
        self.assertEqual(read(tool, [{"slot": "Slot 1"}], [], known=machine).adapters[0].port, "1")

    def failure(self, *answer):
        with self.assertRaises(ToolFailure) as raised:
            self.tool(answer).ask(["team", "list"])
        return raised.exception

    def test_refusals(self):
        told = "quilletctl: could not list the teams: 0x80041003 WBEM_E_ACCESS_DENIED"
        refused = self.failure(1, "", "noise\n" + told + "\n\n")
        self.assertEqual(
            (str(refused), refused.status, refused.provider_code, refused.provider_code_name),
            (told, 1, "0x80041003", "WBEM_E_ACCESS_DENIED"),
        )
        nameless = self.failure(1, "", "quilletctl: could not: 0x8004ABCD\n")
        self.assertEqual((nameless.provider_code, nameless.provider_code_name), ("0x8004ABCD", None))
        self.assertIsNone(self.failure(2, "", "quilletctl: no team is called 0x80041003 x y\n").provider_code)

    def test_findings_in_both_forms(self):
        self.assertEqual(self.failure(3, '{"mask": "0x1", "problems": ["a", "b"]}', "").problems, ["a", "b"])
        self.assertEqual(self.failure(3, '{"problems": {"mask": "0x1", "texts": ["c"]}}', "").problems, ["c"])
        self.assertEqual(str(self.failure(3, '{"problems": ["a", "b"]}', "")), "quilletctl team list: a; b")
        self.assertEqual(str(self.failure(3, "", "")), "quilletctl team list: ended with status 3")

    def test_an_answer_that_is_none(self):
        self.assertIn("quilletctl team list did not answer in JSON", str(self.failure(0, "oops", "")))


if __name__ == "__main__":
    unittest.main()
