#!/usr/bin/env python3
"""The program: its options, what it keeps, how it ends."""
import os
import shutil
import signal
import socket
import subprocess
import sys
import threading
import unittest

sys.dont_write_bytecode = True
import served  # noqa: E402
from served import CLASSES, SIMULATOR, TRANSFER, texts  # noqa: E402

ADAPTER = "{00000000-0000-0000-0000-00000000000A}"
FAULT = """
instance of QuilletSimulator_Fault {{ Id = 1; Operation = "ExecMethod"; MethodName = "CreateVLAN"; {0} }};
"""


class ProgramTest(served.ServingTest):
    def setUp(self):
        super().setUp()
        self.write("lab.mof", served.lab_machine())

    def test_help_fits_eighty_columns(self):
        done = subprocess.run([SIMULATOR, "--help"], capture_output=True, text=True, check=True)
        self.assertIn("--password-fd N", done.stdout)
        self.assertLessEqual(max(map(len, done.stdout.splitlines())), 80)

    @unittest.skipUnless(shutil.which("systemd-analyze"), "this computer has no systemd")
    def test_the_unit_is_one(self):
        done = subprocess.run(["systemd-analyze", "verify", served.SOURCE / "serving" / "quillet-simulator.service"],
                              capture_output=True, text=True, check=False)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_others_are_let_in_with_tls_and_a_password_only(self):
        self.write("users", "tester:x\n", 0o600)
        tls = ("--tls", "cert.pem", "key.pem")
        for address in ("0.0.0.0:0", "[::]:0", "192.0.2.1:0", "lab.example:0"):
            for words in ((), tls, ("--users", "users")):
                self.assertIn("others can reach this address", self.refused("--listen", address, *words))
        self.start("--listen", "0.0.0.0:0", "--users", "users", *tls)

    def test_mistakes_are_told(self):
        self.write("broken.mof", 'instance of Zorel_VLAN {\n    Name = "{V}";\n    VLANNummer = 12;\n};\n')
        self.assertEqual(self.refused("broken.mof"),
                         "broken.mof:3:5: property 'VLANNummer' is not in class 'Zorel_VLAN'")
        self.assertEqual(self.refused("none.mof"), "none.mof: no such file")
        for words in (["--listen", "127.0.0.1:65536"], ["--listen", "::1"], ["--listen", ":1"], ["--listen", "[::1"],
                      ["--nonsense"], ["--tls", "cert.pem"], ["--user", "a"], ["--password-file", "password"],
                      ["--user", "a", "--password-file", "password", "--password-fd", "0"],
                      ["lab.mof", "builtin", "--state", "x.mof"], ["lab.mof", "./lab.mof"],
                      ["lab.mof", "--journal", "/nonexistent/calls"], ["--state", "/nonexistent/lab.mof"]):
            self.refused(*words)
        with socket.create_server(("127.0.0.1", 0)) as taken:
            place = f"127.0.0.1:{taken.getsockname()[1]}"
            self.assertEqual(self.refused("--listen", place, status=1), f"{place}: Address already in use")

    def test_keys_that_do_not_fit_are_told(self):
        for name, words in (("other.pem", ()), ("locked.pem", ("-aes256", "-pass", "pass:x"))):
            subprocess.run(["openssl", "genpkey", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256", "-out", name,
                            *words], cwd=self.folder, check=True, capture_output=True)
            said = self.refused("--tls", "cert.pem", name, "--listen", "127.0.0.1:0", status=1)
            self.assertIn(f"{name}: this is not the certificate's key", said)
        said = self.refused("--tls", "lab.mof", "key.pem", "--listen", "127.0.0.1:0", status=1)
        self.assertIn("lab.mof: this is no certificate", said)

    def test_passwords_are_their_owners_alone(self):
        words = ("--listen", "127.0.0.1:0", "--user", "tester", "--password-file")
        self.write("open", served.PASSWORD, 0o640)
        self.assertIn("mode 0600", self.refused(*words, "open"))
        self.assertIn("No such file", self.refused(*words, "nowhere"))
        self.write("empty", "\n", 0o600)
        self.assertIn("is empty", self.refused(*words, "empty"))
        self.write("long", "x" * 100_000, 0o600)
        self.assertIn("too long", self.refused(*words, "long"))
        for text, said in (("# nobody\n\n", "there is no user in it"), ("a:b\nnonsense\n", "users:2: "),
                           (f"a:{served.PASSWORD}\na:c\n", "users:2: there are two passwords for a"),
                           ("a:\n", "users:1: the password of a is empty")):
            self.write("users", text, 0o600)
            self.assertIn(said, self.refused("--users", "users", "--listen", "127.0.0.1:0"))

    def test_a_password_comes_from_a_descriptor_too(self):
        self.write("users", "# others\nzoë:a:b\n", 0o600)
        with open(self.folder / "password", "rb") as file:
            process = subprocess.Popen(
                [SIMULATOR, "--listen", "127.0.0.1:0", "--user", "tester", "--password-fd", str(file.fileno()), "--users",
                 "users"], cwd=self.folder, pass_fds=[file.fileno()], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        url = process.stdout.readline().split()[-1]
        for user, status in ((f"tester:{served.PASSWORD}", "200"), ("zoë:a:b", "200"), ("zoë:a", "401")):
            done = subprocess.run(["curl", "-sS", "-o", "/dev/null", "-w", "%{http_code}", "-u", user, "-H",
                                   "Content-Type: text/xml", "-d", served.IDENTIFY, url],
                                  capture_output=True, text=True, check=True)
            self.assertEqual(done.stdout, status, user)

    def test_several_machines_are_apart(self):
        self.write("rack2.mof", served.lab_machine().replace('"Left"', '"Other"'))
        _, urls = self.start("lab.mof", "rack2.mof", "builtin", "--journal", "calls.txt", machines=3)
        self.assertEqual([url.split("/", 3)[3] for url in urls], ["lab/wsman", "rack2/wsman", "builtin/wsman"])
        for url, name in zip(urls, ("Left", "Other")):
            resource = CLASSES + "Zorel_PhysicalEthernetAdapter"
            status, answer = self.ask(url, TRANSFER + "Get", resource, {"DeviceID": ADAPTER})
            self.assertEqual((status, texts(answer, "Name")), (200, [name]))
        self.assertEqual(self.ask(urls[0].replace("/lab", ""), TRANSFER + "Get", "x")[0], 404)
        calls = (self.folder / "calls.txt").read_text(encoding="utf-8").splitlines()
        self.assertEqual([call.split(" ")[:2] for call in calls], [["lab:", "GetObject"], ["rack2:", "GetObject"]])

    def test_faults_of_the_machine_act_and_the_journal_tells(self):
        self.write("fault.mof", '#pragma include ("lab.mof")' + FAULT.format('Effect = "Fail"; Code = 0x80070005;'))
        _, [url] = self.start("fault.mof", "--journal", "calls.txt")
        status, answer = self.create_vlan(url, ADAPTER, 12, "Voice")
        self.assertEqual((status, texts(answer, "error_Code")), (500, [str(0x80070005)]))
        status, answer = self.create_vlan(url, ADAPTER, 12, "Voice")
        self.assertEqual((status, texts(answer, "ReturnValue")), (200, ["0"]))
        calls = (self.folder / "calls.txt").read_text(encoding="utf-8")
        self.assertEqual(served.re.findall(r"CreateVLAN\(.* -> (\w+)", calls), ["0x80070005", "0x00000000"])
        log = self.folder / "log.txt"
        for said in ("500 w:AccessDenied 0x80070005", "200 ok"):
            line = rf" - 127\.0\.0\.1:\d+ CreateVLAN Zorel_802dot1QVLANService {said} \d+ ms\n"
            self.wait_for(lambda line=line: served.re.search(line, log.read_text(encoding="utf-8")), said)

    def vlans(self):
        done = subprocess.run([served.QUILLETCTL, "--simulate", "state.mof", "vlan", "list", "Left"], cwd=self.folder,
                              capture_output=True, text=True, check=True)
        return done.stdout

    def test_the_state_stays(self):
        state = self.folder / "state.mof"
        process, [url] = self.start("lab.mof", "--state", "state.mof", "--quiet")
        self.assertEqual(state.stat().st_mode & 0o777, 0o600)
        self.assertEqual(self.create_vlan(url, ADAPTER, 12, "Voice")[0], 200)
        self.wait_for(lambda: "Voice" in state.read_text(encoding="utf-8"), "a change is written while it runs")
        self.assertEqual(self.create_vlan(url, ADAPTER, 13, "Guests")[0], 200)
        process.terminate()
        self.assertEqual(process.wait(30), 0)
        self.assertIn("Guests", self.vlans())
        process, [url] = self.start("lab.mof", "--state", "state.mof")
        self.assertEqual(self.create_vlan(url, ADAPTER, 14, "Third")[0], 200)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(30), 0)
        for name in ("Voice", "Guests", "Third"):
            self.assertIn(name, self.vlans())
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         ["cert.pem", "key.pem", "lab.mof", "log.txt", "password", "state.mof"])

    def wait_for_work(self, process):
        """Until a request has a thread that answers it, besides those of the program, the listener and the connection."""
        self.wait_for(lambda: len(os.listdir(f"/proc/{process.pid}/task")) >= 4, "nobody answers")

    def test_the_first_signal_lets_answers_go_out_and_the_second_does_not(self):
        self.write("slow.mof", '#pragma include ("lab.mof")' + FAULT.format('Effect = "Delay"; Milliseconds = 700;'))
        process, [url] = self.start("slow.mof", "--journal", "calls.txt")
        answers = []
        asking = threading.Thread(target=lambda: answers.append(self.create_vlan(url, ADAPTER, 12, "Voice")[0]))
        asking.start()
        self.wait_for_work(process)
        process.terminate()
        self.assertEqual(process.wait(30), 0)
        asking.join()
        self.assertEqual(answers, [200])

        self.write("slow.mof", '#pragma include ("lab.mof")' + FAULT.format('Effect = "Delay"; Milliseconds = 60000;'))
        process, [url] = self.start("slow.mof")

        def give_up():
            try:
                self.create_vlan(url, ADAPTER, 12, "Voice")
            except OSError as failure:
                answers.append(failure)

        asking = threading.Thread(target=give_up)
        asking.start()
        self.wait_for_work(process)
        process.terminate()
        with self.assertRaises(subprocess.TimeoutExpired):
            process.wait(0.3)
        process.terminate()
        self.assertEqual(process.wait(30), -signal.SIGTERM)
        asking.join()
        self.assertEqual(len(answers), 2)


if __name__ == "__main__":
    served.main()
