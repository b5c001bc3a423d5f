#!/usr/bin/env python3
"""quilletctl monitor watches a machine over the network, which goes away and comes back."""
import json
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
import served  # noqa: E402


class MonitorTest(served.ServingTest):
    def test_a_machine_that_is_killed_and_restarted(self):
        words = ("--state", "rack.mof", "--tls", "cert.pem", "key.pem", "--user", "tester", "--password-file", "password")
        process, urls = self.start(*words)
        port = urls[0].split("/")[2].split(":")[1]
        reading, writing = served.os.pipe()
        served.os.write(writing, (served.PASSWORD + "\n").encode())
        served.os.close(writing)
        remote = ["--machine", "localhost", "--port", port, "--user", "tester", "--auth", "basic", "--ca", "cert.pem"]
        watched = subprocess.Popen([served.QUILLETCTL, *remote, "--password-fd", str(reading), "--json", "monitor",
                                    "--interval", "1"], cwd=self.folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True, pass_fds=(reading,))
        self.addCleanup(watched.communicate)
        self.addCleanup(watched.kill)
        served.os.close(reading)

        def event():
            line = json.loads(watched.stdout.readline())
            return line["event"], line["kind"], line["name"], line["to"]

        self.assertEqual(event(), ("started", "machine", "localhost", None))
        process.kill()
        process.wait()
        gone = event()
        self.assertEqual(gone[:3], ("gone", "machine", "localhost"))
        self.assertIn("nobody answers", gone[3])
        # Meanwhile it changes: what was missed is told as well.
        state = ["--state", "rack.mof"] if (self.folder / "rack.mof").exists() else ["--simulate", "--state", "rack.mof"]
        subprocess.run([served.QUILLETCTL, *state, "vlan", "add", "Zorel 10G Dual Port Server Adapter", "77", "Voice"],
                       cwd=self.folder, check=True, capture_output=True, timeout=60)
        self.start(*words, "--listen", f"127.0.0.1:{port}")
        self.assertEqual(event(), ("back", "machine", "localhost", None))
        self.assertEqual(event(), ("appeared", "vlan", '77 "Voice"', "enabled"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
