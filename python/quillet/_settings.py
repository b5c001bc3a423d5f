"""Advanced settings."""

from dataclasses import dataclass
from typing import Optional, Sequence, Union

from . import _quillet
from ._bound import Bound
from ._records import SettingValue, TextListValue, TextValue

Plain = Union[int, str, list[str]]
ALL_SETTINGS = 0xFFFFFFFF
"""The provider is asked for the whole of each setting."""


@dataclass
class Setting(Bound):
    """One advanced setting of an adapter, a team, a VLAN or a boot agent.

    >>> jumbo = machine.adapters[0].setting("*JumboPacket")
    >>> jumbo.description, jumbo.current
    ('Jumbo Packet', 9014)
    >>> with machine.changes():
    ...     jumbo.write(4088)
    >>> machine.adapters[0].setting("*JumboPacket").current
    4088
    """

    path: str
    keyword: str
    description: str
    help: str
    expose_level: str
    writable: bool
    group: Optional[int]
    value: SettingValue

    @property
    def current(self) -> Plain:
        """The current value: a number, a text or a list of texts."""
        return self.value.current

    @property
    def current_text(self) -> str:
        """The current value as text."""
        return _quillet.current_text(self)

    @property
    def current_number(self) -> Optional[int]:
        """The current value as a number; None for texts."""
        return _quillet.current_number(self)

    @property
    def is_jumbo_frame(self) -> bool:
        """Whether it is the jumbo-frame setting, by any of its keywords."""
        return _quillet.is_jumbo_frame_setting(self)

    def write(self, current: Optional[Plain] = None) -> None:
        """Writes the current value, or another one. Belongs into changes."""
        before = self.value.current
        if current is not None:
            self._take(current)
        try:
            self._session.write(self)
        except BaseException:
            self._take(before)
            raise

    def _take(self, current: Plain) -> None:
        value = self.value
        if isinstance(value, TextListValue):
            if not isinstance(current, list):
                raise TypeError(f"{self.keyword} takes a list of texts")
            value.current = current
        elif isinstance(value, TextValue):
            if not isinstance(current, str):
                raise TypeError(f"{self.keyword} takes a text")
            value.current = current
        elif isinstance(current, int):
            value.current = current
        else:
            raise TypeError(f"{self.keyword} takes a number")


def find(settings: Sequence[Setting], keyword: str) -> Setting:
    """The setting with a keyword; case does not count."""
    if not isinstance(keyword, str):
        raise TypeError(f"a keyword is a str, not {type(keyword).__name__}")
    for setting in settings:
        if setting.keyword.lower() == keyword.lower():
            return setting
    raise KeyError(keyword)
