"""The role's Python files as a test imports them: where Ansible would put them."""

import importlib.util
import os
import sys

import ansible.module_utils

sys.dont_write_bytecode = True

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
ROLE = os.path.join(SOURCE, "examples", "fleet", "roles", "quillet")
ansible.module_utils.__path__.append(os.path.join(ROLE, "module_utils"))


def module():
    """The module quillet_network."""
    place = os.path.join(ROLE, "library", "quillet_network.py")
    spec = importlib.util.spec_from_file_location("quillet_network", place)
    loaded = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(loaded)
    return loaded
