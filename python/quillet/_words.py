"""The provider's numbers and masks by their names. One that has no name keeps its number."""

import enum
from typing import Optional

from . import _quillet


class Code(enum.IntEnum):
    """A number of the provider's."""

    @classmethod
    def _missing_(cls, value: object) -> "Optional[Code]":
        """Others than those with a name may come."""
        if not isinstance(value, int):
            return None
        unknown = int.__new__(cls, value)
        unknown._name_ = f"UNKNOWN_{value}"
        unknown._value_ = value
        return unknown

    def __reduce_ex__(self, protocol: object) -> tuple[type, tuple[int]]:
        """By number: one without a name has none to be found by."""
        return type(self), (self.value,)

    @property
    def text(self) -> str:
        """The word for people, in English; empty where there is none."""
        return "".join(_quillet.words(type(self).__name__, self.value))


def describe_result(code: int) -> str:
    """A result code with its name.

    >>> describe_result(0x80041010)
    '0x80041010 WBEM_E_INVALID_CLASS'
    """
    return _quillet.describe_result(code & 0xFFFFFFFF)


def explain_result(code: int, reason: str = "") -> str:
    """What a result code means, here if a reason is given and else everywhere, and its name.

    >>> explain_result(0x80041003)
    'access is denied: 0x80041003 WBEM_E_ACCESS_DENIED'
    """
    return _quillet.explain_result(code & 0xFFFFFFFF, reason)


def unknown_number(number: int, what: str = "code") -> str:
    """What a number that has no word is shown as.

    >>> unknown_number(7)
    'code 7 (unknown)'
    """
    return _quillet.unknown_number(number, what)


def unknown_bits(mask: int, what: str) -> list[str]:
    """The same of each bit that is set.

    >>> unknown_bits(0b1010, "warning")
    ['warning 1 (unknown)', 'warning 3 (unknown)']
    """
    return _quillet.unknown_bits(mask, what)


class _Mask(enum.IntFlag):
    """Any number of bits of the provider's or of a check."""

    @property
    def texts(self) -> list[str]:
        """A sentence for each bit, without a full stop."""
        return _quillet.words(type(self).__name__, self.value)


class LinkSpeed(Code):
    """The class of a link's speed.

    >>> LinkSpeed.GIGABIT_10.text
    '10 Gbit/s'
    """

    NONE = 0
    MEGABIT_1 = 1
    MEGABIT_10 = 2
    MEGABIT_100 = 3
    GIGABIT_1 = 4
    GIGABIT_10 = 5
    OTHER = 6


class Duplex(Code):
    """Whether a link sends and receives at once."""

    UNKNOWN = 0
    HALF = 1
    FULL = 2


class LinkSecurityStatus(Code):
    """How far link security is on an adapter."""

    UNKNOWN = 0
    NOT_SUPPORTED = 1
    DISABLED = 2
    ENABLED = 3
    AUTHENTICATING = 4
    AUTHENTICATED = 5
    AUTHENTICATION_FAILED = 6
    SECURED = 7
    SECURED_WITH_ENCRYPTION = 8
    KEY_AGREEMENT_FAILED = 9


class AdapterCondition(_Mask):
    """What is to be said of an adapter at once."""

    ENABLED = 1
    DRIVER_PROBLEM = 2
    HARDWARE_MISSING = 4


class HardwareStatus(Code):
    """Whether an adapter is there, and its cable."""

    MISSING = 0
    DRIVER_NOT_LOADED = 1
    CABLE_REMOVED = 2
    LINK_PRESENT = 3


class StatusInfo(Code):
    """Whether an adapter, a team or a VLAN is enabled."""

    OTHER = 1
    UNKNOWN = 2
    ENABLED = 3
    DISABLED = 4
    NOT_APPLICABLE = 5


class Availability(Code):
    """What an adapter is up to."""

    OTHER = 1
    UNKNOWN = 2
    RUNNING = 3
    WARNING = 4
    IN_TEST = 5
    NOT_APPLICABLE = 6
    POWER_OFF = 7
    OFF_LINE = 8
    OFF_DUTY = 9
    DEGRADED = 10
    NOT_INSTALLED = 11
    INSTALL_ERROR = 12
    POWER_SAVE_UNKNOWN = 13
    POWER_SAVE_LOW_POWER = 14
    POWER_SAVE_STANDBY = 15
    POWER_CYCLE = 16
    POWER_SAVE_WARNING = 17
    PAUSED = 18
    NOT_READY = 19
    NOT_CONFIGURED = 20
    QUIESCED = 21


class Capability(Code):
    """What an adapter can do."""

    TEAMING = 3
    FAULT_TOLERANCE_TEAM = 4
    ADAPTIVE_LOAD_BALANCING_TEAM = 5
    GIGABIT_LINK_AGGREGATION_TEAM = 8
    STATIC_LINK_AGGREGATION_TEAM = 9
    DYNAMIC_LINK_AGGREGATION_TEAM = 10
    SWITCH_FAULT_TOLERANCE_TEAM = 12
    SPEED_10_MEGABIT = 32
    SPEED_100_MEGABIT = 33
    SPEED_1_GIGABIT = 34
    SPEED_10_GIGABIT = 35
    TEAMING_WITH_OTHER_MAKERS = 36
    VLAN = 37
    PRIORITY_TAGGING = 39
    BOOT_AGENT = 41
    WAKE_ON_LAN = 43
    DIAGNOSTICS = 44
    SERVER_ADAPTER = 46
    SPEEDS_REPORTED = 47
    POWER_MANAGEMENT = 50
    CABLE_TEST = 52
    FIBRE_MEDIUM = 53
    TCP_SEGMENTATION_OFFLOAD = 54
    CHECKSUM_OFFLOAD = 55
    JUMBO_FRAMES = 56
    ADAPTER_IDENTIFICATION = 57
    RECEIVE_SIDE_SCALING = 60
    SCALABLE_NETWORKING = 61
    DIRECT_CACHE_ACCESS = 62
    VIRTUAL_MACHINE_QUEUES = 63
    LINK_SECURITY = 64
    ISCSI_BOOT = 65
    DATA_CENTRE_BRIDGING = 66
    VIRTUAL_MACHINE_LOAD_BALANCING_TEAM = 68


class Profile(Code):
    """A performance profile. Other numbers are the provider's own tunings."""

    NOT_SUPPORTED = 0
    CUSTOM = 1
    HYPER_V = 5


class RssProblem(_Mask):
    """What a change of a team's members does to receive side scaling."""

    TEAM_GAINS_RSS = 0x1
    DISABLED_ADAPTER_ADDED = 0x2
    INCAPABLE_ADAPTER_ADDED = 0x4
    OTHER_MAKER_ADDED = 0x8
    ADDED_TO_INCAPABLE_TEAM = 0x10
    ADDED_TO_MIXED_TEAM = 0x20


class TeamMode(Code):
    """How a team shares its traffic."""

    FAULT_TOLERANCE = 0
    ADAPTIVE_LOAD_BALANCING = 1
    STATIC_LINK_AGGREGATION = 2
    GIGABIT_LINK_AGGREGATION = 3
    DYNAMIC_LINK_AGGREGATION = 4
    SWITCH_FAULT_TOLERANCE = 5
    VIRTUAL_MACHINE_LOAD_BALANCING = 6
    UNKNOWN = 255

    @property
    def has_switch_test(self) -> bool:
        """Whether it needs the switch's cooperation, which can be tested."""
        return _quillet.has_switch_test(self)


class MemberRole(Code):
    """What a member is to its team."""

    NOT_ASSIGNED = 0
    PRIMARY = 1
    SECONDARY = 2


class MemberStatus(Code):
    """Whether a member carries its team's traffic."""

    UNKNOWN = 0
    ACTIVE = 1
    INACTIVE = 3
    MISSING = 4


class TeamCheck(Code):
    """What the check of a new team looks at."""

    NAME = 0
    MEMBERS = 1
    NAME_AND_MEMBERS = 2


class TeamProblem(_Mask):
    """What stands in the way of a team."""

    TOO_MANY_MEMBERS = 0x1
    UNKNOWN_ADAPTER = 0x2
    MODE_NOT_SUPPORTED = 0x4
    NO_VLANS = 0x8
    NO_SERVER_ADAPTER = 0x10
    ALREADY_TEAMED = 0x20
    CARRIES_VLANS = 0x40
    NAME_TAKEN = 0x80
    NO_NAME = 0x100
    MORE_THAN_TWO = 0x200
    NO_SUCH_MODE = 0x400
    SETTINGS_DIFFER = 0x800
    NO_SHARED_SPEED = 0x4000
    MIXED_SPEEDS = 0x8000


class AutoDetectStatus(Code):
    """How far the search for the best mode of a team is."""

    NOT_STARTED = 0
    RUNNING = 1
    COMPLETED = 2
    FAILED = 3


class SwitchCommand(Code):
    """What to do about the test of a team's switch."""

    START = 0
    QUERY = 1
    STOP = 2


class SwitchTestStatus(Code):
    """How far a switch test has come."""

    NOT_STARTED = 0
    RUNNING = 1
    PASSED = 2
    FAILED = 3
    STOPPED = 4


class VlanProblem(_Mask):
    """What stands in the way of a VLAN."""

    UNTAGGED_ALONE = 0x8
    ID_TAKEN = 0x10
    NAME_TAKEN = 0x20
    TOO_MANY = 0x40
    ID_OUT_OF_RANGE = 0x100


class VlanSupport(Code):
    """Whether VLANs may be put on an adapter or a team."""

    SUPPORTED = 0
    TEAM_MEMBER = 1
    NONE = 2


class TestState(Code):
    """What a diagnostic test is doing. Others may come."""

    __test__ = False  # pytest would take it for a test

    FAILED = 3
    IN_PROGRESS = 4
    STOPPED = 5


class RunEnd(Code):
    """How following a diagnostic test ended."""

    ENDED = 0
    NO_RESULT = 1
    NOTHING_SEEN = 2


class IscsiStatus(Code):
    """The part that an adapter plays in booting from iSCSI."""

    NOT_BOOT_PORT = 0
    PRIMARY_PORT = 1
    SECONDARY_PORT = 2


class FlashStage(Code):
    """Where writing the flash memory stands."""

    VERIFYING = 0
    WRITING = 1
    READING_BACK = 2
