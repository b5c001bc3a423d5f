"""Runs the commands of a document in one folder, as its reader would, and compares what they print."""
import dataclasses
import fcntl
import os
import pathlib
import pty
import re
import struct
import subprocess
import termios
import uuid


@dataclasses.dataclass
class Command:
    line: int
    text: str
    expected: list  # lines of output; None: not shown


def console_commands(block):
    """The commands of a block that shows output: "$ " begins one, "> " goes on with it."""
    commands = []
    for offset, line in enumerate(block.text.splitlines()):
        if line.startswith("$ "):
            commands.append(Command(block.line + offset, line[2:], []))
        elif line.startswith("> ") and commands and not commands[-1].expected:
            commands[-1].text += "\n" + line[2:]
        elif commands:
            commands[-1].expected.append(line)
        else:
            raise ValueError("output without a command")
    return commands


def script_commands(block):
    """The commands of a block without output, a line each, but for those that end in a backslash."""
    commands, text = [], ""
    for offset, line in enumerate(block.text.splitlines()):
        text += line + "\n"
        if line.endswith("\\"):
            continue
        command = re.sub(r"(^|\s)#.*$", "", text, flags=re.MULTILINE).strip()
        if command:
            commands.append(Command(block.line + offset, command, None))
        text = ""
    return commands


def matches(expected, actual):
    """Compares lines. An ellipsis stands for anything within a line; a line of its own for any lines."""
    pattern = ""
    for line in expected:
        if line.strip() in ("…", "..."):
            pattern += r"(?:.*\n)*"
        else:
            pattern += re.sub(r"…|\\\.\\\.\\\.", ".*", re.escape(line.rstrip())) + r"[ ]*\n"
    return re.fullmatch(pattern, "".join(line + "\n" for line in actual)) is not None


class ShellSession:
    """One folder and one environment; every call is a shell of its own, so "cd" and variables last for a block."""

    def __init__(self, root, folder, programs):
        self.folder = pathlib.Path(folder)
        self.environment = {key: value for key, value in os.environ.items()
                            if not key.startswith(("QUILLET", "NO_COLOR", "LC_"))}
        self.environment |= {"PATH": os.pathsep.join([*programs, os.environ["PATH"]]), "LANG": "C.UTF-8",
                             "TMPDIR": str(folder), "COLUMNS": "200",
                             "ANSIBLE_HOME": f"{folder}/ansible", "ANSIBLE_REMOTE_TEMP": f"{folder}/ansible/remote"}
        # A reader's commands name scripts and examples from the root of the tree.
        for name in ("scripts", "examples"):
            (self.folder / name).symlink_to(root / name)

    def run(self, commands, terminal=False):
        """Yields for each command its status and the lines that it printed."""
        mark = uuid.uuid4().hex
        script = "status=0\n" + "".join(
            f"(exit $status)\n{command.text}\nstatus=$?; printf '\\n{mark} %d\\n' $status\n" for command in commands)
        output = self._on_a_terminal(script) if terminal else self._into_a_pipe(script)
        parts = re.split(rf"\n{mark} (\d+)\n", output.decode("utf-8", "replace"))
        for index, _ in enumerate(commands):
            if 2 * index + 1 >= len(parts):
                yield None, [*parts[-1].splitlines(), "(the shell has ended)"]
                return
            yield int(parts[2 * index + 1]), parts[2 * index].splitlines()

    def _into_a_pipe(self, script):
        return subprocess.run(["bash", "-c", script], cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300, check=False).stdout

    def _on_a_terminal(self, script):
        """What a terminal of 80 columns without colours shows. Nobody is there to answer a question."""
        screen, terminal = pty.openpty()
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
        with subprocess.Popen(["bash", "-c", script], cwd=self.folder, env=self.environment | {"NO_COLOR": "1"},
                              stdin=subprocess.DEVNULL, stdout=terminal, stderr=terminal):
            os.close(terminal)
            output = b""
            try:
                while part := os.read(screen, 65536):
                    output += part
            except OSError:  # how Linux says that nobody has the terminal open any more
                pass
        os.close(screen)
        return output.replace(b"\r\n", b"\n")
