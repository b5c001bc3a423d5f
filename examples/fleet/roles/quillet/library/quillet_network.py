#!/usr/bin/python
"""Brings the wired network adapters of one machine to a described state through quilletctl."""

DOCUMENTATION = r"""
---
module: quillet_network
short_description: Bring adapters' settings, teams and VLANs of a machine to a described state
description:
  - Makes of its options the document that C(quilletctl config apply) takes, and hands it over. What differs is found, put
    into an order and changed there, in one client set of the provider's own. When nothing differs nothing is sent to the
    provider but questions.
  - The module runs where C(quilletctl) runs, which need not be the machine that is managed; usually it is delegated to
    the controller. It is written in Python and therefore cannot be sent to a Windows host.
  - A description that does not fit the machine (an adapter that is not there, a value that a setting cannot have) is
    refused as a whole before anything is changed, with everything that is wrong in one message.
  - The first change that fails ends the work on this machine. Unless I(rollback) is false, what was changed before is
    then taken back.
options:
  adapters:
    description:
      - The adapters that are described, each named by one of I(name), I(mac), I(slot) and I(match).
    type: list
    elements: dict
    default: []
    suboptions:
      name:
        description:
          - Name, display name, object ID, device ID or object path of the adapter; case does not count. What can name
            one adapter only counts before what several may share. A MAC address will do as well.
        type: str
      mac:
        description:
          - MAC address of the adapter. The members of a team may all report the address of the team; name these by
            slot and port.
        type: str
      slot:
        description:
          - Slot of the adapter's board, as C(quilletctl adapter show) tells it, or only its number.
        type: str
      port:
        description:
          - Port number on the board in I(slot), where the board has several.
        type: str
      match:
        description:
          - Every adapter whose name fits; C(*) stands for any text and C(?) for any character.
        type: str
      settings: &settings
        description:
          - Values by the caption of the setting, such as C(*JumboPacket). A value is a number or its text; of a
            selection also a list of these; of a list of texts a list. Settings that are not named stay as they are.
        type: dict
      profile:
        description:
          - The performance profile, by number or text.
        type: str
      power:
        description:
          - Power options, as C(quilletctl power show) tells them.
        type: dict
        suboptions:
          mode: {type: int, choices: [0, 1, 2], description: The power mode.}
          autoPowerSave: {type: bool, description: Automatic power saving.}
          reduceSpeed: {type: bool, description: Reduce speed on power-down.}
          smartPowerDown: {type: bool, description: Power down when unused.}
          aspm: {type: bool, description: Enhanced bus power saving.}
          batteryConnection: {type: bool, description: Automatic connection battery saver.}
          batterySpeed: {type: bool, description: Reduce speed on battery.}
          systemIdle: {type: bool, description: Save power on an idle system.}
      wakeOnLan:
        description:
          - Wake-on-LAN options, as C(quilletctl wol show) tells them.
        type: dict
        suboptions:
          powerOff: {type: bool, description: Wake from power off.}
          link: {type: bool, description: Wake on link.}
          magicPacket: {type: bool, description: Wake on magic packet.}
          directedPacket: {type: bool, description: Wake on directed packet.}
          pattern: {type: bool, description: Wake on packet pattern.}
      iscsi:
        description:
          - The part in booting from iSCSI.
        type: str
        choices: [primary, secondary, "off"]
      vlans:
        description:
          - VLANs on the adapter itself. Those that are not named stay, unless I(exclusive).
        type: list
        elements: dict
        suboptions: &vlan
          id:
            description:
              - The VLAN ID, 1 to 4094, or 0 for the untagged VLAN.
            type: int
            required: true
          name:
            description:
              - The VLAN's name; needed for a VLAN that is not there yet.
            type: str
          state:
            description:
              - Whether the VLAN is to be there.
            type: str
            choices: [present, absent]
            default: present
          settings: *settings
  teams:
    description:
      - The teams that are described. Those that are not named stay, unless I(exclusive).
    type: list
    elements: dict
    default: []
    suboptions:
      name:
        description:
          - The whole name of the team, with the prefix if it is to have one. Case does not count.
        type: str
        required: true
      state:
        description:
          - Whether the team is to be there. A team that goes takes its VLANs with it.
        type: str
        choices: [present, absent]
        default: present
      mode:
        description:
          - The team mode, by its number (0 to 6) or its name as C(quilletctl team modes) tells it. Left out, a team keeps
            its mode, and a new one gets adaptive load balancing (1).
        type: str
      members:
        description:
          - All members of the team. Each is a name as for an adapter, or a dictionary of I(name), I(mac), or I(slot) and
            I(port). Left out, a team keeps its members. An adapter moves only out of teams that are described as well.
        type: list
        elements: raw
      primary:
        description:
          - The member that is to be primary, named like a member; an empty text, nobody. Left out, that is left to the
            provider.
        type: raw
      secondary:
        description:
          - The member that is to be secondary, in the same way.
        type: raw
      multiVendor:
        description:
          - Whether adapters of other makers are allowed, when the team is made.
        type: bool
      linkSecurity:
        description:
          - Whether the team has link security, when it is made.
        type: bool
      settings: *settings
      vlans:
        description:
          - VLANs on the team. Those that are not named stay, unless I(exclusive).
        type: list
        elements: dict
        suboptions: *vlan
  exclusive:
    description:
      - Whether teams and VLANs that are not described are removed, wherever on the machine they are.
    type: bool
    default: false
  rollback:
    description:
      - Whether a machine goes back to what was before when a change fails, or when it still differs after the last one.
    type: bool
    default: true
  machine:
    description:
      - The machine to manage, by name or address; left out, the one where C(quilletctl) runs. From Linux it is reached
        over HTTPS (WinRM), and the options below say how; Windows has its own ways, and takes none of them.
    type: str
  port:
    description:
      - The port of the machine; left out, 5986.
    type: int
  auth:
    description:
      - How the machine is shown who asks. Left out, by the Kerberos ticket of whoever runs C(quilletctl), or by NTLM
        with I(credentials).
    type: str
    choices: [negotiate, ntlm, basic]
  credentials:
    description:
      - A file with a line C(user = …) and a line C(password = …), which only its owner can read.
    type: path
  ca:
    description:
      - A file with the certificates of the authorities that may vouch for the machine, instead of the system's.
    type: path
  command:
    description:
      - C(quilletctl) and whatever has to stand before it.
    type: list
    elements: str
    default: [quilletctl]
notes:
  - Supports C(check_mode); what it foretells is exactly what a run without it then does.
  - Supports C(diff).
  - No option takes a secret, only the name of a file that has one. The document reaches C(quilletctl) on standard input.
author:
  - The Quillet developers
"""

EXAMPLES = r"""
- name: Jumbo frames on both ports of the board in slot 3, and a team with two VLANs
  quillet_network:
    machine: "{{ inventory_hostname }}"
    adapters:
      - slot: Slot 3
        port: 1
        settings:
          "*JumboPacket": 9014 Bytes
      - slot: Slot 3
        port: 2
        settings:
          "*JumboPacket": 9014
    teams:
      - name: Front
        mode: adaptive load balancing
        members:
          - Zorel Gigabit Server Adapter
          - mac: 02-00-5E-00-00-03
        primary:
          mac: 02-00-5E-00-00-03
        vlans:
          - id: 100
            name: Web
          - id: 101
            state: absent
  delegate_to: localhost

- name: Nothing but what is described
  quillet_network:
    machine: "{{ inventory_hostname }}"
    exclusive: true
  delegate_to: localhost
"""

RETURN = r"""
changes:
  description:
    - The changes in the order in which they were made (with C(check_mode) would be made); none where they were taken back.
    - Each has I(subject) (the adapter or team), I(what) (a setting, C(team), C(mode), C(members), C(primary) or C(VLAN n)),
      I(before) and I(after), null where there is nothing before or after, and I(step), all of it in a sentence.
  returned: always
  type: list
  elements: dict
  sample:
    - subject: adapter Zorel Gigabit Server Adapter
      what: "*JumboPacket"
      before: 1514
      after: 9014
      step: set *JumboPacket of adapter Zorel Gigabit Server Adapter to 9014 Bytes (9014), now Disabled (1514)
restart_required:
  description:
    - Whether the provider asked for a restart, also for what was taken back. Null with C(check_mode), for only the change
      itself can tell, and where the provider did not say.
  returned: always
  type: bool
losses:
  description: What going back would not bring back, a sentence each.
  returned: when the machine could be read
  type: list
  elements: str
failed_change:
  description: The change that failed.
  returned: when a change failed
  type: dict
pending_changes:
  description: The changes that were not tried because an earlier one failed.
  returned: when a change failed
  type: list
  elements: dict
differences:
  description: What the machine accepted and did not take, a sentence each.
  returned: when a run failed after it had begun
  type: list
  elements: str
went_back:
  description: Whether the machine was brought back to what was before.
  returned: when a run failed after it had begun
  type: bool
not_restored:
  description: What is not as it was before all the same, a sentence each.
  returned: when a run failed after it had begun
  type: list
  elements: str
provider_code:
  description: The result code of the provider.
  returned: when the provider refused something
  type: str
  sample: "0x80041003"
provider_code_name:
  description: The name of the result code, where it has one.
  returned: when the provider refused something
  type: str
  sample: WBEM_E_ACCESS_DENIED
problems:
  description: What the description has against the machine, a sentence each.
  returned: when there are such
  type: list
  elements: str
"""

import json
import os
import subprocess

from ansible.module_utils.basic import AnsibleModule

PLACE = {name: {"type": "str"} for name in ("name", "mac", "slot", "port", "match")}
STATE = {"type": "str", "choices": ["present", "absent"], "default": "present"}
SETTINGS = {"type": "dict"}
VLANS = {
    "type": "list",
    "elements": "dict",
    "options": {"id": {"type": "int", "required": True}, "name": {"type": "str"}, "state": STATE, "settings": SETTINGS},
}
POWER = ("autoPowerSave", "reduceSpeed", "smartPowerDown", "aspm", "batteryConnection", "batterySpeed", "systemIdle")
WAKE_ON_LAN = ("powerOff", "link", "magicPacket", "directedPacket", "pattern")
ARGUMENTS = {
    "adapters": {
        "type": "list",
        "elements": "dict",
        "default": [],
        "options": {
            **PLACE,
            "settings": SETTINGS,
            "profile": {"type": "str"},
            "power": {
                "type": "dict",
                "options": {
                    "mode": {"type": "int", "choices": [0, 1, 2]}, **{name: {"type": "bool"} for name in POWER},
                },
            },
            "wakeOnLan": {"type": "dict", "options": {name: {"type": "bool"} for name in WAKE_ON_LAN}},
            "iscsi": {"type": "str", "choices": ["primary", "secondary", "off"]},
            "vlans": VLANS,
        },
        "mutually_exclusive": [["name", "mac", "slot", "match"]],
        "required_one_of": [["name", "mac", "slot", "match"]],
        "required_by": {"port": ["slot"]},
    },
    "teams": {
        "type": "list",
        "elements": "dict",
        "default": [],
        "options": {
            "name": {"type": "str", "required": True},
            "state": STATE,
            "mode": {"type": "str"},
            "members": {"type": "list", "elements": "raw"},
            "primary": {"type": "raw"},
            "secondary": {"type": "raw"},
            "multiVendor": {"type": "bool"},
            "linkSecurity": {"type": "bool"},
            "settings": SETTINGS,
            "vlans": VLANS,
        },
    },
    "exclusive": {"type": "bool", "default": False},
    "rollback": {"type": "bool", "default": True},
    "machine": {"type": "str"},
    "port": {"type": "int"},
    "auth": {"type": "str", "choices": ["negotiate", "ntlm", "basic"]},
    "credentials": {"type": "path"},
    "ca": {"type": "path"},
    "command": {"type": "list", "elements": "str", "default": ["quilletctl"]},
}
# What says which machine, and how it is reached; quilletctl calls it the same.
ACCESS = ("machine", "port", "auth", "credentials", "ca")


def given(value):
    """The same without the options that were left out. Values of settings are quilletctl's to judge."""
    if isinstance(value, list):
        return [given(each) for each in value]
    if not isinstance(value, dict):
        return value
    return {
        key: each if key == "settings" else given(each) for key, each in value.items() if each is not None
    }


def document_of(parameters):
    """What quilletctl takes."""
    document = given({key: parameters[key] for key in ("adapters", "teams", "exclusive")})
    for team in document["teams"]:
        for key in ("primary", "secondary"):
            if team.get(key) == "":
                team[key] = None  # nobody; to Ansible null is what was left out
    return document


def told(change):
    """A change under the names that this module has for its parts."""
    return {
        "subject": change["subject"], "what": change["what"], "before": change["now"], "after": change["wanted"],
        "step": change["step"],
    }


def diff(changes):
    """A line for each thing that changes, as it was and as it is."""
    sides = {"before": "", "after": ""}
    for change in changes:
        for side in sides:
            value = change[side]
            if value is not None:
                text = value if isinstance(value, str) else json.dumps(value, ensure_ascii=False)
                sides[side] += f"{change['subject']}, {change['what']}: {text}\n"
    return sides


class Run:
    """One run of the module: what quilletctl answered, and the ways in which that ends it."""

    def __init__(self, module):
        self.module = module

    def end(self, end, changes=(), **fields):
        changes = list(changes)
        end(changes=changes, diff=diff(changes), **{"changed": bool(changes), "restart_required": None, **fields})

    def fail(self, message, changes=(), **fields):
        self.end(self.module.fail_json, changes, msg=message, **fields)

    def ask(self):
        """The answer of quilletctl."""
        parameters = self.module.params
        # Whoever runs the role has agreed already.
        words = [*parameters["command"], "--json", "--yes"]
        words += [f"--{option}={parameters[option]}" for option in ACCESS if parameters[option]]
        if self.module.check_mode:
            words += ["config", "diff", "-"]
        else:
            words += ["config", "apply", "-"] + ([] if parameters["rollback"] else ["--no-rollback"])
        try:
            # Ansible's own way to run a command takes offence at one that ends before it has read its input.
            done = subprocess.run(
                words,
                input=json.dumps(document_of(parameters)).encode(),
                capture_output=True,
                check=False,
                # Names are more than ASCII, whatever the controller's own language.
                env={**os.environ, "LANG": "C.UTF-8", "LC_ALL": "C.UTF-8"},
            )
        except OSError as error:
            self.fail(f"cannot run {words[0]}: {error}")
        try:
            answer = json.loads(done.stdout)
        except ValueError:
            answer = None
        if not isinstance(answer, dict):
            said = done.stderr.decode(errors="replace").strip().splitlines()
            self.fail(f"quilletctl did not answer in JSON: {said[-1] if said else f'status {done.returncode}'}")
        return answer

    def main(self):
        answer = self.ask()
        if "error" in answer:
            error = answer["error"]
            self.fail(
                error["message"].replace("\n", "; "), restart_required=error["restartNeeded"], provider_code=error["code"],
                provider_code_name=error["name"],
            )
        for warning in answer["warnings"]:
            self.module.warn(warning)
        if answer["problems"]:
            self.fail(
                "the description does not fit the machine: " + "; ".join(answer["problems"]),
                problems=answer["problems"], losses=answer["losses"],
            )
        changes = [told(change) for change in answer["changes"]]
        if not self.module.check_mode and (answer["failure"] or answer["differences"]):
            self.fail_half_way(answer, changes)
        self.end(
            self.module.exit_json, changes, losses=answer["losses"], restart_required=answer.get("restartNeeded")
        )

    def fail_half_way(self, answer, changes):
        code, _, name = (answer["code"] or "").partition(" ")
        done = answer["done"]
        fields = {"provider_code": code or None, "provider_code_name": name or None}
        if answer["failure"] and done < len(changes):
            fields.update(failed_change=changes[done], pending_changes=changes[done + 1 :])
        if answer["failure"]:
            message = f"{done} of {len(changes)} changes were made, then: {answer['failure']}"
        else:
            message = "the machine took every change and still differs from the description: "
            message += "; ".join(answer["differences"])
        if answer["notRestored"]:
            message += "; not everything is as it was before: " + "; ".join(answer["notRestored"])
        elif answer["wentBack"]:
            message += "; everything is as it was before"
        self.fail(
            message,
            [] if answer["wentBack"] else changes[:done],
            changed=bool(answer["notRestored"]) if answer["wentBack"] else done > 0,
            restart_required=answer["restartNeeded"],
            losses=answer["losses"],
            differences=answer["differences"],
            went_back=answer["wentBack"],
            not_restored=answer["notRestored"],
            **fields,
        )


def main():
    Run(AnsibleModule(argument_spec=ARGUMENTS, supports_check_mode=True)).main()


if __name__ == "__main__":
    main()
