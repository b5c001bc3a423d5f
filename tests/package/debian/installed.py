#!/usr/bin/env python3
"""Installs Debian's packages into a system that has none of ours, does what docs/packages.md shows, builds somebody
else's project, removes them, and looks at what is left.

Usage: installed.py ROOT PACKAGES [--into-a-folder]

The system is this one with a layer over it that is thrown away, which only root can lay. Others, and --into-a-folder,
get an empty folder as root of dpkg's world; what cannot be tried there is printed, and the status is 77.
"""
import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
NAMES = ("libquillet0", "libquillet-dev", "quilletctl", "quillet-simulator", "python3-quillet", "quillet-doc")
SKIPPED = 77
# What dpkg, apt, the triggers of other packages and the tools in use keep for themselves.
KEPT = re.compile(r"var/lib/(apt|dpkg|libuuid)/|var/log/|var/cache/(apt|debconf|ldconfig|man)/|etc/ld\.so\.cache$"
                  r"|(tmp|proc|dev|run)(/|$)")
CLEAN = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LANG": "C.UTF-8", "HOME": "/tmp", "DEBIAN_FRONTEND": "noninteractive"}
NOT_TRIED = """not tried, because only root can: installing with apt, dependencies, the packages' own scripts as
they run on a system, and that nothing is left of them on it. Tried: unpacking, use and removal in a folder."""


def run(*command, **more):
    subprocess.run([str(word) for word in command], check=True, **more)


def use(*command, **more):
    """What is left running when a command of the page fails must not outlive the test."""
    with subprocess.Popen([str(word) for word in command], start_new_session=True, **more) as process:
        try:
            status = process.wait()
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
    if status != 0:
        raise subprocess.CalledProcessError(status, process.args)


class Layer:
    """This system with an empty layer over it."""

    def __init__(self, folder):
        run("mount", "-t", "tmpfs", "quillet", folder)
        self.upper, self.root = folder / "upper", folder / "root"
        for each in (self.upper, folder / "work", self.root):
            each.mkdir()
        run("mount", "-t", "overlay", "overlay", "-o",
            f"lowerdir=/,upperdir={self.upper},workdir={folder / 'work'}", self.root)
        run("mount", "--rbind", "/dev", self.root / "dev")
        run("mount", "-t", "proc", "proc", self.root / "proc")
        run("mount", "-t", "tmpfs", "quillet", self.root / "tmp")

        # Small images of Debian leave pages and documents out of what they install.
        for file in (self.root / "etc/dpkg/dpkg.cfg.d").iterdir():
            if "path-exclude" in file.read_text(encoding="utf-8"):
                file.unlink()

    def show(self, folder):
        """The tree may be on another file system, which a layer does not show."""
        inside = self.root / folder.relative_to("/")
        inside.mkdir(parents=True, exist_ok=True)
        run("mount", "--bind", folder, inside)

    def changed(self):
        return {str(path.relative_to(self.upper)) for path in self.upper.rglob("*")}

    def left(self, before):
        """What is not as it was: new, other than below, or gone."""
        for name in sorted(self.changed() - before):
            over, under = self.upper / name, pathlib.Path("/") / name
            is_kept = KEPT.match(name) and "quillet" not in name
            if is_kept or (over.is_dir() and under.is_dir()):
                continue
            same = over.is_file() and under.is_file() and over.read_bytes() == under.read_bytes()
            if not same:
                yield name


def in_a_layer(root, packages):
    with tempfile.TemporaryDirectory(prefix="quillet-packages-") as folder:
        layer = Layer(pathlib.Path(folder))
        try:
            layer.show(root)
            layer.show(packages)
            run("chroot", layer.root, "dpkg", "--purge", *NAMES, env=CLEAN, stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL)
            before = layer.changed()
            use("chroot", layer.root, "/usr/bin/python3", "-B", root / "tests/package/debian/use.py", root, packages,
                env=CLEAN)
            left = list(layer.left(before))
            states = subprocess.run(["chroot", layer.root, "dpkg-query", "--show",
                                     "--showformat=${Package} ${db:Status-Status}\n", *NAMES], env=CLEAN,
                                    capture_output=True, text=True, check=False).stdout
            left += [line for line in states.splitlines() if not line.endswith("not-installed")]
        finally:
            run("umount", "--recursive", folder)
    if left:
        sys.exit("left after the removal:\n" + "\n".join(left))
    print("nothing is left of them")


def in_a_folder(root, packages):
    """dpkg alone, in a world of its own."""
    with tempfile.TemporaryDirectory(prefix="quillet-packages-") as name:
        folder = pathlib.Path(name)
        for each in ("info", "updates", "triggers"):
            (folder / "var/lib/dpkg" / each).mkdir(parents=True)
        (folder / "var/lib/dpkg/status").touch()
        dpkg = ["dpkg", f"--root={folder}", "--force-not-root", "--force-script-chrootless", "--force-depends",
                "--log=/dev/null"]
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        run(*dpkg, "--unpack", *sorted(packages.glob("*.deb")), **quiet)
        libraries = next((folder / "usr/lib").glob("*/libquillet.so.0")).parent
        world = {"PATH": f"{folder}/usr/bin:{CLEAN['PATH']}", "LD_LIBRARY_PATH": str(libraries),
                 "PYTHONPATH": f"{folder}/usr/lib/python3/dist-packages", "CMAKE_PREFIX_PATH": f"{folder}/usr",
                 "ANSIBLE_ROLES_PATH": f"{folder}/usr/share/ansible/roles",
                 "PKG_CONFIG_PATH": f"{libraries}/pkgconfig", "PYTHONDONTWRITEBYTECODE": "1"}
        use("/usr/bin/python3", "-B", root / "tests/package/debian/use.py", root, packages, folder,
            env={**CLEAN, **world, "HOME": name})
        run(*dpkg, "--purge", *NAMES, **quiet)
        left = [str(path) for path in folder.rglob("*") if "/var/lib/dpkg/" not in str(path) and not path.is_dir()]
    if left:
        sys.exit("left after the removal:\n" + "\n".join(left))
    print(NOT_TRIED)
    return SKIPPED


def can_lay():
    """Whether this process may have a layer; some containers are root without that right."""
    probe = "mkdir u w r && mount -t overlay overlay -o lowerdir=/,upperdir=$PWD/u,workdir=$PWD/w r"
    with tempfile.TemporaryDirectory(prefix="quillet-packages-") as folder:
        return os.geteuid() == 0 and shutil.which("unshare") is not None and subprocess.run(
            ["unshare", "--mount", "sh", "-c", f"mount -t tmpfs quillet {folder} && cd {folder} && {probe}"],
            capture_output=True, check=False).returncode == 0


def main(root, packages, *words):
    root, packages = pathlib.Path(root).resolve(), pathlib.Path(packages).resolve()
    if "--in-a-layer" in words:
        in_a_layer(root, packages)
    elif "--into-a-folder" not in words and can_lay():
        os.execvp("unshare", ["unshare", "--mount", sys.executable, "-B", __file__, str(root), str(packages),
                              "--in-a-layer"])
    else:
        sys.exit(in_a_folder(root, packages))


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except subprocess.CalledProcessError as failure:
        sys.exit(f"{' '.join(failure.cmd)} ended with {failure.returncode}")
