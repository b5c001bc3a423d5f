"""What else machines and adapters can be asked, and told."""

import pytest

import quillet
from quillet.testing import SimulatedMachine

PAC = r"""
instance of Zorel_PACFile {
    DeviceID = ""; FileName = "lab.pac"; PACFilePassword = "open-sesame-4711"; PACFileType = 5; strPACFileInfo = "lab";
    strPACFileAid = "A1B2"; strPACFileAidInfo = "the authority"; strPACFileIid = "somebody"; PACFileExpiryTime = 7; };
"""


def test_objects_are_found_by_their_identifiers(simulated_machine: SimulatedMachine) -> None:
    adapter, team = simulated_machine.adapters[0], simulated_machine.teams[0]
    vlan = team.vlans[0]
    assert simulated_machine.find_adapter(adapter.object_id.lower()) == adapter.read()
    assert simulated_machine.find_team(team.object_id).read_status() is quillet.StatusInfo.ENABLED
    assert simulated_machine.find_vlan(vlan.object_id).read_status() is quillet.StatusInfo.ENABLED
    for find in (simulated_machine.find_adapter, simulated_machine.find_team, simulated_machine.find_vlan):
        with pytest.raises(quillet.Error) as caught:
            find("{00000000-0000-0000-0000-000000000000}")
        assert "00000000-0000" in caught.value.about


def test_adapters_one_by_one(simulated_machine: SimulatedMachine) -> None:
    first, _, member, *_ = simulated_machine.adapters
    assert first.read_conditions() is quillet.AdapterCondition.ENABLED
    assert first.read_ndis_version() == quillet.NdisVersion(6, 20)
    assert first.read_hba_path() == "ScsiPort1"
    assert first.read_iscsi_support() == quillet.IscsiSupport(1, True, True, False)
    assert (simulated_machine.warnings, first.warnings) == (0, 0)
    assert not first.is_primary and member.is_primary
    assert [port.teamed for port in member.read_teamed_ports()] == [True, True]
    assert simulated_machine.are_teamed([first, member]) == [False, True]
    with simulated_machine.changes():
        first.reapply_power()
    first.identify(1)
    assert [call for call in simulated_machine.calls if "IdentifyAdapter" in call]
    rows = simulated_machine.overview([member])
    assert [row.role for row in rows] == [quillet.MemberRole.PRIMARY]
    assert rows[0].adapter.is_primary


def test_settings_by_class_and_again(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[0]
    speed = adapter.read_speed_duplex()
    assert speed is not None and (speed.keyword, speed.current_number) == ("*SpeedDuplex", 0)
    assert adapter.read_speed_duplex(standard_keyword=False) is None
    with simulated_machine.changes():
        adapter.setting("*SpeedDuplex").write(7)
    assert speed.current == 0 and adapter.refresh(speed).current == 7
    (same,) = simulated_machine.settings_of_class("Zorel_AdapterSettingEnum", adapter.object_id, "*JumboPacket")
    assert same == adapter.setting("*JumboPacket")
    assert same.is_jumbo_frame and not speed.is_jumbo_frame
    assert [setting.keyword for setting in adapter.queue_settings] == ["*VMQ", "*MaxVmqQueues"]
    assert "BootProtocols" in [setting.keyword for setting in adapter.boot_agent.settings]
    with pytest.raises(quillet.PartialError) as caught:
        simulated_machine.settings_of_class("Zorel_NoSuchClass", adapter.object_id)
    assert caught.value.code == 0x80041010 and caught.value.read == []


def test_checks_of_settings(simulated_machine: SimulatedMachine) -> None:
    first, _, member, *_ = simulated_machine.adapters
    assert first.check_jumbo_frames() == quillet.JumboFrameVerdict(False, True)
    assert member.check_jumbo_frames() == quillet.JumboFrameVerdict(True, True)
    assert first.check_setting("*JumboPacket", 1514) == quillet.SettingVerdict(False, 0)
    assert member.check_setting("*JumboPacket", 1514) == quillet.SettingVerdict(True, 0)
    vlan = simulated_machine.teams[0].vlans[1]
    assert vlan.check_setting("*JumboPacket", 1514) == 0 and vlan.check_setting("NoSuch", 1) != 0
    assert "VLANPriority" in [setting.keyword for setting in vlan.settings]


def test_profiles(simulated_machine: SimulatedMachine) -> None:
    pair = simulated_machine.adapters[:2]
    assert quillet.Profile.CUSTOM in [offered.profile for offered in simulated_machine.common_profiles(pair)]
    profiles = pair[0].profiles
    assert all(offered.description for offered in profiles)
    with simulated_machine.changes():
        pair[0].setting("PerformanceProfile").write(quillet.Profile.HYPER_V)
    simulated_machine.replace_hyper_v_profile(quillet.Profile(2))
    assert pair[0].setting("PerformanceProfile").current == 2


def test_teams_are_changed_and_checked(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    primary, other = team.members
    third = simulated_machine.adapters[4]
    assert (team.enabled_members, team.read_status()) == (2, quillet.StatusInfo.ENABLED)
    assert "*RSS" in [setting.keyword for setting in team.settings] and team.setting("*rss").keyword == "*RSS"
    assert team.check_members([third]) == 0 and team.check_rss([primary, other, third]) == 0
    assert team.validate(name="Other", mode=quillet.TeamMode.FAULT_TOLERANCE) == 0
    with simulated_machine.changes():
        team.add_member(third)
    assert third.path in [member.path for member in team.members]
    with simulated_machine.changes():
        team.remove_member(third)
        other.set_role(quillet.MemberRole.PRIMARY)
    assert [member.role for member in team.refresh_members([primary, other])] == [member.role for member in team.members]
    assert primary.role is quillet.MemberRole.PRIMARY  # a picture of its moment
    with simulated_machine.changes():
        team.set_members([primary])
    assert [member.path for member in team.members] == [primary.path]
    for check, problem in (quillet.TeamCheck.NAME, quillet.TeamProblem.NAME_TAKEN), (quillet.TeamCheck.MEMBERS, 0):
        found = simulated_machine.check_new_team(team.name, simulated_machine.adapters[7:9], check=check)
        assert found & quillet.TeamProblem.NAME_TAKEN == problem
    assert simulated_machine.team_name_prefix == "TEAM : "


def test_modes_and_the_switch(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    adapters = simulated_machine.adapters
    common = simulated_machine.common_team_modes(adapters[:2])
    assert quillet.TeamMode.FAULT_TOLERANCE in [offered.mode for offered in common]
    assert common == [offered for offered in adapters[0].team_modes if offered in adapters[1].team_modes]
    best = team.find_best_mode()
    assert (best.status, best.coverage) == (quillet.AutoDetectStatus.COMPLETED, 100)
    assert best.best.mode is quillet.TeamMode.DYNAMIC_LINK_AGGREGATION and best.best.mode.has_switch_test
    with pytest.raises(quillet.Error) as caught:
        team.test_switch()
    assert caught.value.code == 0x8004100C  # no such test in its mode
    with simulated_machine.changes():
        team.modify(mode=quillet.TeamMode.SWITCH_FAULT_TOLERANCE)
    assert team.test_switch(quillet.SwitchCommand.START).status is quillet.SwitchTestStatus.RUNNING
    assert team.test_switch(quillet.SwitchCommand.STOP).status is quillet.SwitchTestStatus.STOPPED
    team.test_switch(quillet.SwitchCommand.START)
    simulated_machine.advance(60)
    assert team.test_switch() == quillet.SwitchTest(quillet.SwitchTestStatus.PASSED, [])


def test_vlans_are_counted_and_checked(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    _, first, second = team.vlans
    assert team.tagged_vlans == 2
    assert team.has_vlan(12) and not team.has_vlan(13)
    assert team.check_vlans([(500, "One"), (501, "Two")]) == 0
    assert quillet.VlanProblem.ID_OUT_OF_RANGE in team.check_vlans([(500, "One"), (9999, "Two")])
    assert team.check_vlan_change(first, 13, "Other") == 0
    assert team.check_vlan_change(first, second.number, "Other") == quillet.VlanProblem.ID_TAKEN


def test_a_test_that_nobody_follows(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[0]
    diagnostic = next(test for test in adapter.diagnostics if test.name.startswith("Link test"))
    before = diagnostic.read_result()
    adapter.start(diagnostic)
    result = diagnostic.read_result()
    assert result is not None and result != before and result.state is quillet.TestState.IN_PROGRESS
    assert diagnostic.read_package(result) == []
    adapter.stop("Link test")
    result = diagnostic.read_result()
    assert result is not None and result.state is quillet.TestState.STOPPED


def test_writing_the_flash_by_hand(simulated_machine: SimulatedMachine) -> None:
    agent = simulated_machine.adapters[0].boot_agent
    image = agent.read_flash()
    types = [found.type for found in agent.read_images(image).images]
    with simulated_machine.changes():
        assert agent.write(memoryview(image), types).is_good
        verdict = agent.write(b"\0" * 5_000_000, types)
    assert not verdict.is_good and not verdict.is_readable
    assert agent.image_types == ["PXE", "iSCSI"]
    with pytest.raises(quillet.Error, match="E_FAIL"):
        agent.read_images(b"")


def test_iscsi(simulated_machine: SimulatedMachine) -> None:
    first, *others = simulated_machine.iscsi_adapters
    assert first.status is quillet.IscsiStatus.PRIMARY_PORT and others
    with simulated_machine.changes():
        assert first.set_status(quillet.IscsiStatus.SECONDARY_PORT) == 0
    assert simulated_machine.iscsi_adapters[0].status is quillet.IscsiStatus.SECONDARY_PORT


def test_pac_files() -> None:
    with quillet.simulate() as shipped:
        text = shipped.save()
    with quillet.simulate(text=text + PAC, strict=True) as machine:
        security = machine.adapters[3].link_security
        with machine.changes():
            with pytest.raises(quillet.Error) as caught:
                security.import_pac(quillet.PacFile("/media/lab.pac", quillet.Secret("wrong-0815"), True))
            assert caught.value.code == 0x80041003 and "wrong-0815" not in str(caught.value)
            security.import_pac(quillet.PacFile("/media/lab.pac", quillet.Secret("open-sesame-4711"), True), reload=True)
        assert security.read_pac("lab.pac") == quillet.PacContents(5, "lab", "A1B2", "the authority", "somebody", 7)
        with machine.changes():
            security.delete_pac("lab.pac")
        with pytest.raises(quillet.PartialError):
            security.read_pac("lab.pac")
        assert not [call for call in machine.calls if "4711" in call or "0815" in call]


def test_the_rest_of_link_security(simulated_machine: SimulatedMachine) -> None:
    security = simulated_machine.adapters[3].link_security
    with simulated_machine.changes():
        security.set_master_key(quillet.MasterKey(quillet.Secret("FFEEDDCCBBAA99887766554433221100"), True), reload=True)
    assert security.read_master_key().random_mac
    assert security.read_methods() == quillet.AuthenticationMethods(1, 1, 1, True)
    assert security.read_saved_credentials().user_name == "netadmin"
    assert security.read_log().startswith("InPktsOK")
    assert not [call for call in simulated_machine.calls if "FFEEDDCC" in call]


def test_texts_of_the_providers_own(simulated_machine: SimulatedMachine) -> None:
    assert simulated_machine.text_of(quillet.HardwareStatus.MISSING) == "Hardware Missing"
    assert simulated_machine.text_of(quillet.Capability(4711)) == ""
    assert simulated_machine.text_of(quillet.Duplex.FULL) == ""  # it has none for these


def test_what_is_read_in_one_scope_is_fetched_once(simulated_machine: SimulatedMachine) -> None:
    adapter, member = simulated_machine.adapters[0], simulated_machine.adapters[2]

    def fetches() -> int:
        count = sum("GetObject" in call for call in simulated_machine.calls)
        simulated_machine.forget_calls()
        return count

    fetches()
    with simulated_machine.fetch_once():
        with simulated_machine.fetch_once():  # changes nothing
            adapter.read_state()
        adapter.read_hardware()
        assert fetches() == 1
        with simulated_machine.changes():
            adapter.set_wake(adapter.read_wake())
        fetches()
        adapter.read_state()
        assert fetches() == 1  # a change ends the moment
    adapter.read_state()
    assert fetches() == 1
    outer, inner = simulated_machine.fetch_once(), simulated_machine.reconnect().fetch_once()
    outer.__enter__()
    inner.__enter__()
    outer.__exit__()  # in the wrong order: both have ended
    inner.__exit__()
    member.read_state()
    member.read_hardware()
    assert fetches() == 2
