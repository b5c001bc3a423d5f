"""Everything that the client layer has is in the package, or it is said here why not."""

import pathlib
import re

import pytest

import quillet
from quillet import _quillet

HEADERS = pathlib.Path(__file__).parents[2] / "include" / "quillet" / "client"

# What a header has, by its name there -> what Python has for it, after "quillet.". Several for one that has several forms.
OFFERED: dict[str, dict[str, str]] = {
    "Session": {
        "Warnings": "Machine.warnings Adapter.warnings",
        "Adapters": "Machine.adapters",
        "AdapterOverviews": "Machine.overview",
        "ObjectIdOf": "Adapter.object_id",
        "AdapterByObjectId": "Machine.find_adapter",
        "ReadAdapter": "Adapter.read TeamMember.read_adapter",
        "ReadState": "Adapter.read_state",
        "ReadConditions": "Adapter.read_conditions",
        "Capabilities": "Adapter.capabilities",
        "ReadHardware": "Adapter.read_hardware",
        "TeamedPorts": "Adapter.read_teamed_ports",
        "Identify": "Adapter.identify",
        "HbaPath": "Adapter.read_hba_path",
        "ReadNdisVersion": "Adapter.read_ndis_version",
        "Settings": "Adapter.settings Team.settings Vlan.settings BootAgent.settings",
        "QueueSettings": "Adapter.queue_settings",
        "SettingsOfClass": "Machine.settings_of_class",
        "SpeedDuplex": "Adapter.read_speed_duplex",
        "Refresh": "Adapter.refresh",
        "Write": "Setting.write",
        "ValidateSetting": "Adapter.check_setting Vlan.check_setting",
        "CheckJumboFrames": "Adapter.check_jumbo_frames",
        "CheckRss": "Team.check_rss",
        "Profiles": "Adapter.profiles",
        "CommonProfiles": "Machine.common_profiles",
        "ReplaceHyperVProfile": "Machine.replace_hyper_v_profile",
        "ReadPower": "Adapter.read_power",
        "ReadWake": "Adapter.read_wake",
        "SetPower": "Adapter.set_power",
        "SetWake": "Adapter.set_wake",
        "ReapplyPower": "Adapter.reapply_power",
        "Teams": "Machine.teams",
        "ReadTeam": "Team.read",
        "ReadStatus": "Team.read_status Vlan.read_status",
        "TeamByObjectId": "Machine.find_team",
        "Members": "Team.members",
        "RefreshMembers": "Team.refresh_members",
        "IsPrimary": "Adapter.is_primary",
        "EnabledMembers": "Team.enabled_members",
        "AreTeamed": "Machine.are_teamed",
        "TeamModes": "Adapter.team_modes",
        "CommonTeamModes": "Machine.common_team_modes",
        "FindBestTeamMode": "Team.find_best_mode",
        "TestSwitch": "Team.test_switch",
        "TeamNamePrefix": "Machine.team_name_prefix",
        "CheckNewTeam": "Machine.check_new_team",
        "ValidateTeamName": "Machine.validate_new_team Team.validate",
        "ValidateTeamMode": "Machine.validate_new_team Team.validate",
        "ValidateNewMembers": "Machine.validate_new_team",
        "ValidateMemberSettings": "Machine.validate_new_team",
        "ValidateAddedMembers": "Team.check_members",
        "CreateTeam": "Machine.create_team",
        "SetMembers": "Team.set_members",
        "AddMember": "Team.add_member",
        "RemoveMember": "Team.remove_member",
        "ModifyTeam": "Team.modify",
        "SetRole": "TeamMember.set_role",
        "RemoveTeam": "Team.remove",
        "Vlans": "Adapter.vlans Team.vlans",
        "ReadVlan": "Vlan.read",
        "VlanByObjectId": "Machine.find_vlan",
        "SupportsVlans": "Adapter.vlan_support Team.vlan_support",
        "TaggedVlans": "Adapter.tagged_vlans Team.tagged_vlans",
        "HasVlan": "Adapter.has_vlan Team.has_vlan",
        "CheckVlan": "Adapter.check_vlan Team.check_vlan",
        "CheckVlans": "Adapter.check_vlans Team.check_vlans",
        "CheckVlanChange": "Adapter.check_vlan_change Team.check_vlan_change",
        "AddVlan": "Adapter.add_vlan Team.add_vlan",
        "ModifyVlan": "Vlan.modify",
        "RemoveVlan": "Vlan.remove",
        "Diagnostics": "Adapter.diagnostics",
        "StartDiagnostic": "Adapter.start",
        "StopDiagnostic": "Adapter.stop",
        "ReadResult": "Diagnostic.read_result",
        "ReadPackageResults": "Diagnostic.read_package",
        "RunDiagnostic": "Adapter.run",
        "ReadBootAgent": "Adapter.boot_agent",
        "ReadFlash": "BootAgent.read_flash",
        "ReadImageFile": "BootAgent.read_images",
        "VerifyImages": "BootAgent.verify",
        "WriteFlash": "BootAgent.write",
        "ProgramFlash": "BootAgent.program",
        "IscsiAdapters": "Machine.iscsi_adapters",
        "SetIscsiStatus": "IscsiAdapter.set_status",
        "ReadIscsiSupport": "Adapter.read_iscsi_support",
        "ReadManualKeys": "LinkSecurity.read_manual_keys",
        "SetManualKeys": "LinkSecurity.set_manual_keys",
        "ReadAuthentication": "LinkSecurity.read_authentication",
        "SetAuthentication": "LinkSecurity.set_authentication",
        "ReadAuthenticationMethods": "LinkSecurity.read_methods",
        "ImportPac": "LinkSecurity.import_pac",
        "DeletePac": "LinkSecurity.delete_pac",
        "ReadPac": "LinkSecurity.read_pac",
        "ReadMasterKey": "LinkSecurity.read_master_key",
        "SetMasterKey": "LinkSecurity.set_master_key",
        "ReadSavedCredentials": "LinkSecurity.read_saved_credentials",
        "ReadSecurityLog": "LinkSecurity.read_log",
    },
    "Transaction": {"Apply": "Machine.changes Changes.restart_needed"},
    "FetchOnce": {},
    "ProviderTexts": {"Of": "Machine.text_of"},
    "Error": {"Code": "Error.code", "Operation": "Error.operation", "About": "Error.about"},
    "PartialError": {"Read": "PartialError.read"},
    "Secret": {"Reveal": "Secret.reveal", "Clear": "Secret.clear", "IsEmpty": "Secret.__bool__"},
    "TestResult": {"Passed": "TestResult.passed"},
    "FlashVerdict": {"IsGood": "FlashVerdict.is_good", "IsReadable": "FlashVerdict.is_readable"},
    "": {
        "FindSetting": "Adapter.setting Team.setting",
        "CurrentText": "Setting.current_text",
        "CurrentNumber": "Setting.current_number",
        "IsJumboFrameSetting": "Setting.is_jumbo_frame",
        "Text": "LinkSpeed.text AdapterCondition.texts",
        "Texts": "TeamProblem.texts VlanProblem.texts RssProblem.texts",
        "ImageTypes": "BootAgent.image_types",
        "HasSwitchTest": "TeamMode.has_switch_test",
        "UnknownNumber": "unknown_number",
        "UnknownBits": "unknown_bits",
        "DescribeResult": "describe_result",
        "ExplainResult": "explain_result",
    },
}
NOT_OFFERED = {
    "ComUsage": "the extension keeps COM usable as long as there is a machine",
    "Flags": "a mask is an enum.IntFlag",
    "Id": "an object is named by what was read of it, a path is its attribute",
    "ResultCategory": "Python has no categories of errors: Error.code is compared",
    "ToUtf8": "a str is no array of bytes",
    "FromUtf8": "a str is no array of bytes",
}
# Records and enumerations that are not called as there.
TYPES_CALLED_OTHERWISE = {
    "SessionOptions": "the arguments of connect()",
    "Session": "Machine",
    "Transaction": "Changes",
    "Followup": "Changes.restart_needed",
    "ProviderTexts": "Machine.text_of",
    "ValueSource": "Machine.text_of knows it",
    "NewTeam": "the arguments of create_team()",
    "NewVlan": "the arguments of add_vlan()",
    "Reload": "the argument reload",
    "Following": "the arguments of run()",
    "FollowedRun": "run() yields its results",
    "ProviderBit": "int",
    "State": "nobody's business",
}


def code_of(header: pathlib.Path) -> str:
    text = header.read_text(encoding="utf-8")
    return re.sub(r"//.*|\"[^\"\n]*\"|^#.*", "", text, flags=re.MULTILINE)


def functions_of(code: str, owner: str) -> set[str]:
    """The functions that are declared here; not those that C++ itself calls."""
    names = re.findall(r"\b([A-Z]\w+)\((?=[^()]*(?:\([^()]*\)[^()]*)*\)\s*(?:const)?\s*(?:noexcept)?\s*[;{:])", code)
    return {name for name in names if name != owner}


def declared() -> dict[str, set[str]]:
    """Class -> its public functions; those without a class are under the empty name."""
    found: dict[str, set[str]] = {"": set()}
    for header in sorted(HEADERS.glob("*.h")):
        code = code_of(header)
        for match in re.finditer(r"^(?:class|struct)(?: \[\[\w+\]\])? (\w+)[^;{]*\{$(.*?)^\};", code, re.DOTALL | re.MULTILINE):
            body = match[2]
            if match[0].startswith("class"):
                body = body.split("public:", 1)[1].split("private:", 1)[0]
            if names := functions_of(body, match[1]):
                found[match[1]] = names
            code = code.replace(match[0], "")
        found[""] |= functions_of(code, "")
    return found


def resolve(name: str) -> object:
    thing: object = quillet
    for part in name.split("."):
        annotations = getattr(thing, "__annotations__", {})
        thing = annotations[part] if part in annotations else getattr(thing, part)
    return thing


def test_every_function_of_the_client_layer_is_offered_or_told_why_not() -> None:
    there = declared()
    assert len(there["Session"]) > 90
    for owner, names in there.items():
        if owner not in NOT_OFFERED:
            assert names - NOT_OFFERED.keys() == OFFERED[owner].keys(), owner
    assert not [owner for owner in OFFERED if owner and owner not in there and owner != "FetchOnce"]
    free = there[""] | there.keys() | {"ComUsage"}
    assert not [name for name in NOT_OFFERED if name not in free]


@pytest.mark.parametrize("name", sorted({name for names in OFFERED.values() for several in names.values() for name in several.split()}))
def test_what_is_said_to_be_offered_is_there(name: str) -> None:
    owner, _, attribute = name.rpartition(".")
    if name in ("Error.code", "Error.operation", "Error.about"):
        assert hasattr(quillet.Error("text", 1, "operation", "about"), attribute)
    elif name == "PartialError.read":
        assert quillet.PartialError("text", 1, "operation", "about", [7]).read == [7]
    elif name == "Changes.restart_needed":
        assert quillet.Changes(None).restart_needed is False  # type: ignore[arg-type]
    else:
        assert resolve(name) is not None, owner


def test_every_record_and_enumeration_has_a_class() -> None:
    names = set()
    for header in HEADERS.glob("*.h"):
        names |= set(re.findall(r"^(?:class|struct|enum class)(?: \[\[\w+\]\])? (\w+)[^;]*\{", code_of(header), re.MULTILINE))
    assert len(names) > 60
    missing = {name for name in names if not hasattr(quillet, name)}
    assert missing == (TYPES_CALLED_OTHERWISE.keys() | NOT_OFFERED.keys()) & names


def test_every_operation_is_called(called_operations: set[str], request: pytest.FixtureRequest) -> None:
    """After all other tests: somebody has called each operation of the extension."""
    folder = pathlib.Path(__file__).parent
    if {item.path for item in request.session.items} < set(folder.glob("*_test.py")) or request.config.option.keyword:
        pytest.skip("only some of the tests run")
    operations = {name for name in vars(_quillet.Session) if not name.startswith("_")}
    assert operations - called_operations == set()
