"""Wired network adapters that a WMI provider manages: settings, teams, VLANs, tests, boot images.

>>> with simulate() as machine:
...     for team in machine.teams:
...         print(team.mode.text)
adaptive load balancing
"""

from ._errors import Error, NotStarted, PartialError
from ._link_security import LinkSecurity
from ._machine import Changes, FetchOnce, Machine, connect
from ._quillet import MOST_TEAM_MEMBERS, Secret
from ._records import SettingValue
from ._simulated import SimulatedMachine, simulate
from ._values import (
    Adapter, AdapterHardware, AdapterOverview, AdapterState, Authentication, AuthenticationMethods,
    BestTeamMode, BootAgent, Choice, ChoiceValue, Diagnostic, FlashContents, FlashImage, FlashOutcome,
    FlashVerdict, IscsiAdapter, IscsiSupport, JumboFrameVerdict, ManualKeys, MasterKey, NdisVersion, NumberValue,
    OfferedProfile, OfferedTeamMode, PacContents, PacFile, PowerOptions, SavedCredentials, SecureAssociation, SelectionValue,
    Setting, SettingVerdict, SliderValue, SwitchTest, SwitchTrouble, Team, TeamMember, TeamedPort, TestMessage, TestResult,
    TextListValue, TextValue, Vlan, WakeOptions,
)
from ._words import (
    AdapterCondition, AutoDetectStatus, Availability, Capability, Code, Duplex, FlashStage, HardwareStatus,
    IscsiStatus, LinkSecurityStatus, LinkSpeed, MemberRole, MemberStatus, Profile, RssProblem, RunEnd,
    StatusInfo, SwitchCommand, SwitchTestStatus, TeamCheck, TeamMode, TeamProblem, TestState, VlanProblem, VlanSupport,
    describe_result, explain_result, unknown_bits, unknown_number,
)

__all__ = [
    "Adapter", "AdapterCondition", "AdapterHardware", "AdapterOverview", "AdapterState", "Authentication",
    "AuthenticationMethods", "AutoDetectStatus", "Availability", "BestTeamMode", "BootAgent", "Capability", "Changes",
    "Choice", "ChoiceValue", "Code", "Diagnostic", "Duplex", "Error", "FetchOnce", "FlashContents", "FlashImage",
    "FlashOutcome", "FlashStage", "FlashVerdict", "HardwareStatus", "IscsiAdapter", "IscsiStatus", "IscsiSupport",
    "JumboFrameVerdict", "LinkSecurity", "LinkSecurityStatus", "LinkSpeed", "MOST_TEAM_MEMBERS", "Machine",
    "ManualKeys", "MasterKey", "MemberRole", "MemberStatus", "NdisVersion", "NotStarted", "NumberValue",
    "OfferedProfile", "OfferedTeamMode", "PacContents", "PacFile", "PartialError", "PowerOptions", "Profile",
    "RssProblem", "RunEnd", "SavedCredentials", "Secret", "SecureAssociation", "SelectionValue", "Setting",
    "SettingValue", "SettingVerdict", "SimulatedMachine", "SliderValue", "StatusInfo", "SwitchCommand", "SwitchTest",
    "SwitchTestStatus", "SwitchTrouble", "Team", "TeamCheck", "TeamMember", "TeamMode", "TeamProblem", "TeamedPort",
    "TestMessage", "TestResult", "TestState", "TextListValue", "TextValue", "Vlan", "VlanProblem", "VlanSupport",
    "WakeOptions", "connect", "describe_result", "explain_result", "simulate", "unknown_bits", "unknown_number",
]
