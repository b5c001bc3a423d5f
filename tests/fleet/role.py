"""The role's module as a test imports it."""

import importlib.util
import os
import sys

sys.dont_write_bytecode = True

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
ROLE = os.path.join(SOURCE, "examples", "fleet", "roles", "quillet")


def module():
    """The module quillet_network."""
    place = os.path.join(ROLE, "library", "quillet_network.py")
    spec = importlib.util.spec_from_file_location("quillet_network", place)
    loaded = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(loaded)
    return loaded
