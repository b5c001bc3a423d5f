"""Ctrl-C, the end of the interpreter, and what is left behind."""

import contextlib
import gc
import os
import pathlib
import signal
import socket
import subprocess
import sys
import threading
import time
import weakref
from typing import Any, Callable, Iterator

import pytest

import quillet
from quillet import _quillet
from quillet.testing import SimulatedMachine

HAS_NETWORK = hasattr(_quillet, "connect_remote")


@contextlib.contextmanager
def ctrl_c(seconds: float) -> Iterator[None]:
    """Somebody presses Ctrl-C after a time; a block that goes on for longer than some seconds was not interrupted."""
    main = threading.main_thread().ident
    assert main is not None
    timer = threading.Timer(seconds, signal.pthread_kill, (main, signal.SIGINT))
    begin = time.monotonic()
    timer.start()
    with pytest.raises(KeyboardInterrupt):
        yield
    timer.join()
    assert seconds <= time.monotonic() - begin < seconds + 10


def run(program: str, *, seconds: float = 60) -> str:
    """What a program prints that ends by itself, and well."""
    done = subprocess.run([sys.executable, "-X", "faulthandler", "-c", program], capture_output=True, text=True,
                          timeout=seconds, check=False, env={**os.environ, "PYTHONPATH": str(pathlib.Path(quillet.__file__).parents[1])})
    assert (done.returncode, done.stderr) == (0, "")
    return done.stdout


@pytest.fixture
def silent_port() -> Iterator[int]:
    """Somebody who takes connections and never answers."""
    with socket.create_server(("127.0.0.1", 0)) as server:
        yield int(server.getsockname()[1])


@pytest.mark.skipif(not HAS_NETWORK, reason="WS-Management was not built")
def test_ctrl_c_while_a_machine_does_not_answer(silent_port: int) -> None:
    with ctrl_c(0.3):
        quillet.connect("127.0.0.1", port=silent_port, user="tester", password="word", plain_http=True)
    for _ in range(3):  # nothing of it is left
        assert quillet.Secret("word")


def test_ctrl_c_while_a_test_is_followed(simulated_machine: SimulatedMachine) -> None:
    adapter = simulated_machine.adapters[0]
    with ctrl_c(0.2):
        for _ in adapter.run("Link test", interval=3600):
            pass
    assert any("DiscontinueTest" in call for call in simulated_machine.calls)
    assert not [thread for thread in threading.enumerate() if thread.name.startswith("quillet")]


@pytest.mark.parametrize("method, is_written", [("VerifyImageType", False), ("ProgramFlashEx", True)])
def test_ctrl_c_while_a_flash_is_written(simulated_machine: SimulatedMachine, method: str, is_written: bool) -> None:
    agent = simulated_machine.adapters[0].boot_agent
    image = agent.read_flash()
    types = [found.type for found in agent.read_images(image).images]
    simulated_machine.forget_calls()
    simulated_machine.fail("ExecMethod", method=method, effect="Delay", delay=0.4)
    with ctrl_c(0.2):
        with simulated_machine.changes():
            agent.program(image, types)
    assert simulated_machine.hits == 1
    # A writing that has begun goes to its end, and is not read back; before, nothing is written.
    methods = " ".join(call for call in simulated_machine.calls if "ExecMethod" in call)
    assert ("ProgramFlashEx" in methods) is is_written
    assert "ReadFlash" not in methods and "Apply(" in methods
    with simulated_machine.changes():
        pass


def test_the_interpreter_goes_while_threads_ask() -> None:
    program = """
import quillet, threading, time
machine = quillet.simulate()
if {delay}:
    machine.fail("GetObject", effect="Delay", delay={delay}, repeat=True)
begun = threading.Barrier(4)
def ask():
    begun.wait()
    while True:
        machine.overview()
for _ in range(3):
    threading.Thread(target=ask, daemon=True).start()
begun.wait()
time.sleep(0.05)
print("end")
"""
    for delay in (0, 0.05):
        assert run(program.format(delay=delay)) == "end\n"


def test_the_interpreter_goes_while_a_test_is_followed() -> None:
    assert run("""
import atexit, quillet
machine = quillet.simulate(real_time=False)
atexit.register(lambda: print(any("DiscontinueTest" in call for call in machine.calls)))
begun = machine.adapters[0].run("Link test", interval=3600)
print(next(begun).state.name)
import quillet._diagnostics
quillet._diagnostics._leave_all()  # as at the end, but seen
""") == "IN_PROGRESS\nTrue\n"
    assert run("""
import quillet
machine = quillet.simulate(real_time=False)
begun = machine.adapters[0].run("Link test", interval=3600)
print(next(begun).state.name)
""") == "IN_PROGRESS\n"


@pytest.mark.skipif(not HAS_NETWORK, reason="WS-Management was not built")
def test_the_interpreter_goes_while_a_machine_does_not_answer(silent_port: int) -> None:
    assert run(f"""
import quillet, threading, time
def ask():
    quillet.connect("127.0.0.1", port={silent_port}, user="tester", password="word", plain_http=True)
threading.Thread(target=ask, daemon=True).start()
time.sleep(0.2)
print("end")
""", seconds=9) == "end\n"


def test_machines_are_used_at_the_very_end() -> None:
    assert run("""
import quillet, sys
class Late:
    def __init__(self):
        self.machine = quillet.simulate()
        self.changes = self.machine.changes()
        self.changes.__enter__()
        self.print = print
    def __del__(self):
        self.machine.close()
        self.print("closed")
late = Late()
machine = quillet.simulate()
scope = machine.fetch_once()
scope.__enter__()
machine.adapters[0].read_state()
""") == "closed\n"


def test_a_machine_that_is_closed_while_a_test_is_followed(simulated_machine: SimulatedMachine) -> None:
    other = simulated_machine.reconnect()
    results = other.adapters[0].run("Link test", interval=3600)
    assert next(results).state is quillet.TestState.IN_PROGRESS
    other.close()
    del results  # as at the end of a loop: it is left, and the thread has ended
    assert any("DiscontinueTest" in call for call in simulated_machine.calls)
    assert not [thread for thread in threading.enumerate() if thread.name.startswith("quillet")]


def test_scopes_end_on_the_threads_that_they_began_on(simulated_machine: SimulatedMachine) -> None:
    scope = simulated_machine.fetch_once()
    thread = threading.Thread(target=scope.__enter__)  # and ends with it
    thread.start()
    thread.join()
    with pytest.raises(RuntimeError, match="thread that it began on"):
        scope.__exit__()
    adapter = simulated_machine.adapters[0]
    simulated_machine.forget_calls()
    adapter.read_state()
    adapter.read_state()
    assert sum("GetObject" in call for call in simulated_machine.calls) == 2


def test_a_scope_outlives_its_machine(simulated_machine: SimulatedMachine) -> None:
    with simulated_machine.reconnect() as other:
        with other.fetch_once():
            adapter = other.adapters[0]
            adapter.read_state()
            other.close()
            with pytest.raises(ValueError, match="closed"):
                adapter.read_hardware()


def test_nothing_is_left_without_the_collector() -> None:
    gc.collect()
    gc.disable()
    try:
        machine = quillet.simulate(real_time=False)
        left: list[weakref.ref[Any]] = [weakref.ref(machine), weakref.ref(machine._session), weakref.ref(machine._simulator)]
        adapter = machine.adapters[0]
        left.append(weakref.ref(adapter))
        for result in adapter.run("Link test"):
            left.append(weakref.ref(result))
            break
        with pytest.raises(ValueError):
            adapter.check_vlan(1 << 40)
        del machine, adapter, result
        gc.enable()
        assert [what for what in left if what() is not None] == []
    finally:
        gc.enable()


def test_operations_leave_no_objects(simulated_machine: SimulatedMachine) -> None:
    (team,) = simulated_machine.teams
    simulated_machine.fail("ExecMethod", method="IdentifyAdapter", repeat=True)

    adapter = simulated_machine.adapters[0]
    agent = adapter.boot_agent

    def work() -> None:
        agent.settings
        simulated_machine.overview([adapter])
        attempts: list[Callable[[], object]] = [
            lambda: adapter.identify(1), lambda: team.add_vlan(1 << 40), lambda: team.add_vlan(1, "a\0b")]
        for attempt in attempts:
            with contextlib.suppress(quillet.Error, ValueError):
                attempt()
        with contextlib.suppress(ZeroDivisionError), simulated_machine.changes():
            raise ZeroDivisionError
        for diagnostic in adapter.diagnostics:
            diagnostic.read_result()
        quillet.Secret("word").reveal()
        simulated_machine.forget_calls()

    def grown(rounds: int) -> int:
        gc.collect()
        before = sys.getallocatedblocks()
        for _ in range(rounds):
            work()
        gc.collect()
        return sys.getallocatedblocks() - before

    # Python keeps some for later, fewer each time, however many rounds; what is lost in each round is lost every time.
    assert any(grown(100) < 50 for _ in range(10))
