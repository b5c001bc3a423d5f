"""Machines: the way to everything else."""

import os
import threading
import warnings as python_warnings
from types import TracebackType
from typing import Literal, Optional, Sequence, Type, TypeVar, Union

from . import _quillet
from ._adapters import Adapter, AdapterOverview
from ._boot import IscsiAdapter
from ._bound import ask, paths
from ._quillet import Secret
from ._records import NewTeam, OfferedProfile, OfferedTeamMode
from ._settings import ALL_SETTINGS, Setting
from ._teams import Port, Team
from ._vlans import Vlan
from ._words import Code, Profile, TeamCheck, TeamMode, TeamProblem

Self = TypeVar("Self", bound="Machine")


class Changes:
    """The changes that are made in its scope belong together, and take effect at its end. A scope that an
    exception leaves is closed as well: what was changed until then stays changed.
    """

    def __init__(self, session: _quillet.Session) -> None:
        self._session = session
        self.restart_needed = False
        """At the end of the scope: whether the machine must be restarted for the changes to take effect."""

    def __enter__(self) -> "Changes":
        self._session.begin()
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], _: object, __: Optional[TracebackType]) -> None:
        if kind is None:
            self.restart_needed = self._session.apply()
        else:
            self._session.abandon()


class FetchOnce:
    """Within its scope, what the thread reads of one object by several operations is fetched once, as a picture of
    one moment. A change that the thread makes ends that moment, and the next one begins.
    """

    def __init__(self, session: _quillet.Session) -> None:
        self._session = session
        self._begun: list[tuple[int, int]] = []

    def __enter__(self) -> "FetchOnce":
        self._begun.append((threading.get_ident(), self._session.begin_fetching()))
        return self

    def __exit__(self, *_: object) -> None:
        thread, number = self._begun.pop()
        if thread != threading.get_ident():
            raise RuntimeError("a scope that fetches once must end on the thread that it began on")
        _quillet.end_fetching(number)


class Machine:
    """A machine, connected until it is closed. Several threads may use one."""

    def __init__(self, session: _quillet.Session) -> None:
        self._session = session

    def __enter__(self: Self) -> Self:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def close(self) -> None:
        """Disconnects. Nothing that was read of the machine can ask it any more."""
        self._session.close()

    @property
    def is_open(self) -> bool:
        """Whether it is connected."""
        return self._session.is_open()

    def changes(self) -> Changes:
        """A scope for changes. A machine has one at a time."""
        return Changes(self._session)

    @property
    def warnings(self) -> Optional[int]:
        """The provider's pending warnings, its own bits; None where it does not tell them."""
        return self._session.warnings()

    @property
    def adapters(self) -> list[Adapter]:
        """The adapters."""
        return ask(self._session, self._session.adapters)

    @property
    def teams(self) -> list[Team]:
        """The teams."""
        return ask(self._session, self._session.teams)

    @property
    def iscsi_adapters(self) -> list[IscsiAdapter]:
        """The adapters that can boot from iSCSI."""
        return ask(self._session, self._session.iscsi_adapters)

    def overview(self, adapters: Optional[Sequence[Adapter]] = None, *, threads: int = 1) -> list[AdapterOverview]:
        """The adapters, or some of them, with link, speed, addresses and team, for one fetch of each. Over a network,
        several threads ask side by side.
        """
        if adapters is None:
            return ask(self._session, self._session.adapter_overviews, threads)
        return ask(self._session, self._session.overviews_of, adapters, threads)

    def find_adapter(self, object_id: str) -> Adapter:
        """The adapter with an object identifier (GUID text), which stays the same as long as it is in its slot."""
        for adapter in self.adapters:
            if adapter.object_id.lower() == object_id.lower():
                return adapter.read()
        # There is none, as the machine itself is to say. The path that is made here names this computer, so it is no
        # path to keep.
        return ask(self._session, self._session.read_adapter, self._session.adapter_by_object_id(object_id))

    def find_team(self, object_id: str) -> Team:
        """The team with an object identifier."""
        return ask(self._session, self._session.read_team, self._session.team_by_object_id(object_id))

    def find_vlan(self, object_id: str) -> Vlan:
        """The VLAN with an object identifier."""
        return ask(self._session, self._session.read_vlan, self._session.vlan_by_object_id(object_id))

    def settings_of_class(self, class_name: str, object_id: str, keyword: str = "") -> list[Setting]:
        """The settings that an owner has of one of the provider's classes, or the one with a keyword."""
        return ask(self._session, self._session.settings_of_class, class_name, object_id, keyword, ALL_SETTINGS)

    def fetch_once(self) -> FetchOnce:
        """A scope that reads several things of one object at the price of one fetch.

        >>> adapter = machine.adapters[0]
        >>> machine.forget_calls()
        >>> with machine.fetch_once():
        ...     state, hardware = adapter.read_state(), adapter.read_hardware()
        >>> sum("GetObject" in call for call in machine.calls)
        1
        """
        return FetchOnce(self._session)

    def text_of(self, code: Code) -> str:
        """What the provider itself calls a number, for one that has no text here; empty where it does not tell.

        >>> machine.text_of(StatusInfo.NOT_APPLICABLE)
        'Not Applicable'
        """
        return self._session.provider_text(type(code).__name__, code)

    def common_profiles(self, adapters: Sequence[Port]) -> list[OfferedProfile]:
        """The performance profiles that all these adapters offer."""
        return self._session.common_profiles(paths(adapters))

    def common_team_modes(self, adapters: Sequence[Port]) -> list[OfferedTeamMode]:
        """The modes that all these adapters can be teamed in."""
        return self._session.common_team_modes(paths(adapters))

    def replace_hyper_v_profile(self, profile: Profile) -> None:
        """Moves every adapter that has the profile for hosts of virtual machines to another one, in a client set
        of its own.
        """
        self._session.replace_hyper_v_profile(profile)

    @property
    def team_name_prefix(self) -> str:
        """What the provider proposes for the names of new teams to begin with."""
        return self._session.team_name_prefix()

    def are_teamed(self, adapters: Sequence[Port]) -> list[bool]:
        """Which of these adapters are members of a team, in their order."""
        return self._session.are_teamed(paths(adapters))

    def check_new_team(
        self,
        name: str,
        members: Sequence[Port],
        mode: TeamMode = TeamMode.ADAPTIVE_LOAD_BALANCING,
        *,
        check: TeamCheck = TeamCheck.NAME_AND_MEMBERS,
    ) -> TeamProblem:
        """What stands in the way of a team."""
        return self._session.check_new_team(NewTeam(name, mode, paths(members)), check)

    def validate_new_team(
        self, name: str, members: Sequence[Port], mode: TeamMode = TeamMode.ADAPTIVE_LOAD_BALANCING
    ) -> TeamProblem:
        """What the provider itself says to a team: to its name, its mode, its members and their settings."""
        ports = paths(members)
        session = self._session
        return (session.validate_team_name(name, "") | session.validate_team_mode(mode, "")
                | session.validate_new_members(ports, mode) | session.validate_member_settings(ports))

    def create_team(
        self,
        name: str,
        members: Sequence[Port],
        mode: TeamMode = TeamMode.ADAPTIVE_LOAD_BALANCING,
        *,
        profile: Profile = Profile.CUSTOM,
        multi_vendor: bool = False,
        link_security: bool = False,
    ) -> Team:
        """Makes a team; the first member becomes the primary one. Belongs into changes."""
        team = NewTeam(name, mode, paths(members), profile, multi_vendor, link_security)
        return ask(self._session, self._session.create_team, team)


def connect(
    machine: str,
    *,
    user: str = "",
    password: Union[str, Secret] = "",
    authentication: Optional[Literal["negotiate", "ntlm", "basic"]] = None,
    port: int = 0,
    authorities: Union[str, "os.PathLike[str]"] = "",
    insecure: bool = False,
    plain_http: bool = False,
) -> Machine:
    """Connects to a machine over WS-Management: by the Kerberos ticket that the caller has, or, with a user, by
    password.

    authorities is a file of certificates to trust instead of the system's. insecure takes any certificate,
    plain_http does without TLS; both warn.
    """
    # At once: whoever shows this frame's variables must not show the text.
    password = password if isinstance(password, Secret) else Secret(password)
    scheme = authentication or ("ntlm" if user else "negotiate")
    if scheme not in ("negotiate", "ntlm", "basic"):
        raise ValueError("authentication: negotiate, ntlm or basic is needed")
    if not machine:
        raise ValueError("a machine is a host name or an address")
    if not hasattr(_quillet, "connect_remote"):
        raise NotImplementedError("this package was built without WS-Management")
    if plain_http and not _quillet.is_this_computer(machine):
        python_warnings.warn("everybody on the way can read and change what is sent", stacklevel=2)
    elif insecure and not plain_http:
        python_warnings.warn("the machine's certificate is not checked; somebody else may answer in its place",
                             stacklevel=2)
    return Machine(_quillet.connect_remote(
        machine, port, scheme, user, password, os.fspath(authorities), insecure, plain_http))
