"""Boot agents, flash images and booting from iSCSI."""

from dataclasses import dataclass
from typing import Callable, Optional, Sequence

from . import _quillet
from ._bound import Bound
from ._records import FlashContents, FlashOutcome, FlashVerdict
from ._settings import Setting
from ._words import FlashStage, IscsiStatus


@dataclass(frozen=True)
class BootAgent(Bound):
    """The boot agent of an adapter. An image file is bytes: nobody looks into it but the provider."""

    path: str
    version: str
    version_number: int
    update_available: bool
    image_type: int
    image_type_text: str
    iscsi_status: int
    installed_image_types: int

    @property
    def image_types(self) -> list[str]:
        """The kinds of images that are in the flash memory."""
        return _quillet.image_types(self.installed_image_types)

    @property
    def settings(self) -> list[Setting]:
        """The advanced settings."""
        return self._ask(self._session.boot_agent_settings, self.path)

    def read_flash(self) -> bytes:
        """The contents of the flash memory."""
        return self._session.read_flash(self.path)

    def read_images(self, file: bytes) -> FlashContents:
        """The images in an image file."""
        return self._session.read_image_file(self.path, file)

    def verify(self, file: bytes, types: Sequence[str]) -> FlashVerdict:
        """Checks an image file, of which images of these types are wanted."""
        return self._session.verify_images(self.path, file, types)

    def write(self, file: bytes, types: Sequence[str]) -> FlashVerdict:
        """Writes images into the flash memory, without a check. Belongs into changes."""
        return self._session.write_flash(self.path, file, types)

    def program(
        self, file: bytes, types: Sequence[str], progress: Optional[Callable[[FlashStage], object]] = None
    ) -> FlashOutcome:
        """Checks an image file, writes it and reads the memory back. Belongs into changes.

        progress is told each stage as it begins. What it raises before the writing prevents it, and so does Ctrl-C. A
        writing that has begun goes to its end.
        """
        return self._session.program_flash(self.path, file, types, progress or _heed_signals)


def _heed_signals(_: FlashStage) -> None:
    """Nothing is to be done; but between the stages Python handles its signals here."""


@dataclass(frozen=True)
class IscsiAdapter(Bound):
    """An adapter whose boot agent can boot from an iSCSI target."""

    path: str
    object_id: str
    adapter_name: str
    status: IscsiStatus

    def set_status(self, status: IscsiStatus) -> int:
        """Changes the part that it plays; what the provider says to it, 0 for yes."""
        return self._session.set_iscsi_status(self.path, status)
