"""Following tests, and threads beside each other."""

import sys
import threading
import time

import pytest

import quillet
from quillet.testing import SimulatedMachine


def test_a_test_is_followed_to_its_outcome(simulated_machine: SimulatedMachine) -> None:
    seen = []
    for result in simulated_machine.adapters[0].run("Link test"):
        seen.append(result)
        simulated_machine.advance(20)
    assert seen[0].state is quillet.TestState.IN_PROGRESS
    assert seen[-1].state is not quillet.TestState.IN_PROGRESS
    assert seen[-1].passed and not seen[0].passed


def test_leaving_stops_the_test_at_once(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[0]
    threads = threading.active_count()
    begin = time.monotonic()
    for result in adapter.run("Link test", interval=3600):
        assert result.state is quillet.TestState.IN_PROGRESS
        break
    del result
    assert time.monotonic() - begin < 60
    assert threading.active_count() == threads
    assert any("DiscontinueTest" in line for line in simulated_machine.calls)


def test_a_test_that_is_not_started(simulated_machine: SimulatedMachine) -> None:
    simulated_machine.fail("ExecMethod", method="RunTest", effect="Verdict", repeat=True)
    with pytest.raises(quillet.NotStarted, match="Link test"):
        for _ in simulated_machine.adapters[0].run("Link test", patience=0.1):
            pass
    assert simulated_machine.hits == 1


def test_a_failure_while_following_is_raised(simulated_machine: SimulatedMachine) -> None:
    with pytest.raises(quillet.Error) as caught:
        for _ in simulated_machine.adapters[0].run("Link test"):
            simulated_machine.fail("*", code=0x80041015, repeat=True)
    assert caught.value.code == 0x80041015


def test_names_that_do_not_tell_which(simulated_machine: SimulatedMachine) -> None:
    for name in ("No such test", ""):
        with pytest.raises(KeyError):
            simulated_machine.adapters[0].run(name)


def test_other_threads_run_while_the_provider_is_asked(simulated_machine: SimulatedMachine) -> None:
    simulated_machine.fail("GetObject", effect="Delay", delay=0.5, repeat=True)
    adapter = simulated_machine.adapters[0]
    asking = threading.Thread(target=adapter.read_state)
    begin = last = time.monotonic()
    longest = 0.0
    asking.start()
    while asking.is_alive():
        time.sleep(0.001)
        now = time.monotonic()
        longest, last = max(longest, now - last), now
    assert last - begin > 0.4
    assert longest < 0.4  # with the lock held it would be the delay


def test_many_threads_use_one_machine_while_it_is_closed(simulated_machine: SimulatedMachine) -> None:
    unexpected: list[BaseException] = []
    other = simulated_machine.reconnect()

    def ask() -> None:
        try:
            while True:
                other.overview()
        except ValueError:
            pass  # closed
        except BaseException as failure:
            unexpected.append(failure)

    threads = [threading.Thread(target=ask) for _ in range(4)]
    sys.setswitchinterval(1e-5)
    for thread in threads:
        thread.start()
    time.sleep(0.3)
    other.close()
    for thread in threads:
        thread.join(60)
        assert not thread.is_alive()
    sys.setswitchinterval(0.005)
    assert not unexpected
