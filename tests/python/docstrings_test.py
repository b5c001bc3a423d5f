"""The examples of the docstrings and of the guide."""

import doctest
import importlib
import pathlib
import pkgutil
import re

import pytest

import quillet

MODULES = ["quillet", *(f"quillet.{module.name}" for module in pkgutil.iter_modules(quillet.__path__))]
GUIDE = pathlib.Path(__file__).parents[2] / "docs" / "python.md"
FLAGS = doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE


def examples_of(module: str) -> list[doctest.DocTest]:
    loaded = importlib.import_module(module)
    names = {name: getattr(quillet, name) for name in quillet.__all__}
    return [test for test in doctest.DocTestFinder().find(loaded, extraglobs=names) if test.examples]


@pytest.mark.parametrize("test", [test for module in MODULES for test in examples_of(module)], ids=lambda test: str(test.name))
def test_docstring(test: doctest.DocTest) -> None:
    with quillet.simulate(real_time=False) as machine:
        test.globs.setdefault("machine", machine)
        shown: list[str] = []
        assert not doctest.DocTestRunner(optionflags=FLAGS).run(test, out=shown.append).failed, "".join(shown)


def test_docstrings_have_examples() -> None:
    names = {test.name for module in MODULES for test in examples_of(module)}
    assert {"quillet._adapters.Adapter.run", "quillet._vlans.VlanParent.add_vlan"} <= names


def test_guide(tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    """Its sessions are one after the other in one place; its tests are run by pytest, its program by remote_test.py."""
    monkeypatch.chdir(tmp_path)
    text = GUIDE.read_text(encoding="utf-8")
    blocks = re.findall(r"```python\n(.*?)```", text, re.DOTALL)
    sessions = [block for block in blocks if block.startswith(">>>")]
    assert sessions
    test = doctest.DocTestParser().get_doctest("\n".join(sessions), {}, "python.md", str(GUIDE), 0)
    shown: list[str] = []
    assert not doctest.DocTestRunner(optionflags=FLAGS).run(test, out=shown.append).failed, "".join(shown)


@pytest.mark.parametrize("block", [block for block in re.findall(
    r"```python\n(.*?)```", GUIDE.read_text(encoding="utf-8"), re.DOTALL) if not block.startswith((">>>", "import json"))])
def test_guide_tests(block: str, pytester: pytest.Pytester) -> None:
    assert "def test_" in block
    pytester.makeconftest('pytest_plugins = ["quillet.testing"]')
    pytester.makepyfile(block)
    pytester.runpytest_inprocess("-q").assert_outcomes(passed=block.count("def test_"))
