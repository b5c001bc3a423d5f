#!/usr/bin/env python3
"""Uses the packages as docs/packages.md shows, and builds somebody else's project with them.

Usage: use.py ROOT PACKAGES [FOLDER]

With FOLDER, the packages are unpacked there; without it they are installed and removed as the page says.
"""
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(sys.argv[1])
sys.path.insert(0, str(ROOT / "tests" / "docs"))
import documents  # noqa: E402
import shell_session  # noqa: E402

PROBE = """cmake_minimum_required(VERSION 3.25)
project(Probe LANGUAGES CXX)
find_package(Quillet 0.1 REQUIRED COMPONENTS {})
"""


def output_of(*command, expected=0, **more):
    done = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          check=False, **more)
    if done.returncode != expected:
        sys.exit(f"{' '.join(map(str, command))}\nended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class Page:
    """The page of the packages: its blocks are done in order, in one folder."""

    def __init__(self, packages, folder, world):
        self.packages, self.folder, self.world = packages, folder, world
        self.session = shell_session.ShellSession(ROOT, folder, [])
        with socket.create_server(("127.0.0.1", 0)) as free:
            self.port = str(free.getsockname()[1])
        self.blocks = [(documents.INSTALLED.match(block.directive), block) for block in
                       documents.Document(ROOT, ROOT / "docs" / "packages.md").blocks]

    def here(self, text):
        """The page's port may be taken on this computer, and the packages may be elsewhere."""
        return text.replace("5986", self.port).replace("/usr/share", f"{self.world or ''}/usr/share")

    def run(self, block, by_root=False):
        commands = shell_session.console_commands(block)
        for command in commands:
            command.text = self.here(command.text)
        results = list(self.session.run(commands))
        for index, (command, (status, lines)) in enumerate(zip(commands, results)):
            asked = index + 1 < len(commands) and commands[index + 1].text == "echo $?"
            expected = [self.here(line) for line in command.expected]
            # What apt prints beside its answer is about the system's own sources of packages.
            as_shown = by_root or shell_session.matches(expected, lines)
            if (status != 0 and not asked) or not as_shown:
                sys.exit(f"docs/packages.md:{command.line}: {command.text}\nended with {status} and printed\n"
                         + "\n".join(lines))
        return len(commands)

    def run_as_root(self, number):
        """The first block of root's installs, the second removes."""
        blocks = [block for found, block in self.blocks if found and found["by"]]
        self.session.folder = self.packages
        tried = self.run(blocks[number], by_root=True)
        self.session.folder = self.folder
        return tried

    def run_the_rest(self):
        tried = 0
        for found, block in self.blocks:
            if found and found["file"]:
                (self.folder / found["file"]).write_text(self.here(block.text), encoding="utf-8")
            elif found and not found["by"]:
                tried += self.run(block)
        return tried


def build_a_project(folder):
    """With CMake and what is installed: the first program of the front page, linked in both ways."""
    shutil.copytree(ROOT / "tests/package/consumer", folder / "consumer")
    program = next(block for block in documents.Document(ROOT, ROOT / "README.md").blocks if block.is_program)
    (folder / "consumer/client.cpp").write_text(program.text, encoding="utf-8")
    output_of("cmake", "-G", "Ninja", "-S", folder / "consumer", "-B", folder / "built")
    output_of("cmake", "--build", folder / "built")
    print(output_of("ctest", "--test-dir", folder / "built", "--no-tests=error").splitlines()[-3])


def refusal(folder, components):
    """What CMake says of a component that is not there."""
    (folder / "probe").mkdir(exist_ok=True)
    (folder / "probe/CMakeLists.txt").write_text(PROBE.format(components), encoding="utf-8")
    said = output_of("cmake", "-G", "Ninja", "-S", folder / "probe", "-B", folder / "probe/built", expected=1)
    return " ".join(said.split())


def expect(text, said):
    if text not in said:
        sys.exit(f"\"{text}\" is not in\n{said}")


def main(packages, world=None):
    with tempfile.TemporaryDirectory(prefix="quillet-use-") as name:
        folder = pathlib.Path(name)
        page = Page(pathlib.Path(packages), folder, world)
        if not world:
            page.run_as_root(0)
        print(page.run_the_rest(), "commands of docs/packages.md")
        build_a_project(folder)
        expect("component nonsense: there is no such component", refusal(folder, "client nonsense"))
        for pc in ("quillet", "quillet-client", "quillet-wmi", "quillet-simulator", "quillet-remote"):
            output_of("pkg-config", "--print-errors", "--exists", pc)
        if not world:
            expect("depends on libquillet0", output_of("dpkg", "--remove", "libquillet0", expected=1))
            output_of("dpkg", "--remove", "quillet-simulator")
        else:
            for file in pathlib.Path(world).rglob("QuilletSimulatorTargets*.cmake"):
                os.rename(file, f"{file}.away")
        expect("component simulator: it is not installed (Debian's package quillet-simulator has it)",
               refusal(folder, "client simulator"))
        if not world:
            page.run_as_root(1)
        else:
            for file in pathlib.Path(world).rglob("*.cmake.away"):
                os.rename(file, str(file).removesuffix(".away"))


if __name__ == "__main__":
    main(*sys.argv[2:])
