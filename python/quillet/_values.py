"""Every class that the extension makes values of, by its name."""

from ._adapters import Adapter, AdapterOverview
from ._boot import BootAgent, IscsiAdapter
from ._diagnostics import Diagnostic, TestMessage, TestResult
from ._records import (
    AdapterHardware,
    AdapterState,
    Authentication,
    AuthenticationMethods,
    BestTeamMode,
    Choice,
    ChoiceValue,
    FlashContents,
    FlashImage,
    FlashOutcome,
    FlashVerdict,
    IscsiSupport,
    JumboFrameVerdict,
    ManualKeys,
    MasterKey,
    NdisVersion,
    NewTeam,
    NumberValue,
    OfferedProfile,
    OfferedTeamMode,
    PacContents,
    PacFile,
    PowerOptions,
    SavedCredentials,
    SecureAssociation,
    SelectionValue,
    SettingVerdict,
    SliderValue,
    SwitchTest,
    SwitchTrouble,
    TeamedPort,
    TextListValue,
    TextValue,
    WakeOptions,
)
from ._settings import Setting
from ._teams import Team, TeamMember
from ._vlans import Vlan

__all__ = [
    "Adapter", "AdapterHardware", "AdapterOverview", "AdapterState", "Authentication", "AuthenticationMethods",
    "BestTeamMode", "BootAgent", "Choice", "ChoiceValue", "Diagnostic", "FlashContents", "FlashImage", "FlashOutcome",
    "FlashVerdict", "IscsiAdapter", "IscsiSupport", "JumboFrameVerdict", "ManualKeys", "MasterKey", "NdisVersion", "NewTeam", "NumberValue",
    "OfferedProfile", "OfferedTeamMode", "PacContents", "PacFile", "PowerOptions", "SavedCredentials",
    "SecureAssociation", "SelectionValue", "Setting", "SettingVerdict", "SliderValue", "SwitchTest", "SwitchTrouble", "Team",
    "TeamMember", "TeamedPort", "TestMessage", "TestResult", "TextListValue", "TextValue", "Vlan", "WakeOptions",
]
