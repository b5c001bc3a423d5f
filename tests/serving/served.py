"""Starts quillet-simulator, and asks it. The tests beside this get SOURCE_DIR SIMULATOR QUILLETCTL."""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import unittest
import urllib.error
import urllib.request
import uuid
import xml.etree.ElementTree as xml

SOURCE, SIMULATOR, QUILLETCTL = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
PASSWORD = "correct horse: staple"
CLASSES = "http://schemas.microsoft.com/wbem/wsman/1/wmi/root/MarloLUM2/"
TRANSFER = "http://schemas.xmlsoap.org/ws/2004/09/transfer/"
ENUMERATION = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/"
ENVELOPE = """<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"
 xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing" xmlns:w="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"
 xmlns:n="http://schemas.xmlsoap.org/ws/2004/09/enumeration" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
<s:Header><a:Action>{action}</a:Action><a:MessageID>uuid:{id}</a:MessageID><a:ReplyTo>
<a:Address>http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous</a:Address></a:ReplyTo>
<w:ResourceURI>{resource}</w:ResourceURI>{header}<w:SelectorSet>{selectors}</w:SelectorSet></s:Header>
<s:Body>{body}</s:Body></s:Envelope>"""
IDENTIFY = """<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"><s:Header/><s:Body>
<i:Identify xmlns:i="http://schemas.dmtf.org/wbem/wsman/identity/1/wsmanidentity.xsd"/></s:Body></s:Envelope>"""


def envelope(action, resource, keys=(), body="", header=""):
    selectors = "".join(f'<w:Selector Name="{name}">{value}</w:Selector>' for name, value in dict(keys).items())
    return ENVELOPE.format(action=action, id=uuid.uuid4(), resource=resource, selectors=selectors, body=body,
                           header=header)


def texts(answer, name):
    """The texts of all elements of a local name."""
    return [each.text for each in xml.fromstring(answer).iter() if each.tag.split("}")[1] == name]


class ServingTest(unittest.TestCase):
    """A folder for each test, with a certificate, its key and a password in it."""

    @classmethod
    def setUpClass(cls):
        holder = tempfile.TemporaryDirectory(prefix="quillet-serving-")
        cls.addClassCleanup(holder.cleanup)
        cls.tls = pathlib.Path(holder.name)
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes",
                        "-days", "2", "-subj", "/CN=lab", "-addext", "subjectAltName=DNS:localhost,IP:127.0.0.1",
                        "-keyout", "key.pem", "-out", "cert.pem"], cwd=cls.tls, check=True, capture_output=True)

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quillet-serving-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name in ("cert.pem", "key.pem"):
            (self.folder / name).write_bytes((self.tls / name).read_bytes())
        self.write("password", PASSWORD + "\n", 0o600)

    def write(self, name, text, mode=0o644):
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        path.chmod(mode)
        return name

    def start(self, *words, machines=1):
        """Starts it at a free port; its process and the URLs that it serves."""
        if "--listen" not in words:
            words = (*words, "--listen", "127.0.0.1:0")
        log = open(self.folder / "log.txt", "w", encoding="utf-8")
        self.addCleanup(log.close)
        process = subprocess.Popen([SIMULATOR, *words], cwd=self.folder, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=log, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        urls = []
        while len(urls) < machines:
            line = process.stdout.readline()
            found = re.fullmatch(r"serving \S+ at (https?://\S+/wsman)\n", line)
            self.assertTrue(found, f"{line!r} {(self.folder / 'log.txt').read_text(encoding='utf-8')}")
            urls.append(found.group(1))
        return process, urls

    def start_secure(self, *words):
        process, urls = self.start(*words, "--tls", "cert.pem", "key.pem", "--user", "tester", "--password-file",
                                   "password")
        return process, urls[0]

    def refused(self, *words, status=2):
        """What it says where it does not start."""
        done = subprocess.run([SIMULATOR, *words], cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=60, check=False)
        self.assertEqual((done.returncode, done.stdout), (status, ""), done.stderr)
        self.assertTrue(done.stderr.startswith("quillet-simulator: "), done.stderr)
        self.assertNotIn(PASSWORD, done.stderr)
        return done.stderr.removeprefix("quillet-simulator: ").rstrip("\n")

    def ask(self, url, *parts, **more):
        """The answer, whatever its status, through Python's own HTTP."""
        message = envelope(*parts, **more)
        request = urllib.request.Request(url, message.encode(), {"Content-Type": "application/soap+xml;charset=UTF-8"})
        try:
            with urllib.request.urlopen(request, timeout=60) as answer:
                return answer.status, answer.read().decode()
        except urllib.error.HTTPError as failure:
            with failure:
                return failure.code, failure.read().decode()

    def create_vlan(self, url, adapter, number, name):
        service = CLASSES + "Zorel_802dot1QVLANService"
        body = (f'<p:CreateVLAN_INPUT xmlns:p="{service}"><p:VLANNumber>{number}</p:VLANNumber>'
                f"<p:Name>{name}</p:Name></p:CreateVLAN_INPUT>")
        return self.ask(url, service + "/CreateVLAN", service, {"Name": adapter}, body)

    def wait_for(self, condition, what):
        deadline = time.monotonic() + 30
        while not condition():
            self.assertLess(time.monotonic(), deadline, what)
            time.sleep(0.02)


def lab_machine():
    """The machine of docs/simulator.md."""
    page = (SOURCE / "docs" / "simulator.md").read_text(encoding="utf-8")
    return re.search(r"<!-- test: file lab\.mof -->\n```mof\n(.*?)```", page, re.DOTALL).group(1)


def main():
    os.environ["LC_ALL"] = "C.UTF-8"
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
