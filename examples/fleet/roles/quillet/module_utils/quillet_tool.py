"""Talks to one machine through quilletctl: reads how it is, and makes one change after the other."""

import json
import re

# The end of a line in which quilletctl tells a refusal: a result code, and its name where it has one.
PROVIDER_CODE = re.compile(r"(0x[0-9A-F]{8})(?: (\w+))?$")

# quilletctl's exit status when a check found problems and nothing was changed.
FOUND_PROBLEMS = 3

# The role of a member that leads its team.
PRIMARY = 1


class ToolFailure(Exception):
    """quilletctl did not do what it was asked: what it said, and what of that is worth a field of its own."""

    def __init__(self, message, status=None, problems=()):
        super().__init__(message)
        self.status = status
        self.problems = list(problems)
        code = PROVIDER_CODE.search(message)
        self.provider_code = code.group(1) if code else None
        self.provider_code_name = code.group(2) if code else None


def same(one, other):
    return one.casefold() == other.casefold()


def key_of(path):
    """What an object path names, however the machine is called in it."""
    return re.sub(r"^\\\\[^:]*:", "", path).casefold()


class Adapter:
    """An adapter as the machine has it. `settings` are read only where the description names some."""

    def __init__(self, listed):
        self.path = listed["path"]
        self.key = key_of(self.path)
        self.object_id = listed["objectId"]
        self.device_id = listed["deviceId"]
        self.name = listed["name"]
        self.display_name = listed["displayName"]
        self.mac = self.slot = self.port = ""
        self.settings = {}
        self.vlans = {}

    def take_place(self, other):
        if other is not None:
            self.mac, self.slot, self.port = other.mac, other.slot, other.port

    @property
    def handle(self):
        """What quilletctl is told for it. An object ID has nothing in it that a command line could change."""
        return self.object_id or self.path

    @property
    def called(self):
        return self.name or self.display_name or self.handle


class Team:
    """A team as the machine has it; `members` and `primary` are keys of adapters, `vlans` names by VLAN ID."""

    def __init__(self, shown):
        self.key = key_of(shown["path"])
        self.handle = shown["objectId"] or shown["path"]
        self.name = shown["name"]
        self.mode = shown["mode"]["code"]
        self.members = [key_of(member["path"]) for member in shown["members"]]
        leading = [key_of(member["path"]) for member in shown["members"] if member["role"]["code"] == PRIMARY]
        self.primary = leading[0] if leading else None
        self.vlans = {}


class Machine:
    """What was read of a machine."""

    def __init__(self, adapters, teams):
        self.adapters = adapters
        self.teams = teams

    def adapter_of(self, key):
        return next((adapter for adapter in self.adapters if adapter.key == key), None)


def problems_in(output):
    """The sentences in the answer of a command whose check found something."""
    try:
        problems = json.loads(output).get("problems", [])
    except (ValueError, AttributeError):
        return []
    return problems.get("texts", []) if isinstance(problems, dict) else problems


class Tool:
    """quilletctl, pointed at one machine. `run` takes a list of words and returns status, output and errors; `access`
    has quilletctl's options for the machine and the way to it."""

    def __init__(self, run, command, access=None):
        self.run = run
        # Whoever runs the role has agreed already.
        self.words = list(command) + ["--json", "--yes"]
        self.words += [f"--{option}={value}" for option, value in (access or {}).items() if value]

    def ask(self, verb, operands=(), options=()):
        """The answer of one command. Raises ToolFailure."""
        # Names may begin with a minus sign, so they stand behind the mark that ends the options.
        words = self.words + list(verb) + list(options) + (["--"] + list(operands) if operands else [])
        status, output, errors = self.run(words)
        asked = "quilletctl " + " ".join(verb)
        if status != 0:
            said = [line.strip() for line in errors.splitlines() if line.strip()]
            problems = problems_in(output) if status == FOUND_PROBLEMS else []
            message = said[-1] if said else f"{asked}: " + ("; ".join(problems) or f"ended with status {status}")
            raise ToolFailure(message, status, problems)
        try:
            return json.loads(output)
        except ValueError as error:
            raise ToolFailure(f"{asked} did not answer in JSON: {error}", status) from error

    def read_adapters(self):
        return [Adapter(listed) for listed in self.ask(["adapter", "list"])["adapters"]]

    def read_place(self, adapter):
        """MAC address, slot and port, which the list of adapters does not tell."""
        shown = self.ask(["adapter", "show"], [adapter.handle])
        adapter.mac, adapter.slot, adapter.port = shown["macAddress"], shown["slotId"], shown["portNumber"]

    def read_teams(self):
        listed = self.ask(["team", "list"])["teams"]
        return [Team(self.ask(["team", "show"], [each["objectId"] or each["path"]])) for each in listed]

    def read_vlans(self, machine):
        """Enters the VLANs of the whole machine where they belong."""
        owners = {owner.key: owner for owner in machine.adapters + machine.teams}
        for vlan in self.ask(["vlan", "list"])["vlans"]:
            owner = owners.get(key_of(vlan["parent"]["path"]))
            if owner is not None:
                owner.vlans[vlan["number"]] = vlan["name"]

    def read_settings(self, adapter):
        listed = self.ask(["setting", "list"], [adapter.handle])["settings"]
        adapter.settings = {setting["caption"]: setting for setting in listed}

    def make(self, change, made):
        """Makes one change, in a client set of its own. `made` holds the handles of teams made so far, by name.
        Returns whether a restart is needed, and what the provider warned of."""
        operands = [made[word] if isinstance(word, NewTeam) else word for word in change.operands]
        answer = self.ask(change.verb, operands, change.options)
        if change.makes is not None:
            made[change.makes] = answer["objectId"] or answer["path"]
        warnings = [warning for target in answer.get("targets", ()) for warning in target["warnings"]]
        return bool(answer.get("restartNeeded")), warnings


class NewTeam(str):
    """Stands for a team that an earlier change makes, by its name."""


class Change:
    """One change: what people are told of it, and the command that makes it."""

    def __init__(self, subject, what, before, after, verb, operands, options=(), makes=None):
        self.subject, self.what, self.before, self.after = subject, what, before, after
        self.verb, self.operands, self.options, self.makes = verb, operands, options, makes

    def told(self):
        return {"subject": self.subject, "what": self.what, "before": self.before, "after": self.after}
