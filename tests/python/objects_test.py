"""Adapters, settings, teams, VLANs, changes."""

import copy
import pickle

import pytest

import quillet
from quillet.testing import SimulatedMachine


def test_adapters_are_values_with_methods(simulated_machine: SimulatedMachine) -> None:
    first, *others = simulated_machine.adapters
    assert len(others) == 9
    assert first == simulated_machine.adapters[0]
    assert first != others[0]
    assert len({first, simulated_machine.adapters[0], others[0]}) == 2
    assert repr(first).startswith("Adapter(path=")
    assert first.slot == "" and first.read().slot == "Slot 2"
    assert others[3].name == "Zorel Quad Port Gigabit Server Adapter #3 (Zürich)"


def test_state_and_hardware(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[0]
    state = adapter.read_state()
    assert state.speed is quillet.LinkSpeed.GIGABIT_10
    assert state.duplex is quillet.Duplex.FULL
    assert quillet.AdapterCondition.ENABLED in state.conditions
    assert quillet.Capability.DIAGNOSTICS in adapter.capabilities
    assert adapter.read_hardware().mac_address == "02-00-5E-00-10-01"
    simulated_machine.set_hardware(adapter.device_id, quillet.HardwareStatus.CABLE_REMOVED)
    assert adapter.read_state().hardware is quillet.HardwareStatus.CABLE_REMOVED


def test_overview_fetches_each_adapter_once(simulated_machine: SimulatedMachine) -> None:
    for threads in (1, 4):
        overview = simulated_machine.overview(threads=threads)
        assert [row.adapter.name for row in overview] == [a.name for a in simulated_machine.adapters]
        assert overview[0].failure is None
        assert overview[0].adapter.read_state() == overview[0].state
    assert [row.team_name for row in overview if row.team_path] == ["TEAM : Zürich"] * 2


def test_overview_tells_why_something_is_missing(simulated_machine: SimulatedMachine) -> None:
    simulated_machine.fail("GetObject", target=simulated_machine.adapters[2].path, repeat=True, code=0x80041003)
    row = simulated_machine.overview()[2]
    assert row.state is None
    assert row.failure == "access is denied: 0x80041003 WBEM_E_ACCESS_DENIED"


def test_a_number_without_a_name_is_kept() -> None:
    unknown = quillet.LinkSpeed(77)
    assert unknown == 77
    assert unknown.name == "UNKNOWN_77"
    assert unknown.text == "code 77 (unknown)"
    assert pickle.loads(pickle.dumps(unknown)) == unknown
    assert quillet.TeamProblem(1 << 40) | quillet.TeamProblem.NO_NAME == (1 << 40) | 0x100


def test_settings_are_written_in_changes(simulated_machine: SimulatedMachine) -> None:
    setting = simulated_machine.adapters[0].setting("*jumbopacket")
    assert isinstance(setting.value, quillet.ChoiceValue)
    assert setting.current == 9014
    with simulated_machine.changes() as change:
        setting.write(4088)
    assert not change.restart_needed
    again = simulated_machine.adapters[0].setting("*JumboPacket")
    assert (again.current, again.current_text) == (4088, "4088")
    assert again == setting
    with pytest.raises(KeyError, match="NoSuch"):
        simulated_machine.adapters[0].setting("NoSuch")


def test_a_setting_that_could_not_be_written_stays(simulated_machine: SimulatedMachine) -> None:
    setting = simulated_machine.adapters[0].setting("*JumboPacket")
    with pytest.raises(quillet.Error):
        setting.write(4088)  # no changes: a strict machine refuses it
    assert setting.current == 9014
    with pytest.raises(TypeError, match="takes a number"):
        setting.write("4088")
    assert setting.current == 9014


def test_every_kind_of_setting_goes_to_the_provider_and_back(simulated_machine: SimulatedMachine) -> None:
    kinds = set()
    for adapter in simulated_machine.adapters:
        for setting in adapter.settings:
            if setting.writable:
                kinds.add(type(setting.value).__name__)
                with simulated_machine.changes():
                    setting.write()
                assert adapter.setting(setting.keyword) == setting
    assert kinds == {"NumberValue", "ChoiceValue", "SliderValue", "TextValue", "SelectionValue", "TextListValue"}


def test_teams_and_members(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    assert (team.name, team.mode) == ("TEAM : Zürich", quillet.TeamMode.ADAPTIVE_LOAD_BALANCING)
    primary, other = team.members
    assert (primary.role, other.role) == (quillet.MemberRole.PRIMARY, quillet.MemberRole.SECONDARY)
    assert primary.read_adapter().path == primary.path
    assert team.mac_address == "" and team.read().mac_address != ""
    with simulated_machine.changes():
        other.set_role(quillet.MemberRole.PRIMARY)
        team.modify(name="Renamed")
    assert [member.role for member in team.members if member == other or member.path == other.path] == [
        quillet.MemberRole.PRIMARY]
    assert "Renamed" in team.read().name


def test_a_team_is_made_and_removed(simulated_machine: SimulatedMachine) -> None:
    members = [adapter for adapter in simulated_machine.adapters if "Quad" in adapter.name][2:4]
    assert simulated_machine.check_new_team("Lab", members) == 0
    assert simulated_machine.validate_new_team("Lab", members) == 0
    with simulated_machine.changes():
        made = simulated_machine.create_team("Lab", members, quillet.TeamMode.FAULT_TOLERANCE)
    assert {member.path for member in made.members} == {member.path for member in members}
    assert made.mode is quillet.TeamMode.FAULT_TOLERANCE
    with simulated_machine.changes():
        made.remove()
    assert len(simulated_machine.teams) == 1
    problems = simulated_machine.check_new_team("TEAM : Zürich", members)
    assert problems == quillet.TeamProblem.NAME_TAKEN
    assert problems.texts == ["a team with this name exists"]


def test_vlans(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    before = team.vlans
    with simulated_machine.changes():
        made = team.add_vlan(100, "Lab")
    assert (made.number, made.name) == (100, "Lab")
    with simulated_machine.changes():
        made.modify(101, "Labor")
    assert made.read().number == 101
    assert team.check_vlan(101, "Other") == quillet.VlanProblem.ID_TAKEN
    with simulated_machine.changes():
        made.remove()
    assert team.vlans == before
    member = team.members[0].read_adapter()
    assert member.vlan_support is quillet.VlanSupport.TEAM_MEMBER


def test_changes_that_an_exception_leaves_are_closed(simulated_machine: SimulatedMachine) -> None:
    with pytest.raises(ZeroDivisionError):
        with simulated_machine.changes():
            simulated_machine.teams[0].add_vlan(100, "Lab")
            raise ZeroDivisionError
    assert any("Apply(" in line for line in simulated_machine.calls)
    assert 100 in [vlan.number for vlan in simulated_machine.teams[0].vlans]
    with simulated_machine.changes() as change:
        pass
    assert not change.restart_needed


def test_changes_within_changes_are_refused(simulated_machine: SimulatedMachine) -> None:
    with simulated_machine.changes():
        with pytest.raises(ValueError, match="under way"):
            with simulated_machine.changes():
                pass


def test_closing_closes_changes_too(simulated_machine: SimulatedMachine) -> None:
    other = simulated_machine.reconnect()
    with pytest.raises(ValueError, match="closed"):
        with other.changes():
            other.close()
    assert any("Apply(" in line for line in simulated_machine.calls)
    with simulated_machine.changes():
        pass


def test_power_and_wake(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[2]
    wake = adapter.read_wake()
    assert wake.on_magic_packet is not None
    with simulated_machine.changes():
        adapter.set_wake(quillet.WakeOptions(on_magic_packet=not wake.on_magic_packet))
    assert adapter.read_wake().on_magic_packet is not wake.on_magic_packet
    with simulated_machine.changes():
        adapter.set_power(adapter.read_power())


def test_boot_agent_and_flash(simulated_machine: SimulatedMachine) -> None:
    agent = simulated_machine.adapters[0].boot_agent
    image = agent.read_flash()
    assert isinstance(image, bytes) and image
    contents = agent.read_images(image)
    assert contents.verdict.is_good
    types = [found.type for found in contents.images]
    assert agent.verify(image, types).is_good
    assert not agent.verify(b"nonsense", types).is_good
    stages: list[quillet.FlashStage] = []
    with simulated_machine.changes():
        outcome = agent.program(bytearray(image), types, stages.append)
    assert outcome.written and outcome.verdict.is_good
    assert stages == [quillet.FlashStage.VERIFYING, quillet.FlashStage.WRITING, quillet.FlashStage.READING_BACK]


def test_flash_is_not_written_when_progress_raises(simulated_machine: SimulatedMachine) -> None:
    agent = simulated_machine.adapters[0].boot_agent
    image = agent.read_flash()
    types = [found.type for found in agent.read_images(image).images]

    def refuse(_: quillet.FlashStage) -> None:
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        with simulated_machine.changes():
            agent.program(image, types, refuse)
    assert not any("ProgramFlashEx" in line for line in simulated_machine.calls)


def test_a_copy_is_a_value_alone(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[0]
    for other in (pickle.loads(pickle.dumps(adapter)), copy.deepcopy(adapter)):
        assert other == adapter
        with pytest.raises(ValueError, match="comes from no machine"):
            other.read_state()


def test_a_closed_machine_answers_nothing(simulated_machine: SimulatedMachine) -> None:
    other = simulated_machine.reconnect()
    adapter = other.adapters[0]
    assert other.is_open
    other.close()
    other.close()
    assert not other.is_open
    for ask in (lambda: other.adapters, adapter.read_state, lambda: other.changes().__enter__()):
        with pytest.raises(ValueError, match="closed"):
            ask()
    assert simulated_machine.adapters


def test_machines_do_not_share_what_is_changed() -> None:
    with quillet.simulate() as one, quillet.simulate() as two:
        with one.changes():
            one.teams[0].remove()
        assert (len(one.teams), len(two.teams)) == (0, 1)
        again = quillet.simulate(text=one.save())
        assert (len(again.teams), len(again.adapters)) == (0, 10)
