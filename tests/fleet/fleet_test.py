"""The role against a fleet of simulated machines that are served over HTTPS, through ansible-playbook.

    fleet_test.py SOURCE_DIR QUILLETCTL SIMULATOR WORK_DIR

One machine refuses a VLAN half-way through its changes, and is brought back to what it was. What the machines are
afterwards is asked of quilletctl, not of the role, while nobody serves them: then their files have all of it.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import unittest

SOURCE, QUILLETCTL, SIMULATOR, WORK = (os.path.abspath(argument) for argument in sys.argv[1:5])
EXAMPLE = os.path.join(SOURCE, "examples", "fleet")
FLEET = os.path.join(WORK, "fleet")
HOSTS = [f"server{number:02}" for number in range(1, 21)]
BROKEN = "server11"
WORKING = [host for host in HOSTS if host != BROKEN]
RECAP = re.compile(r"^(\S+) +: ok=(\d+) +changed=(\d+) +unreachable=(\d+) +failed=(\d+)", re.MULTILINE)
FAULT = re.compile(r"instance of QuilletSimulator_Fault\n\{.*?\n\};\n+", re.DOTALL)
STEP = "Bring adapters, teams and VLANs to the described state"
HANDLER = "Tell that the machine must be restarted"


def environment(*programs):
    """Nothing of this computer's own Ansible, nor of its user's home. `programs` are folders before the PATH."""
    names = ("PATH", "TMPDIR")
    kept = {name: os.environ[name] for name in names if name in os.environ}
    home = os.path.join(WORK, "home")
    return {
        **kept,
        "PATH": os.pathsep.join([*programs, *map(os.path.dirname, (QUILLETCTL, SIMULATOR)), kept["PATH"]]),
        "HOME": home,
        "LC_ALL": "C.UTF-8",
        "ANSIBLE_HOME": os.path.join(home, "ansible"),
        "ANSIBLE_CONFIG": os.path.join(EXAMPLE, "ansible.cfg"),
        "ANSIBLE_LOCAL_TEMP": os.path.join(home, "local"),
        "ANSIBLE_REMOTE_TEMP": os.path.join(home, "remote"),
        "ANSIBLE_FORKS": "3",
        "ANSIBLE_NOCOLOR": "1",
        "ANSIBLE_CALLBACK_PLUGINS": os.path.join(SOURCE, "tests", "fleet", "callback_plugins"),
        "ANSIBLE_CALLBACKS_ENABLED": "record_results",
        "QUILLET_RECORD": os.path.join(WORK, "record"),
        "PYTHONDONTWRITEBYTECODE": "1",
    }


class Play:
    """One run of ansible-playbook: its recap, and what the task and the handler of the role did on each host."""

    def __init__(self, *options, playbook="site.yml", inventory=None, programs=()):
        record = os.path.join(WORK, "record")
        if os.path.exists(record):
            os.remove(record)
        inventory = inventory or os.path.join(FLEET, "inventory.yml")
        words = ["ansible-playbook", "-i", inventory, os.path.join(EXAMPLE, playbook)]
        done = subprocess.run(
            words + list(options), env=environment(*programs), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, check=False, cwd=WORK,
        )
        self.status, self.text = done.returncode, done.stdout.decode()
        self.recap = {
            host: dict(zip(("ok", "changed", "unreachable", "failed"), map(int, counts)))
            for host, *counts in RECAP.findall(self.text)
        }
        entries = []
        if os.path.exists(record):
            with open(record, encoding="utf-8") as lines:
                entries = [json.loads(line) for line in lines]
        self.results = {entry["host"]: entry["result"] for entry in entries if entry["task"] == STEP}
        self.restarts = sorted(entry["host"] for entry in entries if entry["task"] == HANDLER)

    def hosts_with(self, count):
        return sorted(host for host, counts in self.recap.items() if counts[count] > 0)


def state_file(host):
    return os.path.join(FLEET, host + ".mof")


def states():
    """The bytes of every machine."""
    texts = {}
    for host in HOSTS:
        with open(state_file(host), "rb") as file:
            texts[host] = file.read()
    return texts


def ask(host, *words):
    done = subprocess.run(
        [QUILLETCTL, "--simulate", "--state", state_file(host), "--json", *words], check=True, stdout=subprocess.PIPE
    )
    return json.loads(done.stdout)


def mend(host):
    with open(state_file(host), encoding="utf-8") as file:
        text = file.read()
    mended, faults = FAULT.subn("", text)
    with open(state_file(host), "w", encoding="utf-8") as file:
        file.write(mended)
    return faults


class FleetTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        if os.path.isdir(FLEET):
            self.stop()  # of a run that was killed
        shutil.rmtree(WORK, ignore_errors=True)
        os.makedirs(os.path.join(WORK, "home"))

    @staticmethod
    def script(name, *options):
        words = [sys.executable, os.path.join(EXAMPLE, name), FLEET, *options]
        return subprocess.run(words, check=True, env=environment(), stdout=subprocess.PIPE).stdout.decode()

    def make_fleet(self, hosts, broken):
        self.script("make-fleet", "--hosts", str(hosts), "--broken", broken)

    def serve(self):
        self.addCleanup(self.stop)
        urls = re.findall(r"serving \S+ at (https://\S+:5986)/wsman\n", self.script("serve-fleet"))
        self.assertEqual(len(urls), len(set(urls)))
        return len(urls)

    def stop(self):
        self.script("serve-fleet", "--stop")

    def assert_secret(self, *texts):
        """Nothing tells the password but the two files that are there for it, which others cannot read."""
        secrets = ("credentials", "users")
        with open(os.path.join(FLEET, secrets[0]), encoding="ascii") as file:
            password = re.search("password = (.{30,})\n", file.read()).group(1)
        files = [os.path.join(WORK, "record"), *(os.path.join(FLEET, name) for name in sorted(os.listdir(FLEET)))]
        for file in files:
            with open(file, encoding="utf-8") as opened:
                self.assertEqual(password in opened.read(), file.endswith(secrets), file)
            if file.endswith((*secrets, ".key")):
                self.assertEqual(os.stat(file).st_mode & 0o077, 0, file)
        for text in texts:
            self.assertNotIn(password, text)

    def assert_described(self, host):
        """The machine is as group_vars/servers.yml describes it."""
        def current(adapter, caption):
            return ask(host, "setting", "get", adapter, caption)["setting"]["current"]

        self.assertEqual(current("Zorel Gigabit Server Adapter #4", "*JumboPacket"), 4088)
        self.assertEqual(current("Zorel 10G Dual Port Server Adapter #5", "*JumboPacket"), 9014)
        self.assertEqual(current("Zorel 10G Dual Port Server Adapter #5", "*TransmitBuffers"), 1024)
        self.assertEqual(current("Zorel 10G Dual Port Server Adapter #6", "*JumboPacket"), 9014)
        self.assertEqual(current("Zorel 10G Dual Port Server Adapter #6", "*TransmitBuffers"), 512)

        teams = {team["name"]: team["mode"]["code"] for team in ask(host, "team", "list")["teams"]}
        self.assertEqual(teams, {"Front": 1, "TEAM : 4": 1})
        members = {
            member["name"]: member["role"]["text"] for member in ask(host, "team", "show", "Front")["members"]
        }
        self.assertEqual(
            members, {"Zorel Gigabit Server Adapter #3": "primary", "Zorel Gigabit Server Adapter": "secondary"}
        )
        vlans = {
            (vlan["parent"]["name"], vlan["number"], vlan["name"]) for vlan in ask(host, "vlan", "list")["vlans"]
        }
        of_teams = {
            ("Front", 100, "Web"), ("Front", 200, "Databases"), ("TEAM : 4", 0, "Untagged"), ("TEAM : 4", 5, "Drucker")
        }
        of_adapters = {
            ("Zorel 10G Dual Port Server Adapter #5", 30, "Storage A"),
            ("Zorel 10G Dual Port Server Adapter #6", 31, "Storage B"),
        }
        self.assertEqual(vlans, of_teams | of_adapters)

    def test_restarts(self):
        """The play for real machines, with a "net" that only writes down what it was told."""
        self.make_fleet(2, "server02")
        self.serve()
        programs = os.path.join(WORK, "programs")
        os.mkdir(programs)
        net = os.path.join(programs, "net")
        told = os.path.join(WORK, "told")
        with open(net, "w", encoding="utf-8") as output:
            output.write(f'#!/bin/sh\nprintf "%s\\n" "$*" >>"{told}"\n')
        os.chmod(net, 0o755)
        self.assertEqual(Play("--check", playbook="windows.yml", programs=[programs]).status, 0)
        self.assertFalse(os.path.exists(told))
        play = Play(playbook="windows.yml", programs=[programs])
        self.assertEqual(play.hosts_with("failed"), ["server02"], play.text)
        with open(os.path.join(FLEET, "inventory.yml"), encoding="utf-8") as file:
            hosts = json.load(file)["servers"]["hosts"].values()
        asked = [f"rpc shutdown -r -t 60 -S {host['quillet_machine']} --use-kerberos=required" for host in hosts]
        with open(told, encoding="utf-8") as file:
            self.assertEqual(sorted(file.read().splitlines()), asked)

    def test_the_inventory_of_real_machines(self):
        play = Play(
            "--list-hosts", playbook="windows.yml", inventory=os.path.join(EXAMPLE, "windows-inventory.yml")
        )
        self.assertEqual(play.status, 0, play.text)
        self.assertIn("hosts (2):", play.text)

    def test_a_fleet_with_one_broken_machine(self):
        self.make_fleet(len(HOSTS), BROKEN)
        self.assertEqual(self.serve(), len(HOSTS))
        fresh = states()
        self.assertEqual(sum(b"QuilletSimulator_Fault" in text for text in fresh.values()), 1)

        # What is foretold costs nothing.
        foretold = Play("--check", "--diff")
        self.assertEqual(foretold.status, 0, foretold.text)
        self.assertEqual(sorted(foretold.recap), HOSTS)
        self.assertEqual(foretold.hosts_with("changed"), HOSTS)
        self.assertEqual(foretold.hosts_with("failed"), [])
        self.assertEqual(foretold.restarts, [])
        self.assertIn('+adapter Zorel 10G Dual Port Server Adapter #6, VLAN 31: Storage B\n', foretold.text)
        self.stop()
        self.assertEqual(states(), fresh)
        self.serve()

        # One machine fails half-way and goes back, the others are none the worse for it.
        before = ask(BROKEN, "config", "show")
        first = Play()
        self.stop()
        self.assertEqual(first.status, 2, first.text)
        self.assertEqual(first.hosts_with("failed"), [BROKEN], first.text)
        self.assertEqual(first.hosts_with("unreachable"), [])
        self.assertEqual(first.restarts, WORKING)
        for host in WORKING:
            self.assertEqual(first.results[host]["changes"], foretold.results[host]["changes"], host)
            self.assert_described(host)
        failure = first.results[BROKEN]
        self.assertEqual(failure["provider_code"], "0x80041003")
        self.assertEqual(failure["provider_code_name"], "WBEM_E_ACCESS_DENIED")
        self.assertIn("11 of 13 changes were made, then: could not add VLAN 30 ", failure["msg"])
        self.assertIn("WBEM_E_ACCESS_DENIED", failure["msg"])
        self.assertTrue(failure["msg"].endswith("; everything is as it was before"), failure["msg"])
        self.assertTrue(failure["restart_required"])
        self.assertEqual(
            [failure["failed_change"]] + failure["pending_changes"], foretold.results[BROKEN]["changes"][11:]
        )
        self.assertEqual(failure["failed_change"]["what"], "VLAN 30")
        self.assertEqual((failure["changed"], failure["changes"], failure["not_restored"]), (False, [], []))
        self.assertTrue(failure["went_back"])
        self.assertEqual(ask(BROKEN, "config", "show"), before)

        # Mended, it is completed; nothing happens to the others.
        before = states()
        self.assertEqual(mend(BROKEN), 1)
        self.serve()
        second = Play()
        self.stop()
        self.assertEqual(second.status, 0, second.text)
        self.assertEqual(second.hosts_with("failed"), [])
        self.assertEqual(second.hosts_with("changed"), [BROKEN])
        self.assertEqual(second.results[BROKEN]["changes"], foretold.results[BROKEN]["changes"])
        self.assert_described(BROKEN)
        after = states()
        self.assertEqual({host: after[host] for host in WORKING}, {host: before[host] for host in WORKING})

        # And then there is nothing left to do anywhere.
        self.serve()
        third = Play("-vvv")
        self.stop()
        self.assertEqual(third.status, 0, third.text)
        self.assertEqual(sorted(third.recap), HOSTS)
        self.assertEqual(third.hosts_with("changed"), [])
        self.assertEqual(third.hosts_with("failed"), [])
        self.assertEqual(third.restarts, [])
        self.assert_secret(foretold.text, first.text, second.text, third.text)
        self.assertEqual(states(), after)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
