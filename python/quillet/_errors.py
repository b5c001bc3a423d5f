"""What is raised where the provider fails."""

from typing import Any


class Error(Exception):
    """An operation failed. What has been changed until then stays changed."""

    def __init__(self, text: str, code: int, operation: str, about: str) -> None:
        super().__init__(text, code, operation, about)
        self.code = code
        """The result code (HRESULT), as 0x80041003."""
        self.operation = operation
        """Which operation of the library failed, as "EnumerateAdapters"."""
        self.about = about
        """What it was about: an object path, a name; empty where it was about the machine."""

    def __str__(self) -> str:
        return str(self.args[0])


class PartialError(Error):
    """A list, or a record that is read in parts, broke off."""

    def __init__(self, text: str, code: int, operation: str, about: str, read: Any) -> None:
        super().__init__(text, code, operation, about)
        self.args = (*self.args, read)
        self.read = read
        """What was read before."""


class NotStarted(RuntimeError):
    """The provider did not start a test, and does not say why."""


for _kind in (Error, PartialError, NotStarted):
    _kind.__module__ = "quillet"  # as whoever catches them writes, and a traceback shows
