"""Keys and passwords show nowhere."""

import copy
import dataclasses
import pickle
import traceback

import pytest

import quillet
from quillet.testing import SimulatedMachine

WORD = "open-sesame-4711"


def test_a_secret_does_not_show() -> None:
    secret = quillet.Secret(WORD)
    keys = quillet.ManualKeys(outgoing=quillet.SecureAssociation(key=secret))
    for text in (repr(secret), str(secret), f"{secret}", repr(keys), str([secret]), str(dataclasses.asdict(keys))):
        assert WORD not in text
        assert "Secret(***)" in text
    for thing in (secret, keys):
        with pytest.raises(TypeError, match="not written down"):
            pickle.dumps(thing)
    assert secret == copy.copy(secret) == copy.deepcopy(secret) == quillet.Secret(WORD)
    assert secret != quillet.Secret("other") and secret != WORD  # type: ignore[comparison-overlap]
    assert secret.reveal() == WORD
    secret.clear()
    assert not secret and secret.reveal() == ""


@pytest.mark.parametrize("mistake", [WORD.encode(), [WORD], {"key": WORD}, WORD + "\0"])
def test_a_mistake_with_a_secret_does_not_show_it(mistake: object) -> None:
    with pytest.raises((TypeError, ValueError)) as caught:
        quillet.Secret(mistake)  # type: ignore[arg-type]
    assert WORD not in str(caught.value)

    with pytest.raises(TypeError) as several:
        quillet.Secret(WORD, WORD)  # type: ignore[call-arg]
    assert WORD not in str(several.value)


def test_a_plain_text_does_not_pass_for_a_secret() -> None:
    with pytest.raises(TypeError, match="key takes a Secret") as caught:
        quillet.MasterKey(key=WORD)  # type: ignore[arg-type]
    assert WORD not in str(caught.value)
    authentication = quillet.Authentication()
    with pytest.raises(TypeError, match="password takes a Secret"):
        authentication.password = WORD  # type: ignore[assignment]


def test_a_failure_with_a_secret_does_not_show_it(simulated_machine: SimulatedMachine) -> None:
    security = next(a for a in simulated_machine.adapters if "Quad" in a.name).link_security
    simulated_machine.fail("ExecMethod", repeat=True)
    simulated_machine.fail("PutInstance", repeat=True)
    try:
        security.set_manual_keys(quillet.ManualKeys(outgoing=quillet.SecureAssociation(quillet.Secret(WORD))))
    except quillet.Error as failure:
        shown = traceback.TracebackException.from_exception(failure, capture_locals=True)
        assert not [line for line in shown.format() if WORD in line and "quillet.Secret(WORD)" not in line]
    else:
        pytest.fail("it was set")
    assert not [line for line in simulated_machine.calls if WORD in line]


def test_keys_are_written_and_read(simulated_machine: SimulatedMachine) -> None:
    security = next(a for a in simulated_machine.adapters if "Quad" in a.name).link_security
    keys = security.read_manual_keys()
    keys.outgoing.key = quillet.Secret("00112233445566778899AABBCCDDEEFF")
    keys.encryption = False
    with simulated_machine.changes():
        security.set_manual_keys(keys, reload=True)
    assert security.read_manual_keys() == keys
    authentication = security.read_authentication()
    authentication.methods.outer = 2
    authentication.password = quillet.Secret(WORD)
    with simulated_machine.changes():
        security.set_authentication(authentication)
    assert security.read_authentication().methods.outer == 2
    assert not [line for line in simulated_machine.calls if "00112233445566778899AABBCCDDEEFF" in line or WORD in line]


def test_a_password_is_no_local_of_connect_when_it_fails() -> None:
    try:
        quillet.connect("127.0.0.1", user="somebody", password=WORD, authentication="basic", port=1)
    except quillet.Error as failure:
        frames = traceback.TracebackException.from_exception(failure, capture_locals=True)
        inside = [str(frame.locals) for frame in frames.stack if frame.name == "connect"]
        assert inside and WORD not in str(inside) and WORD not in str(failure)
    else:
        pytest.fail("somebody listens there")
