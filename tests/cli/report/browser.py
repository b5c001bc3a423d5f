"""A page in headless Chromium, over its debugging pipe."""
import base64
import json
import os
import pathlib
import select
import shutil
import subprocess
import tempfile
import time

PATIENCE = 60


class Browser:
    """One tab. What it was told by the page's console is in `complaints`."""

    def __init__(self, program):
        self.profile = tempfile.mkdtemp(prefix="quillet-browser-")
        commands, self.commands = os.pipe()
        self.answers, answers = os.pipe()
        # Chromium reads commands from descriptor 3 and writes answers to 4.
        script = f"exec 3<&{commands} 4>&{answers}; exec \"$@\""
        self.process = subprocess.Popen(
            ["bash", "-c", script, "bash", program, "--headless", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
             "--disable-dev-shm-usage", "--no-first-run", f"--user-data-dir={self.profile}", "about:blank"],
            pass_fds=(commands, answers), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(commands)
        os.close(answers)
        self.pending, self.number, self.session, self.complaints, self.events = b"", 0, None, [], []
        target = self.tell("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.tell("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log"):
            self.tell(f"{domain}.enable")

    def close(self):
        self.process.terminate()
        self.process.wait(timeout=PATIENCE)
        os.close(self.commands)
        os.close(self.answers)
        shutil.rmtree(self.profile, ignore_errors=True)

    def message(self, deadline):
        while b"\0" not in self.pending:
            ready, _, _ = select.select([self.answers], [], [], max(0, deadline - time.monotonic()))
            part = os.read(self.answers, 1 << 16) if ready else b""
            if not part:
                raise RuntimeError("the browser does not answer")
            self.pending += part
        text, self.pending = self.pending.split(b"\0", 1)
        message = json.loads(text)
        if message.get("method") in ("Runtime.exceptionThrown", "Runtime.consoleAPICalled", "Log.entryAdded"):
            self.complaints.append(json.dumps(message["params"]))
        if "method" in message:
            self.events.append(message["method"])
        return message

    def tell(self, method, **parameters):
        self.number += 1
        command = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            command["sessionId"] = self.session
        data = json.dumps(command).encode() + b"\0"
        while data:
            data = data[os.write(self.commands, data):]
        deadline = time.monotonic() + PATIENCE
        while True:
            answer = self.message(deadline)
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]

    def open(self, file, width, scheme="light", height=900):
        self.tell("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        self.tell("Emulation.setEmulatedMedia", media="screen", features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.events.clear()
        self.tell("Page.navigate", url=pathlib.Path(file).resolve().as_uri())
        deadline = time.monotonic() + PATIENCE
        while "Page.loadEventFired" not in self.events:
            self.message(deadline)

    def ask(self, expression):
        """The value of an expression in the page."""
        answer = self.tell("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(str(answer["exceptionDetails"]))
        return answer["result"].get("value")

    def press_tab(self):
        for kind in ("keyDown", "keyUp"):
            self.tell("Input.dispatchKeyEvent", type=kind, key="Tab", code="Tab", windowsVirtualKeyCode=9)

    def photograph(self, file):
        data = self.tell("Page.captureScreenshot", captureBeyondViewport=True)["data"]
        pathlib.Path(file).write_bytes(base64.b64decode(data))
