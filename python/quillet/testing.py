"""Fixtures for pytest: in conftest.py, write pytest_plugins = ["quillet.testing"]."""

from typing import Iterator

import pytest

from ._simulated import SimulatedMachine, simulate

__all__ = ["SimulatedMachine", "simulated_machine"]


@pytest.fixture
def simulated_machine() -> Iterator[SimulatedMachine]:
    """The machine that ships with the simulator, new for each test. It refuses changes outside a scope of
    changes, its time stands still until the test advances it, and its calls begin with the test's own.
    """
    with simulate(strict=True, real_time=False) as machine:
        machine.forget_calls()
        yield machine
