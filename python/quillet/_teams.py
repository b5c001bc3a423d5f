"""Teams of adapters."""

from dataclasses import dataclass
from typing import Optional, Sequence, Union

from ._adapters import Adapter
from ._bound import Bound, paths
from ._records import BestTeamMode, SwitchTest
from ._settings import Setting, find
from ._vlans import VlanParent
from ._words import MemberRole, MemberStatus, RssProblem, StatusInfo, SwitchCommand, TeamMode, TeamProblem


@dataclass(frozen=True)
class TeamMember(Bound):
    """One member of a team."""

    path: str
    """The adapter's."""
    display_name: str
    device_id: str
    caption: str
    role: MemberRole
    status: MemberStatus
    team_path: str
    team_name: str

    def read_adapter(self) -> Adapter:
        """The adapter."""
        return self._ask(self._session.read_adapter, self.path)

    def set_role(self, role: MemberRole) -> None:
        """Changes what it is to its team. Belongs into changes."""
        self._session.set_role(self.path, role)


Port = Union[Adapter, TeamMember]


@dataclass(frozen=True)
class Team(VlanParent):
    """One team.

    >>> team = machine.teams[0]
    >>> [member.display_name for member in team.members]  # doctest: +ELLIPSIS
    ['...', '...']
    """

    path: str
    object_id: str
    name: str
    mode: TeamMode
    multi_vendor: bool
    link_security: bool
    mac_address: str
    """Empty in a list; read() fills it."""
    bound_to_hyper_v: bool
    """False in a list; read() fills it."""

    @property
    def members(self) -> list[TeamMember]:
        """The members."""
        return self._ask(self._session.members, self.path)

    def refresh_members(self, members: Sequence[TeamMember]) -> list[TeamMember]:
        """These members with role and status as they are now."""
        return self._ask(self._session.refresh_members, self.path, members)

    @property
    def enabled_members(self) -> int:
        """How many members are enabled."""
        return self._session.enabled_members(self.path)

    @property
    def settings(self) -> list[Setting]:
        """The advanced settings."""
        return self._ask(self._session.team_settings, self.path)

    def setting(self, keyword: str) -> Setting:
        """The setting with a keyword; case does not count. KeyError where there is none."""
        return find(self.settings, keyword)

    def read(self) -> "Team":
        """The team as it is now, with its MAC address and its use by virtual machines."""
        return self._ask(self._session.read_team, self.path)

    def read_status(self) -> StatusInfo:
        """The status of its logical adapter."""
        return self._session.team_status(self.path)

    def find_best_mode(self) -> BestTeamMode:
        """The mode that suits it best."""
        return self._session.find_best_team_mode(self.path)

    def test_switch(self, command: SwitchCommand = SwitchCommand.QUERY) -> SwitchTest:
        """Starts, asks or stops the test of its switch."""
        return self._session.test_switch(self.path, command)

    def check_members(self, added: Sequence[Port]) -> TeamProblem:
        """What the provider says to adapters that are to join."""
        return self._session.validate_added_members(self.path, self.members, paths(added))

    def validate(self, *, name: Optional[str] = None, mode: Optional[TeamMode] = None) -> TeamProblem:
        """What the provider says to another name or mode."""
        problems = TeamProblem(0)
        if name is not None:
            problems |= self._session.validate_team_name(name, self.path)
        if mode is not None:
            problems |= self._session.validate_team_mode(mode, self.path)
        return problems

    def check_rss(self, wanted: Sequence[Port]) -> RssProblem:
        """What a change of its members to these does to receive side scaling."""
        return self._session.check_rss(self.members, paths(wanted))

    def modify(self, *, name: Optional[str] = None, mode: Optional[TeamMode] = None) -> None:
        """Changes name or mode. Belongs into changes."""
        self._session.modify_team(
            self.path, self.name if name is None else name, self.mode if mode is None else mode)

    def set_members(self, wanted: Sequence[Port]) -> None:
        """Makes these adapters its members. Belongs into changes."""
        self._session.set_members(self.path, self.members, paths(wanted))

    def add_member(self, adapter: Port) -> None:
        """Adds one adapter. Belongs into changes."""
        self._session.add_member(self.path, *paths([adapter]))

    def remove_member(self, member: Port) -> None:
        """Takes one adapter out. Belongs into changes."""
        self._session.remove_member(self.path, *paths([member]))

    def remove(self) -> None:
        """Removes it with its VLANs. Belongs into changes."""
        self._session.remove_team(self.path)
