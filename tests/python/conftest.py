"""The fixtures are those that the package offers to its users. Which operations the tests call is noted."""

import functools
from typing import Any, Callable

import pytest

from quillet import _quillet

pytest_plugins = ["quillet.testing", "pytester"]

called: set[str] = set()


def noted(name: str, operation: Callable[..., Any]) -> Callable[..., Any]:
    @functools.wraps(operation)
    def note(*args: Any) -> Any:
        called.add(name)
        return operation(*args)

    return note


for _name, _operation in list(vars(_quillet.Session).items()):
    if not _name.startswith("_"):
        setattr(_quillet.Session, _name, noted(_name, _operation))


@pytest.fixture
def called_operations() -> set[str]:
    """What the tests until now have called of the extension's sessions."""
    return called


def pytest_collection_modifyitems(items: list[pytest.Item]) -> None:
    """What looks at all the others is the last."""
    items.sort(key=lambda item: item.name == "test_every_operation_is_called")
