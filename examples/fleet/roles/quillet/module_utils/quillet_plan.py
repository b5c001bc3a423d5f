"""What has to be changed so that a machine is as it is described. Reads the machine, and changes nothing."""

import re

from ansible.module_utils.quillet_tool import Change, Machine, NewTeam, same

# The provider's team modes by their number, as quilletctl calls them.
TEAM_MODES = [
    "fault tolerance",
    "adaptive load balancing",
    "static link aggregation",
    "gigabit link aggregation",
    "IEEE 802.3ad dynamic link aggregation",
    "switch fault tolerance",
    "virtual machine load balancing",
]
DEFAULT_MODE = 1
LAST_VLAN_ID = 4094
WAYS = ("name", "mac", "slot", "port")


class DescriptionError(Exception):
    """The description does not fit the machine: everything that is wrong with it, a sentence each."""

    def __init__(self, problems):
        super().__init__("; ".join(problems))
        self.problems = list(problems)


def plan(machine, adapters, teams, exclusive=False):
    """The changes in the order in which they are to be made. Raises DescriptionError."""
    return Planner(machine, exclusive).plan(adapters, teams)


def read(tool, adapters, teams, exclusive=False, known=None):
    """What a description needs to know of the machine, and not more: on a real one each answer takes its time.
    `known` is what was read before; boards do not move while somebody works on their settings."""
    listed = tool.read_adapters()
    if known is not None:
        for adapter in listed:
            adapter.take_place(known.adapter_of(adapter.key))
    elif needs_places(adapters, teams):
        for adapter in listed:
            tool.read_place(adapter)
    machine = Machine(listed, tool.read_teams())
    if exclusive or teams or any(entry.get("vlans") for entry in adapters):
        tool.read_vlans(machine)
    for entry in adapters:
        if entry.get("settings"):
            try:
                found = selected(machine.adapters, selector_of(entry))
            except ValueError:
                found = []  # which the plan complains of
            if len(found) == 1:
                tool.read_settings(found[0])
    return machine


def needs_places(adapters, teams):
    """Whether an adapter is named by its MAC address or its place."""
    selectors = [selector_of(entry) for entry in adapters]
    for team in teams:
        selectors += (team.get("members") or []) + ([team["primary"]] if team.get("primary") else [])
    return any(
        bool(given.get("mac") or given.get("slot")) if isinstance(given, dict) else bool(mac_digits(given))
        for given in selectors
    )


# ------------------------------------------------------------------------------------------ finding adapters


def mac_digits(text):
    """The twelve digits of a MAC address however they are set apart; nothing when the text is none."""
    digits = re.sub(r"[-:.]", "", str(text))
    return digits.upper() if re.fullmatch(r"[0-9A-Fa-f]{12}", digits) else None


def without_braces(text):
    return text[1:-1] if text and text[0] == "{" and text[-1] == "}" else text


def selector_text(selector):
    """What an adapter was named by, for people."""
    if not isinstance(selector, dict):
        return f'"{selector}"'
    return "with " + ", ".join(f"{way} {selector[way]}" for way in WAYS if selector.get(way))


def selector_of(entry):
    """The part of an adapter's description that says which one it is."""
    return {way: entry[way] for way in WAYS if entry.get(way)}


def named(adapters, text):
    """The adapters that a text names: what can name one only counts before what several may share."""
    ids = [text.casefold(), without_braces(text).casefold()]
    mac = mac_digits(text)
    ways = (
        lambda each: same(each.path, text),
        lambda each: any(
            known and without_braces(known).casefold() in ids for known in (each.object_id, each.device_id)
        ),
        lambda each: same(each.name or "", text),
        lambda each: same(each.display_name or "", text),
        lambda each: bool(mac) and mac_digits(each.mac) == mac,
    )
    for way in ways:
        found = [each for each in adapters if way(each)]
        if found:
            return found
    return []


def selected(adapters, selector):
    """The adapters that a selector fits. Raises ValueError when it is none."""
    if isinstance(selector, str) and selector:
        return named(adapters, selector)
    if not isinstance(selector, dict):
        raise ValueError("an adapter is named by a text, or by name, mac, or slot and port")
    given = [way for way in ("name", "mac", "slot") if selector.get(way)]
    unknown = sorted(set(selector) - set(WAYS))
    if unknown:
        raise ValueError("an adapter is not named by " + ", ".join(unknown))
    if len(given) != 1 or (selector.get("port") and given != ["slot"]):
        raise ValueError("an adapter is named by one of name, mac and slot; port goes with slot")
    if given == ["name"]:
        return named(adapters, str(selector["name"]))
    if given == ["mac"]:
        mac = mac_digits(selector["mac"])
        if not mac:
            raise ValueError(f'"{selector["mac"]}" is no MAC address')
        return [each for each in adapters if mac_digits(each.mac) == mac]
    slot, port = str(selector["slot"]), selector.get("port")
    return [
        each for each in adapters if same(each.slot or "", slot) and (not port or same(each.port or "", str(port)))
    ]


# ----------------------------------------------------------------------------------------- values of settings


def whole_number(value):
    if isinstance(value, int) and not isinstance(value, bool):
        return value
    if isinstance(value, str) and re.fullmatch(r"-?[0-9]+", value):
        return int(value)
    return None


def choice(setting, value):
    """The number that a text or a number means; a text of the setting's own wins over the number it looks like."""
    numbers = [possible["value"] for possible in setting["possible"]]
    for possible in setting["possible"]:
        if isinstance(value, str) and same(possible["text"], value):
            return possible["value"]
    number = whole_number(value)
    if number not in numbers:
        raise ValueError("is none of its values")
    return number


def selection(setting, value):
    """The bits that several texts or numbers mean."""
    bits = 0
    for possible in setting["possible"]:
        bits |= possible["value"] if isinstance(possible["value"], int) else 0
    number = whole_number(value)
    if number is not None:
        if number < 0 or number & ~bits:
            raise ValueError("has bits that are none of its values")
        return number
    chosen = 0
    for piece in value if isinstance(value, list) else str(value).split("+"):
        chosen |= choice(setting, piece.strip() if isinstance(piece, str) else piece)
    return chosen


def number_within(setting, value):
    number = whole_number(value)
    if number is None:
        raise ValueError("is no whole number")
    if setting["kind"] == "slider":
        if number not in setting["possible"]:
            raise ValueError("is none of its values")
    elif not setting["minimum"] <= number <= setting["maximum"]:
        raise ValueError(f"is not from {setting['minimum']} to {setting['maximum']}")
    elif setting["step"] > 1 and (number - setting["minimum"]) % setting["step"]:
        raise ValueError(f"is no step of {setting['step']} from {setting['minimum']}")
    return number


def short_text(setting, value):
    if not isinstance(value, str):
        raise ValueError("is no text; put it between quotes")
    if len(value) > setting["maxLength"]:
        raise ValueError(f"has more than {setting['maxLength']} characters")
    return value


def texts(setting, value):
    if not isinstance(value, list) or not value:
        raise ValueError("is no list of texts")
    for each in value:
        if "," in short_text(setting, each):
            raise ValueError("holds a comma, which quilletctl takes for the end of a text")
    return value


READERS = {
    "enum": choice,
    "multiSelection": selection,
    "int": number_within,
    "slider": number_within,
    "string": short_text,
    "multiString": texts,
}


def wanted_value(setting, value):
    """A described value in the form in which the current one is told. Raises ValueError."""
    if isinstance(value, bool):
        raise ValueError("is true or false to YAML; put the word between quotes")
    reader = READERS.get(setting["kind"])
    if reader is None:
        raise ValueError("is of a kind that is not known here")
    return reader(setting, value)


def operand(setting, value):
    """A value as a word for quilletctl."""
    if isinstance(value, list):
        return ",".join(value)
    for possible in setting.get("possible") or ():
        # A number that is also the text of another value would be taken for that one.
        if isinstance(possible, dict) and possible["text"] == str(value) and possible["value"] != value:
            return next(each["text"] for each in setting["possible"] if each["value"] == value)
    return str(value)


# ------------------------------------------------------------------------------------------------ the planner


class WantedTeam:
    """A described team beside the one that is there. What is None is to stay as it is."""

    def __init__(self, entry, current):
        self.entry, self.current = entry, current
        self.name = entry["name"]
        self.subject = f"team {self.name}"
        self.is_present = entry.get("state", "present") == "present"
        self.mode = self.members = self.primary = None

    @property
    def is_replaced(self):
        """Whether no member stays: the old ones leave only when the new ones are there."""
        return (
            self.is_present
            and self.current is not None
            and bool(self.current.members)
            and self.members is not None
            and not any(adapter.key in self.current.members for adapter in self.members)
        )


class Planner:
    """Collects changes by kind, so that one can rest on those made before it, and everything that is wrong."""

    # What is taken away makes room for what comes; the checks of a team look at the settings of its members; the
    # untagged VLAN stands beside tagged ones only.
    ORDER = (
        "team deleted", "VLAN removed", "member removed", "setting", "team made", "mode", "member added",
        "last member removed", "primary", "VLAN renamed", "VLAN added", "untagged VLAN added",
    )

    def __init__(self, machine, exclusive):
        self.machine = machine
        self.exclusive = exclusive
        self.problems = []
        self.changes = {kind: [] for kind in self.ORDER}

    def plan(self, adapters, teams):
        described = self.match_adapters(adapters)
        wanted = self.match_teams(teams)
        others = self.delete_teams(wanted)
        membership = self.memberships(wanted, others)
        for adapter, entry in described:
            self.settings(adapter, entry.get("settings") or {})
        for team in wanted:
            if team.is_present:
                self.team(team)
                current = team.current
                handle, vlans = (current.handle, current.vlans) if current else (NewTeam(team.name), {})
                self.vlans(team.subject, handle, vlans, team.entry.get("vlans"))
        self.adapter_vlans(described, membership)
        if self.problems:
            raise DescriptionError(self.problems)
        return [change for kind in self.ORDER for change in self.changes[kind]]

    def add(self, kind, *arguments, **more):
        self.changes[kind].append(Change(*arguments, **more))

    # ------------------------------------------------------------------------------------- what is described

    def one_adapter(self, selector, where):
        """The adapter that a selector names; nothing, and a problem, when it is none or several."""
        try:
            found = selected(self.machine.adapters, selector)
        except ValueError as error:
            self.problems.append(f"{where}: {error}")
            return None
        if len(found) == 1:
            return found[0]
        called = selector_text(selector)
        handles = ", ".join(each.handle for each in found)
        self.problems.append(
            f"{where}: several adapters {called}: {handles}" if found else f"{where}: there is no adapter {called}"
        )
        return None

    def match_adapters(self, adapters):
        described = []
        for entry in adapters:
            adapter = self.one_adapter(selector_of(entry), "adapters")
            if adapter is None:
                continue
            if any(adapter is other for other, _ in described):
                self.problems.append(f"adapters: {adapter.called} is described twice")
                continue
            described.append((adapter, entry))
        return described

    def match_teams(self, teams):
        wanted = []
        for entry in teams:
            name = entry["name"]
            if any(same(name, other.name) for other in wanted):
                self.problems.append(f"teams: {name} is described twice")
                continue
            found = [team for team in self.machine.teams if same(team.name, name)]
            if len(found) > 1:
                handles = ", ".join(team.handle for team in found)
                self.problems.append(f"teams: several teams are called {name}: {handles}")
                continue
            wanted.append(WantedTeam(entry, found[0] if found else None))
        for team in wanted:
            if team.is_present:
                self.match_team(team)
        return wanted

    def match_team(self, team):
        """Finds out what a described team is made of."""
        entry = team.entry
        if entry.get("mode") is not None:
            team.mode = self.mode_number(str(entry["mode"]), team.subject)
        if entry.get("members") is not None:
            team.members = []
            for selector in entry["members"]:
                adapter = self.one_adapter(selector, team.subject)
                if adapter is not None and adapter in team.members:
                    self.problems.append(f"{team.subject}: {adapter.called} is named twice")
                elif adapter is not None:
                    team.members.append(adapter)
            if not entry["members"]:
                self.problems.append(f"{team.subject}: a team has a member at least; state: absent deletes it")
        elif team.current is None:
            self.problems.append(f"{team.subject}: there is none yet, and without members it cannot be made")
        if entry.get("primary"):
            team.primary = self.one_adapter(entry["primary"], team.subject)
            members = team.members if team.members is not None else self.current_members(team)
            if team.primary is not None and team.primary not in members:
                self.problems.append(f"{team.subject}: {team.primary.called} is to be primary, but no member")

    def mode_number(self, mode, where):
        for number, text in enumerate(TEAM_MODES):
            if mode == str(number) or same(mode, text):
                return number
        self.problems.append(f'{where}: no team mode is called "{mode}"')
        return None

    def current_members(self, team):
        found = [self.machine.adapter_of(key) for key in (team.current.members if team.current else ())]
        return [adapter for adapter in found if adapter is not None]

    def memberships(self, wanted, others):
        """The team that each adapter will be in, by the adapter's key."""
        joined, left, kept = {}, {}, {}
        for team in wanted:
            for adapter in team.members or ():
                if adapter.key in joined:
                    self.problems.append(
                        f"{adapter.called} is to be a member of {joined[adapter.key]} and of {team.subject}"
                    )
                joined[adapter.key] = team.subject
            if team.is_present and team.current is not None:
                # A team that says nothing of its members keeps them.
                destination = kept if team.members is None else left if team.is_replaced else {}
                destination.update((key, team.subject) for key in team.current.members)
        for team in others:
            kept.update((key, f"team {team.name}") for key in team.members)
        for key, target in joined.items():
            called = self.called(key)
            if key in kept:
                self.problems.append(
                    f"{called} is a member of {kept[key]}: describe that team's members, or its absence, before it "
                    f"can be moved to {target}"
                )
            if key in left:
                self.problems.append(
                    f"{called} cannot be moved from {left[key]} to {target} in one run, because {left[key]} gets all "
                    "its members replaced"
                )
        return {**kept, **joined}

    # ---------------------------------------------------------------------------------------------- settings

    def settings(self, adapter, values):
        for caption, value in values.items():
            where = f"{caption} of {adapter.called}"
            setting = adapter.settings.get(caption)
            if setting is None:
                self.problems.append(f"{adapter.called} has no setting {caption}")
                continue
            try:
                wanted = wanted_value(setting, value)
            except ValueError as error:
                self.problems.append(f"{where}: {value} {error}")
                continue
            if wanted == setting["current"]:
                continue
            if not setting["writable"]:
                self.problems.append(f"{where} is read only, and is {setting['current']}")
                continue
            self.add(
                "setting", f"adapter {adapter.called}", caption, setting["current"], wanted,
                ["setting", "set"], [adapter.handle, caption, operand(setting, wanted)],
            )

    # ------------------------------------------------------------------------------------------------- teams

    def delete_teams(self, wanted):
        """Plans what goes, and returns the teams that nobody describes and that stay."""
        unwanted = [team.current for team in wanted if team.current is not None and not team.is_present]
        others = [team for team in self.machine.teams if not any(team is each.current for each in wanted)]
        for team in unwanted + (others if self.exclusive else []):
            self.add(
                "team deleted", f"team {team.name}", "team", self.told_team(team.mode, team.members), None,
                ["team", "delete"], [team.handle],
            )
        return [] if self.exclusive else others

    def told_team(self, mode, members):
        return {"mode": mode, "members": [self.called(key) for key in members]}

    def called(self, key):
        adapter = self.machine.adapter_of(key)
        return adapter.called if adapter is not None else key

    def team(self, team):
        if team.current is None:
            self.make_team(team)
            return
        handle = team.current.handle
        if team.mode not in (None, team.current.mode):
            self.add(
                "mode", team.subject, "mode", team.current.mode, team.mode,
                ["team", "modify"], [handle], [f"--mode={team.mode}"],
            )
        if team.members is not None:
            self.members(team, handle)
        if team.primary is not None and team.primary.key != team.current.primary:
            before = self.called(team.current.primary) if team.current.primary else None
            self.add(
                "primary", team.subject, "primary", before, team.primary.called,
                ["team", "primary"], [team.primary.handle],
            )

    def make_team(self, team):
        # The first member becomes the primary one.
        members = sorted(team.members or (), key=lambda each: each is not team.primary)
        mode = DEFAULT_MODE if team.mode is None else team.mode
        self.add(
            "team made", team.subject, "team", None, self.told_team(mode, [each.key for each in members]),
            ["team", "create"], [team.name] + [each.handle for each in members], [f"--mode={mode}"],
            makes=NewTeam(team.name),
        )

    def members(self, team, handle):
        before = self.current_members(team)
        add = ("member added", "add", [each for each in team.members if each not in before])
        leaving = [each for each in before if each not in team.members]
        # A team that loses all its members first would have none for a moment.
        steps = (
            [add, ("last member removed", "remove", leaving)]
            if team.is_replaced
            else [("member removed", "remove", leaving), add]
        )
        now = before
        for kind, verb, moving in steps:
            if moving:
                after = now + moving if verb == "add" else [each for each in now if each not in moving]
                self.add(
                    kind, team.subject, "members", [each.called for each in now], [each.called for each in after],
                    ["team", verb], [handle] + [each.handle for each in moving],
                )
                now = after

    # ------------------------------------------------------------------------------------------------- VLANs

    def adapter_vlans(self, described, membership):
        entries = {adapter.key: entry.get("vlans") for adapter, entry in described}
        for adapter in self.machine.adapters:
            final = self.vlans(
                f"adapter {adapter.called}", adapter.handle, adapter.vlans, entries.get(adapter.key)
            )
            # What was there before is nobody's description.
            is_new = final != adapter.vlans or not any(adapter.key in team.members for team in self.machine.teams)
            if final and is_new and adapter.key in membership:
                numbers = ", ".join(str(number) for number in sorted(final))
                self.problems.append(
                    f"{adapter.called} cannot carry VLANs ({numbers}) and be a member of {membership[adapter.key]}: "
                    "VLANs go on the team"
                )

    def vlans(self, subject, handle, current, entries):
        """Plans the VLANs of one owner and returns what it then carries: names by VLAN ID."""
        wanted = {}
        for entry in entries or ():
            number = entry["id"]
            if number in wanted:
                self.problems.append(f"{subject}: VLAN {number} is described twice")
            if not 0 <= number <= LAST_VLAN_ID:
                self.problems.append(f"{subject}: {number} is no VLAN ID")
            wanted[number] = entry
        absent = {number for number, entry in wanted.items() if entry.get("state") == "absent"}
        gone = absent | (set(current) - set(wanted) if self.exclusive else set())
        final = {number: name for number, name in current.items() if number not in gone}
        for number in sorted(set(wanted) - absent):
            name = wanted[number].get("name")
            if name:
                final[number] = name
            elif number not in final:
                self.problems.append(f"{subject}: VLAN {number} is not there yet and needs a name")
        folded = [name.casefold() for name in final.values()]
        for name in sorted(name for name in final.values() if folded.count(name.casefold()) > 1):
            self.problems.append(f"{subject}: several VLANs would be called {name}")

        for number in sorted(set(current) - set(final)):
            self.add(
                "VLAN removed", subject, f"VLAN {number}", current[number], None,
                ["vlan", "remove"], [handle, str(number)],
            )
        self.rename_vlans(subject, handle, {number: current[number] for number in current if number in final}, final)
        for number in sorted(set(final) - set(current)):
            self.add(
                "VLAN added" if number else "untagged VLAN added", subject, f"VLAN {number}", None, final[number],
                ["vlan", "add"], [handle, str(number), final[number]],
            )
        return final

    def rename_vlans(self, subject, handle, names, final):
        """A VLAN takes its new name when no other has it any more."""
        waiting = sorted(number for number in names if names[number] != final[number])
        while waiting:
            ready = [
                number
                for number in waiting
                if not any(same(final[number], name) for other, name in names.items() if other != number)
            ]
            if not ready:
                numbers = ", ".join(str(number) for number in waiting)
                self.problems.append(f"{subject}: VLANs {numbers} cannot take each other's names in one run")
                return
            number = ready[0]
            self.add(
                "VLAN renamed", subject, f"VLAN {number}", names[number], final[number],
                ["vlan", "modify"], [handle, str(number)], ["--name=" + final[number]],
            )
            names[number] = final[number]
            waiting.remove(number)
