"""Adapters."""

from dataclasses import dataclass
from typing import Iterator, Optional, Union

from . import _quillet
from ._boot import BootAgent
from ._bound import Bound
from ._diagnostics import Diagnostic, TestResult, follow
from ._link_security import LinkSecurity
from ._records import (
    AdapterHardware,
    AdapterState,
    IscsiSupport,
    JumboFrameVerdict,
    NdisVersion,
    OfferedProfile,
    OfferedTeamMode,
    PowerOptions,
    SettingVerdict,
    TeamedPort,
    WakeOptions,
)
from ._settings import ALL_SETTINGS, Setting, find
from ._vlans import VlanParent
from ._words import AdapterCondition, Capability, MemberRole


@dataclass(frozen=True)
class Adapter(VlanParent):
    """One adapter.

    >>> adapter = machine.adapters[0]
    >>> adapter.read_state().speed
    <LinkSpeed.GIGABIT_10: 5>
    >>> adapter.read_hardware().mac_address
    '02-00-5E-00-10-01'
    """

    path: str
    name: str
    display_name: str
    device_id: str
    slot: str
    """Of its board; empty in a list, read() fills it."""

    @property
    def object_id(self) -> str:
        """The object identifier (GUID text) in its path; empty where there is none."""
        return self._session.object_id_of(self.path)

    @property
    def capabilities(self) -> list[Capability]:
        """What it can do."""
        return self._session.capabilities(self.path)

    @property
    def settings(self) -> list[Setting]:
        """The advanced settings."""
        return self._ask(self._session.adapter_settings, self.path, ALL_SETTINGS)

    @property
    def queue_settings(self) -> list[Setting]:
        """The settings of its virtual-machine queues."""
        return self._ask(self._session.queue_settings, self.path)

    @property
    def profiles(self) -> list[OfferedProfile]:
        """The performance profiles that it offers."""
        return self._session.profiles(self.path)

    @property
    def team_modes(self) -> list[OfferedTeamMode]:
        """The modes that it can be teamed in."""
        return self._session.team_modes(self.path)

    @property
    def diagnostics(self) -> list[Diagnostic]:
        """The tests that it offers."""
        return self._ask(self._session.diagnostics, self.path)

    @property
    def boot_agent(self) -> BootAgent:
        """Its boot agent, as it is now."""
        return self._ask(self._session.read_boot_agent, self.path)

    @property
    def link_security(self) -> LinkSecurity:
        """Its keys and credentials."""
        security = LinkSecurity(self.path)
        security._bind(self._session)
        return security

    @property
    def is_primary(self) -> bool:
        """Whether it is the primary member of its team."""
        return self._session.is_primary(self.path)

    @property
    def warnings(self) -> int:
        """Its own warnings, the provider's bits."""
        return self._session.adapter_warnings(self.path)

    def read(self) -> "Adapter":
        """The adapter as it is now, with its slot."""
        return self._ask(self._session.read_adapter, self.path)

    def read_state(self) -> AdapterState:
        """Link and state."""
        return self._session.read_state(self.path)

    def read_conditions(self) -> AdapterCondition:
        """Of its state, what is to be said at once, alone."""
        return self._session.read_conditions(self.path)

    def read_hardware(self) -> AdapterHardware:
        """Identity on the bus, addresses."""
        return self._session.read_hardware(self.path)

    def read_teamed_ports(self) -> list[TeamedPort]:
        """The ports of its board, itself included, that are members of a team."""
        return self._session.teamed_ports(self.path)

    def read_ndis_version(self) -> NdisVersion:
        """The NDIS version of its driver."""
        return self._session.read_ndis_version(self.path)

    def read_hba_path(self) -> str:
        """The path of its storage host bus adapter."""
        return self._session.hba_path(self.path)

    def read_iscsi_support(self) -> IscsiSupport:
        """Whether iSCSI boot is enabled and possible."""
        return self._session.read_iscsi_support(self.path)

    def identify(self, seconds: int = 30) -> None:
        """Lets it show where it is: it blinks."""
        self._session.identify(self.path, seconds)

    def setting(self, keyword: str) -> Setting:
        """The setting with a keyword; case does not count. KeyError where there is none."""
        return find(self.settings, keyword)

    def read_speed_duplex(self, *, standard_keyword: bool = True) -> Optional[Setting]:
        """The setting of speed and duplex, which is looked for as "*SpeedDuplex" or by its older keyword; None where
        it has none.
        """
        return self._ask(self._session.speed_duplex, self.path, standard_keyword)

    def refresh(self, setting: Setting) -> Setting:
        """A setting with a list of values, such as it is now."""
        return self._ask(self._session.refresh, self.object_id, setting)

    def check_setting(self, keyword: str, value: int) -> SettingVerdict:
        """Asks its team whether it may take a value."""
        return self._session.validate_adapter_setting(self.path, keyword, value)

    def check_jumbo_frames(self) -> JumboFrameVerdict:
        """What is to be known before its jumbo-frame setting is changed."""
        return self._session.check_jumbo_frames(self.path)

    def read_power(self) -> PowerOptions:
        """The power-saving options."""
        return self._session.read_power(self.path)

    def set_power(self, options: PowerOptions) -> None:
        """Sets mode and options of power saving. Belongs into changes."""
        self._session.set_power(self.path, options)

    def read_wake(self) -> WakeOptions:
        """What wakes the machine through it."""
        return self._session.read_wake(self.path)

    def set_wake(self, options: WakeOptions) -> None:
        """Sets what wakes the machine. Belongs into changes."""
        self._session.set_wake(self.path, options)

    def reapply_power(self) -> None:
        """Lets it apply its power-management capabilities again. Belongs into changes."""
        self._session.reapply_power(self.path)

    def run(
        self, test: Union[str, Diagnostic], *, interval: float = 0.5, patience: float = 2.0
    ) -> Iterator[TestResult]:
        """Runs a diagnostic test, which the beginning of its name will do for, and follows it to its outcome, with
        interval seconds from one look to the next. Leaving before that stops the test. NotStarted where nothing is seen of it for the time of patience.

        >>> for result in machine.adapters[0].run("Link test"):
        ...     machine.advance(10)  # simulated time
        >>> result.passed
        True
        """
        return follow(self._session, self._test(test), self.path, interval, patience)

    def start(self, test: Union[str, Diagnostic]) -> None:
        """Starts a test that is not to be followed. A provider that refuses does not say so: only the test's result
        tells.
        """
        self._session.start_diagnostic(self._test(test).path, self.path)

    def stop(self, test: Union[str, Diagnostic]) -> None:
        """Asks the provider to stop a test."""
        self._session.stop_diagnostic(self._test(test).path, self.path)

    def _test(self, name: Union[str, Diagnostic]) -> Diagnostic:
        if isinstance(name, Diagnostic):
            return name
        if not isinstance(name, str):
            raise TypeError(f"a Diagnostic or its name is needed, not {type(name).__name__}")
        tests = self.diagnostics
        exact = [test for test in tests if test.name.lower() == name.lower()]
        found = exact or [test for test in tests if test.name.lower().startswith(name.lower())]
        if len(found) != 1:
            raise KeyError(f"{name}: {len(found)} tests are called so")
        return found[0]


@dataclass(frozen=True)
class AdapterOverview(Bound):
    """What a list of adapters shows of one. What it cannot tell is None, and failure says why."""

    adapter: Adapter
    object_id: str
    state: Optional[AdapterState]
    hardware: Optional[AdapterHardware]
    team_path: str
    team_name: str
    role: MemberRole
    failure: Optional[str]

    def _bind(self, session: _quillet.Session) -> None:
        super()._bind(session)
        self.adapter._bind(session)
