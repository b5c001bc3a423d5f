"""VLANs, and what carries them."""

from dataclasses import dataclass
from typing import TYPE_CHECKING, Sequence, Union, cast

from ._bound import Bound
from ._settings import Setting
from ._words import StatusInfo, VlanProblem, VlanSupport

if TYPE_CHECKING:
    from ._adapters import Adapter
    from ._teams import Team


@dataclass(frozen=True)
class Vlan(Bound):
    """One VLAN."""

    path: str
    object_id: str
    caption: str
    parent_id: str
    name: str
    number: int
    status: StatusInfo

    @property
    def settings(self) -> list[Setting]:
        """The advanced settings."""
        return self._ask(self._session.vlan_settings, self.path)

    def read(self) -> "Vlan":
        """The VLAN as it is now."""
        return self._ask(self._session.read_vlan, self.path)

    def read_status(self) -> StatusInfo:
        """Whether it is enabled."""
        return self._session.vlan_status(self.path)

    def check_setting(self, keyword: str, value: int) -> int:
        """Asks whether it may take a value: the provider's own bits against it."""
        return self._session.validate_vlan_setting(self.path, keyword, value)

    def modify(self, number: int, name: str) -> None:
        """Changes ID and name. Belongs into changes."""
        self._session.modify_vlan(self.path, number, name)

    def remove(self) -> None:
        """Removes it with its settings. Belongs into changes."""
        self._session.remove_vlan(self.path)


class VlanParent(Bound):
    """An adapter or a team."""

    def _parent(self) -> "Union[Adapter, Team]":
        return cast("Union[Adapter, Team]", self)

    @property
    def vlans(self) -> list[Vlan]:
        """The VLANs that it carries."""
        return self._ask(self._session.vlans, self._parent())

    @property
    def vlan_support(self) -> VlanSupport:
        """Whether VLANs may be put on it."""
        return self._session.supports_vlans(self._parent())

    @property
    def tagged_vlans(self) -> int:
        """How many tagged VLANs it carries."""
        return self._session.tagged_vlans(self._parent())

    def has_vlan(self, number: int) -> bool:
        """Whether it carries a VLAN of this ID."""
        return self._session.has_vlan(self._parent(), number)

    def check_vlans(self, vlans: Sequence[tuple[int, str]]) -> VlanProblem:
        """What stands in the way of several new tagged VLANs, each an ID and a name.

        >>> machine.teams[0].check_vlans([(100, "Lab"), (5000, "Office")]).texts
        ['the VLAN ID is out of range: 1 to 4094, or 0 for the untagged VLAN']
        """
        return self._session.check_vlans(self._parent(), vlans)

    def check_vlan(self, number: int, name: str = "") -> VlanProblem:
        """What stands in the way of a new VLAN.

        >>> machine.teams[0].check_vlan(5000, "Lab").texts
        ['the VLAN ID is out of range: 1 to 4094, or 0 for the untagged VLAN']
        """
        return self._session.check_vlan(self._parent(), number, name)

    def check_vlan_change(self, vlan: Vlan, number: int, name: str) -> VlanProblem:
        """What stands in the way of a change of one of its VLANs."""
        return self._session.check_vlan_change(self._parent(), vlan, number, name)

    def add_vlan(self, number: int, name: str = "") -> Vlan:
        """Makes a VLAN; number 0 is the untagged one. Belongs into changes.

        >>> with machine.changes() as change:
        ...     made = machine.teams[0].add_vlan(100, "Lab")
        >>> made.number, made.name, change.restart_needed
        (100, 'Lab', False)
        """
        return self._ask(self._session.add_vlan, self._parent(), number, name)
