#!/usr/bin/env python3
"""Clients that are not ours, over HTTPS with a password: curl, and Debian's wsl."""
import os
import re
import shutil
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
import served  # noqa: E402
from served import CLASSES, ENUMERATION, IDENTIFY, TRANSFER, envelope, texts  # noqa: E402

ADAPTERS = CLASSES + "Zorel_PhysicalEthernetAdapter"
WQL = "http://schemas.microsoft.com/wbem/wsman/1/WQL"
CLASS_AS_XML = "http://schemas.dmtf.org/wbem/cim-xml/2/cim-schema/2/*"


class CurlTest(served.ServingTest):
    def setUp(self):
        super().setUp()
        self.write("curl.conf", f'user = "tester:{served.PASSWORD}"\ncacert = "cert.pem"\nsilent\nshow-error\n', 0o600)
        _, self.url = self.start_secure()

    def curl(self, *words, message=None):
        if message is not None:
            self.write("message.xml", message)
            words = (*words, "--data-binary", "@message.xml", "-H", "Content-Type: application/soap+xml;charset=UTF-8")
        return subprocess.run(["curl", "--config", "curl.conf", *words, self.url], cwd=self.folder, capture_output=True,
                              text=True, timeout=60, check=False)

    def tell(self, *parts, **more):
        """The answer to a message."""
        done = self.curl("--fail-with-body", message=envelope(*parts, **more))
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def test_identify(self):
        self.assertIn("ProtocolVersion>http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd<", self.curl(message=IDENTIFY).stdout)

    def test_only_tls_that_the_client_trusts(self):
        for words, status in ((("--cacert", "/dev/null"), 77), (("--tls-max", "1.1"), 35)):
            self.assertEqual(self.curl(*words, message=IDENTIFY).returncode, status, words)
        plain = subprocess.run(["curl", "-sS", self.url.replace("https", "http")], capture_output=True, text=True,
                               timeout=60, check=False)
        self.assertIn((plain.returncode, plain.stdout), ((52, ""), (56, "")))  # nothing came, or a reset
        self.assertIn("ProtocolVersion", self.curl("--tlsv1.3", message=IDENTIFY).stdout)

    def test_a_wrong_password(self):
        for user in ("tester:wrong", "nobody:wrong"):
            done = self.curl("-w", "%{http_code}", "-u", user, message=IDENTIFY)
            self.assertEqual(done.stdout, "401")
        log = (self.folder / "log.txt").read_text(encoding="utf-8")
        self.assertEqual(log.count(" 401 "), 2)
        self.assertNotIn("wrong", log)

    def test_enumerate_pull_and_get(self):
        begun = self.tell(ENUMERATION + "Enumerate", ADAPTERS, body="<n:Enumerate/>")
        names, context = [], texts(begun, "EnumerationContext")
        while context:
            pulled = self.tell(ENUMERATION + "Pull", ADAPTERS, body=f"<n:Pull><n:EnumerationContext>{context[0]}"
                               "</n:EnumerationContext><n:MaxElements>3</n:MaxElements></n:Pull>")
            names += texts(pulled, "DeviceID")
            context = texts(pulled, "EnumerationContext")
        self.assertEqual(len(set(names)), 10)
        got = self.tell(TRANSFER + "Get", ADAPTERS, {"DeviceID": names[3]})
        self.assertEqual(texts(got, "DeviceID"), [names[3]])
        query = (f'<n:Enumerate><w:OptimizeEnumeration/><w:MaxElements>50</w:MaxElements><w:Filter Dialect="{WQL}">'
                 f"SELECT * FROM Zorel_PhysicalEthernetAdapter WHERE DeviceID = '{names[3]}'</w:Filter></n:Enumerate>")
        found = self.tell(ENUMERATION + "Enumerate", CLASSES + "*", body=query)
        self.assertEqual(texts(found, "DeviceID"), [names[3]])

    def test_invoke(self):
        service = CLASSES + "Zorel_802dot1QVLANService"
        listed = self.tell(ENUMERATION + "Enumerate", service, body="<n:Enumerate><w:OptimizeEnumeration/></n:Enumerate>")
        body = (f'<p:CreateVLAN_INPUT xmlns:p="{service}"><p:Name>Voice</p:Name><p:VLANNumber>77</p:VLANNumber>'
                "</p:CreateVLAN_INPUT>")
        made = self.tell(service + "/CreateVLAN", service, {"Name": texts(listed, "Name")[0]}, body)
        self.assertEqual(texts(made, "ReturnValue"), ["0"])
        vlan = self.tell(TRANSFER + "Get", CLASSES + "Zorel_VLAN", {"Name": texts(made, "VLANPath")[0].split('"')[1]})
        self.assertEqual((texts(vlan, "VLANNumber"), texts(vlan, "Caption")), (["77"], ["10G Storage A - VLAN : Voice"]))

    def test_put(self):
        resource = CLASSES + "Zorel_AdapterSettingInt"
        listed = self.tell(ENUMERATION + "Enumerate", resource, body="<n:Enumerate><w:OptimizeEnumeration/>"
                           "<w:EnumerationMode>EnumerateEPR</w:EnumerationMode></n:Enumerate>")
        keys = dict(re.findall(r'Selector Name="(\w+)">([^<]*)<', listed))
        got = self.tell(TRANSFER + "Get", resource, keys)
        instance = re.search(r"<s:Body>(.*)</s:Body>", got, re.DOTALL).group(1)
        values = {texts(got, "CurrentValue")[0], texts(got, "Min")[0], texts(got, "Max")[0]}
        wanted = next(value for value in sorted(values) if [value] != texts(got, "CurrentValue"))
        changed = re.sub(r"(CurrentValue>)[^<]*", rf"\g<1>{wanted}", instance)
        space = 'xmlns:cim="http://schemas.dmtf.org/wbem/wscim/1/common"'
        self.tell(TRANSFER + "Put", resource, keys, changed.replace(" xmlns:p=", f" {space} xmlns:p=", 1))
        self.assertEqual(texts(self.tell(TRANSFER + "Get", resource, keys), "CurrentValue"), [wanted])

    def test_a_class(self):
        told = self.tell(TRANSFER + "Get", CLASS_AS_XML,
                         {"__cimnamespace": "root/MarloLUM2", "ClassName": "Zorel_VLAN"})
        self.assertIn('<PROPERTY NAME="VLANNumber"', told)

    def test_chunks_and_many_requests_on_one_connection(self):
        self.write("message.xml", envelope(ENUMERATION + "Enumerate", ADAPTERS, body="<n:Enumerate/>"))
        done = subprocess.run(["curl", "--config", "curl.conf", "-w", "%{http_code} %{num_connects}\\n",
                               "-H", "Content-Type: text/xml", "--data-binary", "@message.xml",
                               *[self.url, "-o", "/dev/null"] * 20],
                              cwd=self.folder, capture_output=True, text=True, timeout=60, check=True)
        self.assertEqual(done.stdout.split("\n")[:-1], ["200 1"] + ["200 0"] * 19)
        chunked = self.curl("-w", "%{http_code}", "-o", "/dev/null", "-H", "Transfer-Encoding: chunked", message=IDENTIFY)
        self.assertEqual(chunked.stdout, "200")
        large = self.curl("-w", "%{http_code}", "-o", "/dev/null", message="x" * 2_000_000)
        self.assertEqual(large.stdout, "413")


@unittest.skipUnless(shutil.which("wsl"), "wsl is not installed; scripts/setup does that")
class WslTest(served.ServingTest):
    """It gives the password to curl on its command line: one that protects nothing."""

    def setUp(self):
        super().setUp()
        self.write("password", "dummy\n", 0o600)
        self.write("lab.mof", served.lab_machine())
        _, url = self.start_secure("lab.mof")
        place = url.split("/")[2].replace("127.0.0.1", "localhost")
        shutil.copy(self.folder / "cert.pem", self.folder / f"{place}.crt")
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(self.folder), "SHELL": "/bin/bash", "TERM": "dumb",
                            "WSENDPOINT": place, "WSUSER": "tester", "WSPASS": "dummy", "KEEPHISTORY": "0"}

    def wsl(self, *words):
        done = subprocess.run(words, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def test_it_asks_for_everything_that_it_can(self):
        self.assertIn("ProtocolVersion", self.wsl("wslid", "check"))
        listed = self.wsl("wslenum", ADAPTERS, "-opti", "1")
        for name in ("Left", "Right"):
            self.assertIn(name, listed)
        found = self.wsl("wslenum", CLASSES + "*", "-dialect", WQL, "-filter",
                         "select * from Zorel_PhysicalEthernetAdapter where Name = 'Right'")
        self.assertIn("Right", found)
        self.assertNotIn("Left port", found)
        self.assertIn("Left port", self.wsl("wslget", ADAPTERS, "DeviceID={00000000-0000-0000-0000-00000000000A}"))
        service = CLASSES + "Zorel_802dot1QVLANService"
        self.write("service.epr", "<wsa:EndpointReference>\n<wsa:ReferenceParameters>\n"
                   f"<wsman:ResourceURI>{service}</wsman:ResourceURI>\n<wsman:SelectorSet>\n"
                   '<wsman:Selector Name="Name">{00000000-0000-0000-0000-00000000000A}</wsman:Selector>\n'
                   "</wsman:SelectorSet>\n</wsa:ReferenceParameters>\n</wsa:EndpointReference>\n")
        made = self.wsl("wslinvoke", service, "CreateVLAN", "VLANNumber=12", "Name=Voice", "-inst", "service.epr")
        self.assertRegex(made, r"ReturnValue\W+0")
        self.assertIn("Voice", self.wsl("wslenum", CLASSES + "Zorel_VLAN", "-opti", "50"))


if __name__ == "__main__":
    served.main()
