"""What belongs to a machine, and how it asks it."""

from typing import Any, Callable, Iterable, ParamSpec, TypeVar

from . import _quillet
from ._errors import PartialError

Arguments = ParamSpec("Arguments")
Result = TypeVar("Result")


class Bound:
    """A value that was read from a machine, through which it can ask more."""

    _session: _quillet.Session

    def _bind(self, session: _quillet.Session) -> None:
        object.__setattr__(self, "_session", session)

    def _ask(self, operation: Callable[Arguments, Result], *args: Arguments.args, **kwargs: Arguments.kwargs) -> Result:
        return ask(self._session, operation, *args, **kwargs)

    def __getattr__(self, name: str) -> Any:
        if name == "_session":
            raise ValueError(f"this {type(self).__name__} comes from no machine; read it from one")
        raise AttributeError(f"{type(self).__name__!r} object has no attribute {name!r}")

    def __getstate__(self) -> dict[str, Any]:
        """A copy that goes elsewhere is a value alone: no connection goes with it."""
        return {name: value for name, value in vars(self).items() if name != "_session"}


def paths(ports: Iterable[Any]) -> list[str]:
    """The object paths of adapters or members of teams."""
    found = []
    for port in ports:
        if not isinstance(port, Bound) or not hasattr(port, "device_id"):
            raise TypeError(f"an Adapter or a TeamMember is needed, not {type(port).__name__}")
        found.append(str(getattr(port, "path")))
    return found


def bind(session: _quillet.Session, result: object) -> None:
    """Lets what was read ask the same machine."""
    if isinstance(result, Bound):
        result._bind(session)
    elif isinstance(result, list):
        for item in result:
            bind(session, item)


def ask(
    session: _quillet.Session,
    operation: Callable[Arguments, Result],
    *args: Arguments.args,
    **kwargs: Arguments.kwargs,
) -> Result:
    """Runs an operation, and binds what comes of it, be it all or a part."""
    try:
        result = operation(*args, **kwargs)
    except PartialError as error:
        bind(session, error.read)
        raise
    bind(session, result)
    return result
