#!/usr/bin/python
"""Brings the wired network adapters of one machine to a described state through quilletctl."""

DOCUMENTATION = r"""
---
module: quillet_network
short_description: Bring adapters' settings, teams and VLANs of a machine to a described state
description:
  - Reads a machine through C(quilletctl --json), finds out what differs from the description, and makes these changes
    and no others. When nothing differs nothing is sent to the provider but questions.
  - The module runs where C(quilletctl) runs, which need not be the machine that is managed; usually it is delegated to
    the controller. It is written in Python and therefore cannot be sent to a Windows host.
  - A description that does not fit the machine (an adapter that is not there, a value that a setting cannot have) is
    refused as a whole before anything is changed, with everything that is wrong in one message.
  - Each change is made in a client set of the provider's own, one after the other. The first that fails ends the work
    on this machine; what was changed before stays, and the next run goes on from there.
options:
  adapters:
    description:
      - The adapters that are described, each named by one of I(name), I(mac) and I(slot).
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
          - Slot of the adapter's board, as C(quilletctl adapter show) tells it.
        type: str
      port:
        description:
          - Port number on the board in I(slot), where the board has several.
        type: str
      settings:
        description:
          - Values by the caption of the setting, such as C(*JumboPacket). A value is a number or its text; of a
            selection also a list of these; of a list of texts a list. Settings that are not named stay as they are.
        type: dict
        default: {}
      vlans:
        description:
          - VLANs on the adapter itself. Those that are not named stay, unless I(exclusive).
        type: list
        elements: dict
        default: []
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
          - The member that is to be primary, named like a member. Left out, that is left to the provider, and the first
            member of a new team.
        type: raw
      vlans:
        description:
          - VLANs on the team. Those that are not named stay, unless I(exclusive).
        type: list
        elements: dict
        default: []
        suboptions: *vlan
  exclusive:
    description:
      - Whether teams and VLANs that are not described are removed, wherever on the machine they are.
    type: bool
    default: false
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
  verify:
    description:
      - Whether the machine is read again after changes. It is a failure when it still differs from the description.
    type: bool
    default: true
notes:
  - Supports C(check_mode); what it foretells is exactly what a run without it then does. The checks that the provider
    makes before a change are left to that run.
  - Supports C(diff).
  - No option takes a secret, only the name of a file that has one. What is described is on the command lines of
    C(quilletctl).
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
    - The changes in the order in which they were made (with C(check_mode) would be made).
    - Each has I(subject) (the adapter or team), I(what) (a setting, C(team), C(mode), C(members), C(primary) or C(VLAN n)),
      I(before) and I(after); null where there is nothing before or after.
  returned: unless the machine could not be read
  type: list
  elements: dict
  sample:
    - {subject: adapter Zorel Gigabit Server Adapter, what: "*JumboPacket", before: 1514, after: 9014}
    - {subject: team Front, what: VLAN 100, before: null, after: Web}
restart_required:
  description:
    - Whether the provider asked for a restart after any of the changes. Null with C(check_mode), for only the change
      itself can tell.
  returned: always
  type: bool
failed_change:
  description: The change that failed.
  returned: when a change failed
  type: dict
pending_changes:
  description: The changes that were not tried because an earlier one failed.
  returned: when a change failed
  type: list
  elements: dict
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
  description: What the description has against the machine, or what the provider's checks have against the failed change.
  returned: when there are such
  type: list
  elements: str
"""

import json

from ansible.module_utils.basic import AnsibleModule
from ansible.module_utils.quillet_plan import DescriptionError, plan, read
from ansible.module_utils.quillet_tool import Tool, ToolFailure

PLACE = {"name": {"type": "str"}, "mac": {"type": "str"}, "slot": {"type": "str"}, "port": {"type": "str"}}
STATE = {"type": "str", "choices": ["present", "absent"], "default": "present"}
VLANS = {
    "type": "list",
    "elements": "dict",
    "default": [],
    "options": {"id": {"type": "int", "required": True}, "name": {"type": "str"}, "state": STATE},
}
ARGUMENTS = {
    "adapters": {
        "type": "list",
        "elements": "dict",
        "default": [],
        "options": {**PLACE, "settings": {"type": "dict", "default": {}}, "vlans": VLANS},
        "mutually_exclusive": [["name", "mac", "slot"]],
        "required_one_of": [["name", "mac", "slot"]],
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
            "vlans": VLANS,
        },
    },
    "exclusive": {"type": "bool", "default": False},
    "machine": {"type": "str"},
    "port": {"type": "int"},
    "auth": {"type": "str", "choices": ["negotiate", "ntlm", "basic"]},
    "credentials": {"type": "path"},
    "ca": {"type": "path"},
    "command": {"type": "list", "elements": "str", "default": ["quilletctl"]},
    "verify": {"type": "bool", "default": True},
}
# What says which machine, and how it is reached; quilletctl calls it the same.
ACCESS = ("machine", "port", "auth", "credentials", "ca")


class Run:
    """One run of the module: what it changed so far, and the ways in which it ends."""

    def __init__(self, module):
        self.module = module
        self.parameters = module.params
        access = {option: self.parameters[option] for option in ACCESS}
        self.tool = Tool(self.execute, self.parameters["command"], access)
        self.machine = None
        self.made = []
        self.restart_required = None if module.check_mode else False

    def execute(self, words):
        try:
            # Names are more than ASCII, whatever the controller's own language.
            return self.module.run_command(
                words,
                handle_exceptions=False,
                environ_update={"LANG": "C.UTF-8", "LC_ALL": "C.UTF-8"},
            )
        except OSError as error:
            raise ToolFailure(f"cannot run {words[0]}: {error}") from error

    def main(self):
        changes = self.plan()
        if not self.module.check_mode:
            self.make(changes)
            if changes and self.parameters["verify"]:
                self.verify()
        self.module.exit_json(
            changed=bool(changes),
            changes=[change.told() for change in changes],
            restart_required=self.restart_required,
            diff=self.diff(changes),
        )

    def plan(self):
        adapters, teams = self.parameters["adapters"], self.parameters["teams"]
        try:
            self.machine = read(self.tool, adapters, teams, self.parameters["exclusive"], self.machine)
            return plan(self.machine, adapters, teams, self.parameters["exclusive"])
        except ToolFailure as failure:
            self.fail(str(failure), **self.fields(failure))
        except DescriptionError as mistake:
            self.fail(f"the description does not fit the machine: {mistake}", problems=mistake.problems)

    def make(self, changes):
        new_teams = {}
        for index, change in enumerate(changes):
            try:
                restart, warnings = self.tool.make(change, new_teams)
            except ToolFailure as failure:
                self.fail(
                    f"{len(self.made)} of {len(changes)} changes were made, then: {failure}",
                    failed_change=change.told(),
                    pending_changes=[each.told() for each in changes[index + 1 :]],
                    **self.fields(failure),
                )
            self.restart_required = self.restart_required or restart
            self.made.append(change)
            for warning in warnings:
                self.module.warn(f"{change.subject}, {change.what}: {warning}")

    def verify(self):
        left = self.plan()
        if left:
            told = [change.told() for change in left]
            self.fail(
                "the machine took every change and still differs from the description: "
                + "; ".join(f"{each['subject']}, {each['what']} is {each['before']}" for each in told),
                pending_changes=told,
            )

    @staticmethod
    def fields(failure):
        fields = {"provider_code": failure.provider_code, "provider_code_name": failure.provider_code_name}
        if not failure.problems:
            return fields
        return {**fields, "problems": failure.problems}

    def fail(self, message, **fields):
        self.module.fail_json(
            msg=message,
            changed=bool(self.made),
            changes=[change.told() for change in self.made],
            restart_required=self.restart_required,
            diff=self.diff(self.made),
            **fields,
        )

    @staticmethod
    def diff(changes):
        """A line for each thing that changes, as it was and as it is."""
        sides = {"before": "", "after": ""}
        for change in changes:
            for side in sides:
                value = getattr(change, side)
                if value is not None:
                    text = value if isinstance(value, str) else json.dumps(value, ensure_ascii=False)
                    sides[side] += f"{change.subject}, {change.what}: {text}\n"
        return sides


def main():
    Run(AnsibleModule(argument_spec=ARGUMENTS, supports_check_mode=True)).main()


if __name__ == "__main__":
    main()
