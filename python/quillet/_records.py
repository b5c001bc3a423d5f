"""Values that ask nobody."""

from dataclasses import dataclass, field
from typing import Optional, Union

from . import _quillet
from ._quillet import Secret
from ._words import (
    AdapterCondition,
    AutoDetectStatus,
    Availability,
    Duplex,
    HardwareStatus,
    LinkSecurityStatus,
    LinkSpeed,
    Profile,
    StatusInfo,
    SwitchTestStatus,
    TeamMode,
)


@dataclass(frozen=True)
class AdapterState:
    """An adapter's link and state."""

    speed: LinkSpeed
    duplex: Duplex
    link_security: LinkSecurityStatus
    conditions: AdapterCondition
    status_info: StatusInfo
    availability: Availability
    hardware: HardwareStatus
    text: str
    """The state in the provider's words."""


@dataclass(frozen=True)
class AdapterHardware:
    """An adapter's identity on its bus and on the network, as texts for display."""

    controller_id: str
    media_type: str
    link_width: str
    port_number: str
    part_number: str
    mac_address: str
    eeprom_version: str
    san_mac_address: str
    pci_device_id: str


@dataclass(frozen=True)
class TeamedPort:
    """A port of an adapter's board."""

    path: str
    teamed: bool
    team_path: str


@dataclass(frozen=True)
class NdisVersion:
    """The NDIS version of a driver; both -1 when it cannot be read."""

    major: int
    minor: int


@dataclass
class NumberValue:
    """A number within a range."""

    current: int
    standard: int
    minimum: int
    maximum: int
    step: int
    base: int
    scale: int


@dataclass(frozen=True)
class Choice:
    """A value that can be chosen, and what it means."""

    value: str
    text: str


@dataclass
class ChoiceValue:
    """One of several values."""

    current: int
    standard: int
    choices: list[Choice]


@dataclass
class SliderValue:
    """One of several numbers on a scale with a label at each end."""

    current: int
    standard: int
    first_label: str
    last_label: str
    possible: list[int]


@dataclass
class TextValue:
    """A text."""

    current: str
    standard: str
    maximum_length: str


@dataclass
class SelectionValue:
    """Any number of several values at once, as the bits of one number."""

    current: int
    standard: int
    choices: list[Choice]


@dataclass
class TextListValue:
    """A list of texts."""

    current: list[str]
    standard: str
    maximum_length: str


SettingValue = Union[NumberValue, ChoiceValue, SliderValue, TextValue, SelectionValue, TextListValue]


@dataclass(frozen=True)
class SettingVerdict:
    """What an adapter's team says to a value: the provider's own bits against it, 0 where it may be taken. An
    adapter without a team may take any value.
    """

    is_teamed: bool
    reasons: int


@dataclass(frozen=True)
class JumboFrameVerdict:
    """Whether every member of an adapter's team has a jumbo-frame setting."""

    is_teamed: bool
    on_all_members: bool


@dataclass(frozen=True)
class OfferedProfile:
    """A performance profile that an adapter offers."""

    profile: Profile
    description: str
    is_current: bool


@dataclass(frozen=True)
class PowerOptions:
    """Power saving. None: the adapter does not have the option, or it is to stay as it is."""

    mode: int = 0
    smart_power_down: Optional[bool] = None
    reduce_speed: Optional[bool] = None
    auto_power_save: Optional[bool] = None
    enhanced_aspm: Optional[bool] = None
    battery_connection: Optional[bool] = None
    battery_speed: Optional[bool] = None
    system_idle: Optional[bool] = None


@dataclass(frozen=True)
class WakeOptions:
    """What wakes a machine. None: the adapter does not have the option, or it is to stay as it is."""

    from_power_off: Optional[bool] = None
    on_link: Optional[bool] = None
    on_magic_packet: Optional[bool] = None
    on_directed_packet: Optional[bool] = None
    on_pattern: Optional[bool] = None


@dataclass(frozen=True)
class OfferedTeamMode:
    """A mode that adapters can be teamed in, in the provider's words."""

    mode: TeamMode
    description: str


@dataclass(frozen=True)
class BestTeamMode:
    """The mode that the provider recommends, and how much of the network it has seen, in per cent."""

    best: OfferedTeamMode
    status: AutoDetectStatus
    coverage: int


@dataclass(frozen=True)
class SwitchTrouble:
    """What a switch test found to be wrong, and what to do about it."""

    cause: str
    solution: str
    cause_id: int
    solution_id: int


@dataclass(frozen=True)
class SwitchTest:
    """Where a switch test stands."""

    status: SwitchTestStatus
    troubles: list[SwitchTrouble]


@dataclass(frozen=True)
class NewTeam:
    """A team that is to be made of adapters, by their paths; the first becomes the primary one."""

    name: str
    mode: TeamMode
    members: list[str]
    profile: Profile = Profile.CUSTOM
    multi_vendor: bool = False
    link_security: bool = False


@dataclass(frozen=True)
class FlashImage:
    """An image in an image file."""

    type: str
    version: str
    group: int
    expose_level: str


@dataclass(frozen=True)
class FlashVerdict:
    """What the provider says to an image file: 0 where it is right, or was written."""

    code: int

    @property
    def is_good(self) -> bool:
        """Whether the provider is content."""
        return self.code == 0

    @property
    def is_readable(self) -> bool:
        """Whether the provider could make sense of the file at all."""
        return _quillet.is_readable(self.code)


@dataclass(frozen=True)
class FlashContents:
    """The images in an image file; none for a file that cannot be read."""

    verdict: FlashVerdict
    images: list[FlashImage]


@dataclass(frozen=True)
class FlashOutcome:
    """How writing the flash memory went, and whether it holds the image, byte for byte."""

    verdict: FlashVerdict
    written: bool


@dataclass(frozen=True)
class IscsiSupport:
    """Whether iSCSI boot is enabled on an adapter and possible on its machine."""

    status: int
    by_operating_system: bool
    patch_present: bool
    hot_fix_present: bool


class _Keeper:
    """What has secrets. A plain text in the place of one would show."""

    def __setattr__(self, name: str, value: object) -> None:
        if type(self).__annotations__.get(name) is Secret and not isinstance(value, Secret):
            raise TypeError(f"{name} takes a Secret")
        super().__setattr__(name, value)


@dataclass
class SecureAssociation(_Keeper):
    """The manually entered secure associations of one direction."""

    key: Secret = field(default_factory=Secret)
    first_number: int = 0
    second_number: int = 0
    channel_id: str = ""


@dataclass
class ManualKeys:
    """The manually entered keys of an adapter and their parameters."""

    outgoing: SecureAssociation = field(default_factory=SecureAssociation)
    incoming: SecureAssociation = field(default_factory=SecureAssociation)
    include_channel_id: bool = False
    encryption: bool = False


@dataclass
class AuthenticationMethods:
    """The authentication methods of an adapter: the provider's numbers."""

    outer: int = 0
    inner: int = 0
    key_security: int = 0
    random_mac: bool = False


@dataclass
class Authentication(_Keeper):
    """How an adapter authenticates for link security."""

    methods: AuthenticationMethods = field(default_factory=AuthenticationMethods)
    user_name: str = ""
    password: Secret = field(default_factory=Secret)
    machine_domain_name: str = ""
    auto_pac: bool = False
    pac: str = ""
    machine_credentials: bool = False
    changed_credentials: int = 0
    windows_credentials: int = 0


@dataclass
class PacFile(_Keeper):
    """A PAC file to import, by its path on the managed machine."""

    path: str
    password: Secret = field(default_factory=Secret)
    changed: bool = False


@dataclass(frozen=True)
class PacContents:
    """What an imported PAC file holds. None of it is secret."""

    type: int
    description: str
    authority: str
    authority_text: str
    issued_to: str
    expires: int


@dataclass
class MasterKey(_Keeper):
    """A manually entered pairwise master key."""

    key: Secret = field(default_factory=Secret)
    random_mac: bool = False


@dataclass
class SavedCredentials(_Keeper):
    """The credentials that an adapter has saved."""

    user_name: str
    password: Secret
    machine_credentials: bool
    machine_domain_name: str
