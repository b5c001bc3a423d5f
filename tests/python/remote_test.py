"""A machine over the network: another process serves a simulated one."""

import json
import os
import pathlib
import re
import subprocess
import sys
import traceback
import warnings
from typing import Iterator

import pytest

import quillet
from interruption_test import ctrl_c
from quillet import _quillet

SIMULATOR = os.environ.get("QUILLET_SIMULATOR", "")
PASSWORD = "correct horse: staple"

pytestmark = pytest.mark.skipif(
    not SIMULATOR or not hasattr(_quillet, "connect_remote"), reason="WS-Management was not built")


@pytest.fixture(scope="module")
def served(tmp_path_factory: pytest.TempPathFactory) -> Iterator[tuple[int, pathlib.Path]]:
    """The port of a machine behind HTTPS, and the certificate to trust."""
    folder = tmp_path_factory.mktemp("served")
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2",
         "-subj", "/CN=lab", "-addext", "subjectAltName=DNS:localhost", "-keyout", "key.pem", "-out", "cert.pem"],
        cwd=folder, check=True, capture_output=True)
    (folder / "password").write_text(PASSWORD + "\n", encoding="utf-8")
    (folder / "password").chmod(0o600)
    with subprocess.Popen(
        [SIMULATOR, "--listen", "127.0.0.1:0", "--tls", "cert.pem", "key.pem", "--user", "tester", "--password-file",
         "password"], cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
    ) as process:
        assert process.stdout is not None
        line = process.stdout.readline()
        try:
            yield int(line.split(":")[-1].split("/")[0]), folder / "cert.pem"
        finally:
            process.kill()


def test_is_like_any_other(served: tuple[int, pathlib.Path]) -> None:
    port, authorities = served
    with quillet.simulate() as here, quillet.connect(
        "localhost", user="tester", password=PASSWORD, authentication="basic", port=port, authorities=authorities,
    ) as there:
        assert [adapter.name for adapter in there.adapters] == [adapter.name for adapter in here.adapters]
        assert there.adapters[0].read_state() == here.adapters[0].read_state()
        assert [row.team_name for row in there.overview(threads=4)] == [row.team_name for row in here.overview()]
        with there.changes() as change:
            there.teams[0].add_vlan(321, "Far")
        assert not change.restart_needed
        assert 321 in [vlan.number for vlan in there.teams[0].vlans]
        assert 321 not in [vlan.number for vlan in here.teams[0].vlans]


def test_a_wrong_password_is_told_and_not_shown(served: tuple[int, pathlib.Path]) -> None:
    port, authorities = served
    with pytest.raises(quillet.Error) as caught:
        quillet.connect("localhost", user="tester", password="wrong-4711", authentication="basic", port=port,
                        authorities=authorities)
    assert caught.value.code in (0x80041003, 0x80070005)
    assert "localhost" in str(caught.value) and "wrong-4711" not in str(caught.value)
    frames = traceback.TracebackException.from_exception(caught.value, capture_locals=True)
    assert not [frame for frame in frames.stack if frame.name == "connect" and "wrong-4711" in str(frame.locals)]


def test_a_certificate_that_nobody_vouches_for(served: tuple[int, pathlib.Path]) -> None:
    port, _ = served
    with pytest.raises(quillet.Error, match="certificate"):
        quillet.connect("localhost", user="tester", password=PASSWORD, authentication="basic", port=port)
    with pytest.warns(UserWarning, match="not checked"):
        quillet.connect("localhost", user="tester", password=quillet.Secret(PASSWORD), authentication="basic",
                        port=port, insecure=True).close()


def test_ctrl_c_while_a_machine_does_not_tell_how_a_test_goes(tmp_path: pathlib.Path) -> None:
    """The look that hangs is given up, and nothing else is asked."""
    with quillet.simulate() as machine:
        (tmp_path / "slow.mof").write_text(machine.save() + """
            instance of QuilletSimulator_Fault { Id = 1; Operation = "ExecQuery"; Nth = 3; Repeat = TRUE; Effect = "Delay";
                                                 Milliseconds = 60000; };""", encoding="utf-8")
    (tmp_path / "password").write_text(PASSWORD, encoding="utf-8")
    (tmp_path / "password").chmod(0o600)
    with subprocess.Popen(
        [SIMULATOR, "slow.mof", "--listen", "127.0.0.1:0", "--user", "tester", "--password-file", "password"], cwd=tmp_path,
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
    ) as process:
        assert process.stdout is not None
        port = int(process.stdout.readline().split(":")[-1].split("/")[0])
        try:
            with quillet.connect("127.0.0.1", user="tester", password=PASSWORD, authentication="basic", port=port,
                                 plain_http=True) as machine:
                adapter = machine.adapters[0]
                test = next(test for test in adapter.diagnostics if test.name.startswith("Link test"))
                with ctrl_c(0.5):
                    for _ in adapter.run(test, interval=0.1):
                        pass
        finally:
            process.kill()


def test_options_that_are_not_safe() -> None:
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        with pytest.raises(ValueError):
            quillet.connect("elsewhere.invalid", user="tester", password=PASSWORD, authentication="basic",
                            plain_http=True)
    with pytest.raises(ValueError):
        quillet.connect("localhost", authentication="basic")
    with pytest.raises(ValueError, match="host name"):
        quillet.connect("")
    with pytest.raises(ValueError, match="what is no character"):
        quillet.connect("\ud800", user="tester")
    with pytest.raises(ValueError, match="no port"):
        quillet.connect("localhost", user="tester", port=1 << 20)
    with pytest.raises(TypeError) as caught:
        quillet.connect("localhost", user="tester", password=PASSWORD, port=[PASSWORD])  # type: ignore[arg-type]
    assert str(caught.value) == "int is needed, not list"


@pytest.mark.parametrize("arguments", [[], ["server.json"]], ids=["simulated", "over TLS"])
def test_the_program_of_the_guide(arguments: list[str], served: tuple[int, pathlib.Path]) -> None:
    """It does the same on a simulated machine and on one over the network."""
    port, authorities = served
    guide = pathlib.Path(__file__).parents[2] / "docs" / "python.md"
    (program,) = re.findall(r"```python\n(import json\n.*?)```", guide.read_text(encoding="utf-8"), re.DOTALL)
    (authorities.parent / "server.json").write_text(json.dumps({
        "machine": "localhost", "port": port, "user": "tester", "password": PASSWORD, "authentication": "basic",
        "authorities": str(authorities)}), encoding="utf-8")
    done = subprocess.run(
        [sys.executable, "-c", program, *arguments], cwd=authorities.parent, capture_output=True, text=True, check=False,
        env={**os.environ, "PYTHONPATH": str(pathlib.Path(quillet.__file__).parents[1])})
    assert (done.returncode, done.stderr) == (0, "")
    begin, end = re.findall(r"^# ([^…].*)", program, re.MULTILINE)
    printed = done.stdout.splitlines()
    assert (printed[0], printed[-1], len(printed)) == (begin, end, 11)
