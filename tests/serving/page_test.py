#!/usr/bin/env python3
"""What docs/simulator.md and docs/remote.md show of the program: their blocks are run in order, in one folder, at a free port."""
import difflib
import socket
import subprocess
import sys

sys.dont_write_bytecode = True
import served  # noqa: E402

sys.path.insert(0, str(served.SOURCE / "tests" / "docs"))
import documents  # noqa: E402
import shell_session  # noqa: E402


class PageTest(served.ServingTest):
    def setUp(self):
        super().setUp()
        for path in self.folder.iterdir():
            path.unlink()  # the page makes its own
        self.session = shell_session.ShellSession(
            served.SOURCE, self.folder, [str(served.SIMULATOR.parent), str(served.QUILLETCTL.parent)])
        with socket.create_server(("127.0.0.1", 0)) as free, socket.create_server(("127.0.0.1", 0)) as other:
            self.ports = {"5985": str(free.getsockname()[1]), "5986": str(other.getsockname()[1])}

    def at_free_ports(self, text):
        for shown, port in self.ports.items():
            text = text.replace(f":{shown}/", f":{port}/").replace(f"--port {shown}", f"--port {port}")
        return text

    def serve(self, command):
        """Starts a server as the page does; what it prints."""
        port = self.ports["5986" if "--tls" in command.text else "5985"]
        process = subprocess.Popen(["bash", "-c", f"exec {command.text} --listen 127.0.0.1:{port}"], cwd=self.folder,
                                   env=self.session.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return [process.stdout.readline().rstrip("\n") for _ in command.expected]

    def compare(self, command, lines):
        expected = [self.at_free_ports(line) for line in command.expected]
        self.assertTrue(shell_session.matches(expected, lines), "\n".join(
            difflib.unified_diff(expected, lines, f"line {command.line}", "as it is", lineterm="")))

    def test_the_page_of_the_simulator(self):
        self.try_page("simulator.md")

    def test_the_page_of_machines_over_the_network(self):
        self.try_page("remote.md")

    def try_page(self, page):
        document = documents.Document(served.SOURCE, served.SOURCE / "docs" / page)
        for name, text in documents.described_files(document).items():
            self.write(name, text)
        tried = 0
        for block in document.blocks:
            directive = documents.SERVED.match(block.directive)
            if not directive:
                continue
            if directive.group(1):
                self.write(directive.group(1), block.text)
                continue
            commands = shell_session.console_commands(block)
            tried += len(commands)
            if commands[0].text.startswith("quillet-simulator "):
                self.assertEqual(len(commands), 1)
                self.compare(commands[0], self.serve(commands[0]))
                continue
            for command in commands:
                command.text = self.at_free_ports(command.text)
            for command, (status, lines) in zip(commands, self.session.run(commands)):
                self.assertEqual(status, 0, f"{command.text}: {lines}")
                self.compare(command, lines)
        self.assertGreaterEqual(tried, 8)


if __name__ == "__main__":
    served.main()
