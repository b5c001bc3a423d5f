"""Simulated machines."""

import os
from typing import Optional, Union

from . import _quillet
from ._machine import Machine
from ._words import HardwareStatus


class SimulatedMachine(Machine):
    """A machine that is simulated in this process: what its provider was asked can be read, and it can be
    made to fail.

    >>> machine.fail("ExecMethod", method="IdentifyAdapter", code=0x80041003)
    >>> machine.adapters[0].identify(5)  # doctest: +IGNORE_EXCEPTION_DETAIL
    Traceback (most recent call last):
    quillet.Error: ...
    >>> machine.hits
    1
    """

    def __init__(self, simulator: _quillet.Simulator) -> None:
        super().__init__(simulator.connect())
        self._simulator = simulator

    @property
    def calls(self) -> list[str]:
        """A line for each call that has reached the provider."""
        return self._simulator.calls()

    def forget_calls(self) -> None:
        """Forgets the calls so far."""
        self._simulator.clear_calls()

    def fail(
        self,
        operation: str,
        *,
        target: str = "",
        method: str = "",
        nth: int = 1,
        repeat: bool = False,
        effect: str = "Fail",
        code: int = 0x80041001,
        verdict: int = 1,
        delay: float = 0.0,
    ) -> None:
        """Lets the nth of the calls that fit fail, or have another effect; with repeat, all later ones as well.

        operation is "ExecMethod", "Next", …, or "*" for any; target a class, a path or a property. verdict is
        for the effect "Verdict", delay, in seconds, for any.
        """
        self._simulator.fail(operation, target, method, nth, repeat, effect, code, verdict, round(delay * 1000))

    def forget_faults(self) -> None:
        """Takes the faults away."""
        self._simulator.clear_faults()

    @property
    def hits(self) -> int:
        """How many calls a fault has hit."""
        return self._simulator.fault_hits()

    def advance(self, seconds: float) -> None:
        """Lets simulated time pass, and what runs in it go on."""
        self._simulator.advance(round(seconds * 1000))

    def set_hardware(self, device_id: str, status: HardwareStatus) -> None:
        """Pulls the cable of an adapter, plugs it in, unloads its driver, takes it out."""
        self._simulator.set_hardware_status(device_id, status)

    def reconnect(self) -> Machine:
        """Another session with the same machine."""
        return Machine(self._simulator.connect())

    def save(self) -> str:
        """The machine as MOF, which simulate() reads."""
        return self._simulator.save()


def simulate(
    file: Union[str, "os.PathLike[str]", None] = None,
    *,
    text: Optional[str] = None,
    strict: bool = False,
    real_time: bool = True,
) -> SimulatedMachine:
    """A machine from a file or a text of MOF, or the one that ships with the simulator. A strict one refuses
    changes outside a scope of changes. Without real time its time stands still until it is advanced.

    >>> with simulate() as machine:
    ...     print(len(machine.adapters), "adapters")
    10 adapters
    """
    if file is not None and text is not None:
        raise ValueError("a machine is in a file or in a text")
    simulator = _quillet.Simulator(None if file is None else os.fsencode(file), None if text is None else text.encode(), strict)
    simulator.follow_real_time(real_time)
    return SimulatedMachine(simulator)
