"""Diagnostic tests: running them and following them."""

import atexit
import queue
import threading
from dataclasses import dataclass
from typing import Iterator, Optional, Union

from . import _quillet
from ._bound import Bound
from ._errors import NotStarted
from ._words import RunEnd, TestState


@dataclass(frozen=True)
class Diagnostic(Bound):
    """A test that an adapter offers."""

    path: str
    name: str
    number: int
    group: Optional[int]

    def read_result(self) -> "Optional[TestResult]":
        """What is known of it; None where it never ran."""
        return self._session.read_result(self.path)

    def read_package(self, package: "TestResult") -> "list[TestResult]":
        """The results that belong to one that stands for several."""
        return self._session.read_package_results(self.path, package)


@dataclass(frozen=True)
class TestMessage:
    """A message of a test's outcome."""

    __test__ = False  # pytest would take it for a test

    id: int
    attribute: Optional[int]


@dataclass(frozen=True)
class TestResult:
    """What is known of a test while it runs and after it has ended."""

    __test__ = False

    path: str
    name: str
    number: int
    state: TestState
    state_text: str
    code: int
    title: str
    result: str
    description: str
    package_name: str
    is_package: bool
    messages: list[TestMessage]
    members: "list[TestResult]"

    @property
    def passed(self) -> bool:
        """Whether it has ended, and well."""
        return _quillet.passed(self)


class _Left(Exception):
    """Nobody looks any more."""


class _Run:
    """A test that is followed on a thread of its own, so that whoever looks may do other things in between."""

    def __init__(self, session: _quillet.Session, test: Diagnostic, adapter: str, interval: float, patience: float):
        self._session, self._test, self._adapter = session, test, adapter
        self._times = (round(interval * 1000), round(patience * 1000))
        self._stop = _quillet.StopSource()
        self._is_left = False
        self._is_stopped = False
        self._has_ended = False
        self._seen: queue.SimpleQueue[Union[TestResult, RunEnd, BaseException]] = queue.SimpleQueue()
        # It is not waited for at the end of the program: there, every run is left first.
        self._thread = threading.Thread(target=self._follow, name=f"quillet: {test.name}", daemon=True)
        self._leaving = threading.Lock()

    def _look(self, result: TestResult) -> None:
        if not self._is_left:
            self._seen.put(result)
        elif self._is_stopped or self._session.is_open():
            raise _Left
        else:
            self._is_stopped = True  # once this look is over: nobody else can stop it where the machine is closed

    def _follow(self) -> None:
        try:
            self._seen.put(self._session.run_diagnostic(
                self._test.path, self._adapter, *self._times, self._look, self._stop))
            self._has_ended = True
        except _Left:
            pass
        except BaseException as failure:  # whoever looks gets it, without this frame, which would keep it alive
            self._has_ended = True
            self._seen.put(failure.with_traceback(None))

    def results(self) -> Iterator[TestResult]:
        """Everything that is seen, the outcome last. Leaving before it stops the test."""
        _running.add(self)
        try:
            self._thread.start()
            while True:
                seen = self._seen.get()
                if isinstance(seen, TestResult):
                    yield seen
                elif isinstance(seen, BaseException):
                    try:
                        raise seen
                    finally:
                        del seen
                elif seen == RunEnd.ENDED:
                    return
                else:
                    raise NotStarted(f"{self._test.name}: the provider did not start the test")
        finally:
            self.leave()

    def leave(self) -> None:
        """Ends the following, and the test if it runs still."""
        with self._leaving:
            _running.discard(self)
            self._is_left = True
            self._stop.request_stop()  # wakes the thread
            if self._thread.ident is None:
                return
            self._thread.join()
            if self._has_ended or not self._session.is_open():
                return
            self._has_ended = True
            self._session.stop_diagnostic(self._test.path, self._adapter)


_running: "set[_Run]" = set()


@atexit.register
def _leave_all() -> None:
    for run in list(_running):
        try:
            run.leave()
        except Exception:  # nobody is left to be told
            pass


def follow(
    session: _quillet.Session, test: Diagnostic, adapter: str, interval: float, patience: float
) -> Iterator[TestResult]:
    """Runs a test; see Adapter.run."""
    return _Run(session, test, adapter, interval, patience).results()
