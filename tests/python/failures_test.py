"""Failures, odd answers, bad arguments."""

import pickle
from pathlib import Path
from typing import Callable

import pytest

import quillet
from quillet.testing import SimulatedMachine


def test_a_refusal_names_code_operation_and_object(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[0]
    simulated_machine.fail("ExecMethod", method="IdentifyAdapter", code=0x80041003)
    with pytest.raises(quillet.Error) as caught:
        adapter.identify(5)
    error = caught.value
    assert (error.code, error.operation, error.about) == (0x80041003, "IdentifyAdapter", adapter.path)
    assert str(error) == f"IdentifyAdapter {adapter.path}: access is denied: 0x80041003 WBEM_E_ACCESS_DENIED"
    assert simulated_machine.hits == 1
    copied = pickle.loads(pickle.dumps(error))
    assert (copied.code, str(copied)) == (error.code, str(error))


def test_a_list_that_breaks_off_has_what_was_read(simulated_machine: SimulatedMachine) -> None:
    simulated_machine.fail("Next", nth=3, code=0x80041001)
    with pytest.raises(quillet.PartialError) as caught:
        simulated_machine.adapters
    assert len(caught.value.read) == 2
    assert caught.value.read[0].read_state().speed is quillet.LinkSpeed.GIGABIT_10


def test_a_machine_that_refuses_to_connect_is_an_error() -> None:
    with quillet.simulate() as machine:
        machine.fail("ConnectServer", code=0x80041003)
        with pytest.raises(quillet.Error) as caught:
            machine.reconnect()
        assert caught.value.operation == "InitQuillet"


@pytest.mark.parametrize("effect", ["NullObject", "NullValue", "WrongType", "EmptyArray", "HugeString", "Absent"])
def test_odd_answers_end_in_an_answer_or_an_error(simulated_machine: SimulatedMachine, effect: str) -> None:
    operation = "GetObject" if effect == "NullObject" else "Get"
    adapter = simulated_machine.adapters[0]
    simulated_machine.fail(operation, effect=effect, repeat=True)
    reads: list[Callable[[], object]] = [
        adapter.read_state, adapter.read_hardware, lambda: adapter.settings, lambda: simulated_machine.teams]
    for read in reads:
        try:
            read()
        except quillet.Error as error:
            assert error.operation
    assert simulated_machine.hits


def test_texts_that_are_none_for_the_provider(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    with simulated_machine.changes():
        with pytest.raises(ValueError, match="NUL"):
            team.add_vlan(100, "La\0bor")
        odd = team.add_vlan(101, "\U0001f600 \ud800")
    assert odd.name.startswith("\U0001f600")
    assert odd.name.encode()  # what is no character was replaced on its way


def test_arguments_of_another_kind_are_refused(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    adapter = simulated_machine.adapters[0]
    wrong: list[tuple[Callable[[], object], str]] = [
        (lambda: team.add_vlan("100"), "int is needed, not str"),  # type: ignore[arg-type]
        (lambda: team.add_vlan(100, None), "str is needed, not NoneType"),  # type: ignore[arg-type]
        (lambda: adapter.identify(2.5), "int is needed, not float"),  # type: ignore[arg-type]
        (lambda: adapter.boot_agent.read_images("text"), "bytes is needed, not str"),  # type: ignore[arg-type]
        (lambda: adapter.boot_agent.verify(b"", "PXE"), "list of str is needed, not str"),
        (lambda: adapter.boot_agent.verify(b"", [1]), "not a list of something else"),  # type: ignore[list-item]
        (lambda: adapter.set_wake(5), "WakeOptions is needed, not int"),  # type: ignore[arg-type]
        (lambda: adapter.set_power(quillet.PowerOptions(mode="x")), "PowerOptions.mode: int is needed"),  # type: ignore[arg-type]
        (lambda: team.modify(mode="alb"), "TeamMode is needed, not str"),  # type: ignore[arg-type]
        (lambda: team.check_vlans([1]), r"list of \(int, str\) is needed"),  # type: ignore[list-item]
        (lambda: team.set_members(["path"]), "an Adapter or a TeamMember is needed, not str"),  # type: ignore[list-item]
        (lambda: adapter.run(5), "a Diagnostic or its name is needed, not int"),  # type: ignore[arg-type]
        (lambda: adapter.setting(5), "a keyword is a str, not int"),  # type: ignore[arg-type]
    ]
    for attempt, words in wrong:
        with pytest.raises(TypeError, match=words):
            attempt()
    for outside in (1 << 31, -(1 << 31) - 1, 1 << 70, 10**5000):
        with pytest.raises(ValueError, match="out of range"):
            team.add_vlan(outside)
    for delay in (-1.0, float("nan")):
        with pytest.raises(ValueError):
            simulated_machine.fail("Next", delay=delay)
    with pytest.raises(ValueError, match="out of range"):
        list(adapter.run("Link test", interval=-1))
    with pytest.raises(ValueError, match="surrogates"):
        quillet.simulate(text="\ud800")
    with pytest.raises(ValueError, match="is no call"):
        simulated_machine.fail("NoSuchCall")
    with pytest.raises(ValueError, match="is no effect"):
        simulated_machine.fail("Next", effect="NoSuchEffect")


def test_a_machine_file_that_is_none(tmp_path: Path) -> None:
    file = tmp_path / "machine.mof"
    file.write_bytes(b"instance of \xff {")
    with pytest.raises(ValueError, match="machine.mof"):
        quillet.simulate(file)
    with pytest.raises(ValueError, match="cannot be read"):
        quillet.simulate(tmp_path / "none.mof")
    with pytest.raises(ValueError, match="in a file or in a text"):
        quillet.simulate(file, text="")
