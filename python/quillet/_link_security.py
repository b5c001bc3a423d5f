"""Link security (IEEE 802.1AE) of an adapter."""

from ._bound import Bound
from ._records import (
    Authentication,
    AuthenticationMethods,
    ManualKeys,
    MasterKey,
    PacContents,
    PacFile,
    SavedCredentials,
)


class LinkSecurity(Bound):
    """What an adapter knows of keys and credentials. Changes belong into changes of the machine; with reload,
    the driver is reloaded, so that they take effect at once.
    """

    def __init__(self, path: str) -> None:
        self._path = path

    def read_manual_keys(self) -> ManualKeys:
        """The manually entered keys."""
        return self._session.read_manual_keys(self._path)

    def set_manual_keys(self, keys: ManualKeys, *, reload: bool = False) -> None:
        """Sets all of it."""
        self._session.set_manual_keys(self._path, keys, reload)

    def read_authentication(self) -> Authentication:
        """How the adapter authenticates."""
        return self._session.read_authentication(self._path)

    def set_authentication(self, authentication: Authentication, *, reload: bool = False) -> None:
        """Sets how the adapter authenticates."""
        self._session.set_authentication(self._path, authentication, reload)

    def read_methods(self) -> AuthenticationMethods:
        """The authentication methods alone."""
        return self._session.read_authentication_methods(self._path)

    def read_master_key(self) -> MasterKey:
        """The pairwise master key."""
        return self._session.read_master_key(self._path)

    def set_master_key(self, key: MasterKey, *, reload: bool = False) -> None:
        """Sets the pairwise master key."""
        self._session.set_master_key(self._path, key, reload)

    def import_pac(self, file: PacFile, *, reload: bool = False) -> None:
        """Imports a PAC file."""
        self._session.import_pac(self._path, file, reload)

    def delete_pac(self, name: str) -> None:
        """Removes an imported PAC file."""
        self._session.delete_pac(self._path, name)

    def read_pac(self, name: str) -> PacContents:
        """What an imported PAC file holds."""
        return self._session.read_pac(self._path, name)

    def read_saved_credentials(self) -> SavedCredentials:
        """The credentials that the adapter has saved."""
        return self._session.read_saved_credentials(self._path)

    def read_log(self) -> str:
        """The log of security statistics."""
        return self._session.read_security_log(self._path)
