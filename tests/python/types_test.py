"""The types of the package, its stub, and the tests."""

import ast
import pathlib
import re
import subprocess
import sys

import pytest

import quillet
from quillet import _quillet

PACKAGE = pathlib.Path(quillet.__file__).parent
GUIDE = pathlib.Path(__file__).parents[2] / "docs" / "python.md"


def program_of_the_guide() -> str:
    (program,) = re.findall(r"```python\n(import json\n.*?)```", GUIDE.read_text(encoding="utf-8"), re.DOTALL)
    return str(program)


@pytest.mark.parametrize("what", [["-p", "quillet"], ["."]], ids=["package", "tests"])
def test_mypy_is_content(what: list[str], tmp_path: pathlib.Path) -> None:
    cache = PACKAGE.parent / ".mypy_cache"  # what the one has read serves the other, and the next time
    if what == ["."]:
        what = [".", str(tmp_path / "program.py")]  # as a user writes
        (tmp_path / "program.py").write_text(program_of_the_guide(), encoding="utf-8")
    done = subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--warn-unused-ignores", "--cache-dir", str(cache), *what],
        cwd=pathlib.Path(__file__).parent, capture_output=True, text=True, check=False,
        env={"MYPYPATH": str(PACKAGE.parent)})
    assert done.returncode == 0, done.stdout


def public(names: list[str]) -> set[str]:
    return {name for name in names if not name.startswith("_")}


def test_the_stub_names_what_the_extension_has() -> None:
    stub = ast.parse((PACKAGE / "_quillet.pyi").read_text(encoding="utf-8"))
    functions = {node.name for node in stub.body if isinstance(node, ast.FunctionDef)}
    classes = {node.name: node for node in stub.body if isinstance(node, ast.ClassDef)}
    constants = {node.target.id for node in stub.body if isinstance(node, ast.AnnAssign) and isinstance(node.target, ast.Name)}
    assert functions | set(classes) | constants == public(dir(_quillet))
    for name, node in classes.items():
        methods = {part.name for part in node.body if isinstance(part, ast.FunctionDef)}
        assert public(list(methods)) == public(dir(getattr(_quillet, name))), name


def test_everything_public_has_a_docstring() -> None:
    for name in quillet.__all__:
        thing = getattr(quillet, name)
        if not isinstance(thing, type):
            continue
        assert thing.__doc__ and not thing.__doc__.startswith(f"{name}("), name
        for member, value in vars(thing).items():
            if not member.startswith("_") and (callable(value) or isinstance(value, property)):
                assert value.__doc__, f"{name}.{member}"
