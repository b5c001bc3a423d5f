#!/usr/bin/env python3
"""Makes Debian's packages of a build tree and looks at them: contents, control files, and what lintian says.

Usage: packages.py ROOT BUILD OUTPUT VERSION
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "docs"))
import documents  # noqa: E402

NAMES = ("libquillet0", "libquillet-dev", "quilletctl", "quillet-simulator", "python3-quillet", "quillet-doc")
MODES = {"-rw-r--r--", "-rwxr-xr-x", "lrwxrwxrwx", "drwxr-xr-x"}
# What each package must have, beside what all have.
CONTENTS = {
    "libquillet0": [r"usr/lib/[^/]+/libquillet\.so\.0$", r"usr/lib/[^/]+/libquillet_platform\.so\.0$"],
    "libquillet-dev": [r"usr/include/quillet/Quillet\.h$", r"usr/include/quillet-sdk/windows\.h$",
                       r"usr/lib/[^/]+/libquillet\.a$", r"usr/lib/[^/]+/cmake/Quillet/QuilletConfig\.cmake$",
                       r"usr/lib/[^/]+/pkgconfig/quillet-remote\.pc$"],
    "quilletctl": [r"usr/bin/quilletctl$", r"usr/lib/quillet/quilletctl-remote\.so$",
                   r"usr/share/man/man1/quilletctl\.1\.gz$",
                   r"usr/share/bash-completion/completions/quilletctl$",
                   r"usr/share/zsh/vendor-completions/_quilletctl$",
                   r"usr/share/fish/vendor_completions\.d/quilletctl\.fish$",
                   r"usr/share/ansible/roles/quillet/library/quillet_network\.py$"],
    "quillet-simulator": [r"usr/bin/quillet-simulator$", r"usr/bin/quillet-make-machine$",
                          r"usr/share/quillet/machines/builtin\.mof$", r"usr/share/quillet/schema/zorel\.mof$",
                          r"usr/include/quillet-simulator/Machine\.h$", r"libquillet_simulator\.a$",
                          r"lib/systemd/system/quillet-simulator\.service$"],
    "python3-quillet": [r"dist-packages/quillet/_quillet\.cpython-[^/]*\.so$", r"dist-packages/quillet/py\.typed$",
                        r"dist-packages/quillet/_quillet\.pyi$", r"dist-packages/quillet/testing\.py$"],
    "quillet-doc": [r"usr/share/doc/quillet/docs/quilletctl\.md$", r"usr/share/doc/quillet/docs/json/common\.json$"],
}
# Never in a package: hooks for the tests of the tree, what Python and editors leave, this computer's folders.
STRANGERS = re.compile(r"TestHooks|gtest|gmock|__pycache__|\.pyc$|CMakeLists\.txt|usr/local")

mistakes = []


def run(*command, **more):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True, text=True, **more).stdout


def expect(holds, text):
    if not holds:
        mistakes.append(text)


class Package:
    def __init__(self, file):
        self.file = file
        self.fields = dict(re.findall(r"^([\w-]+): (.*)$", run("dpkg-deb", "--field", file), re.MULTILINE))
        self.name = self.fields["Package"]
        self.modes, self.links = {}, {}
        for line in run("dpkg-deb", "--contents", file).splitlines():
            mode, owner, _, _, _, path = line.split(None, 5)
            path, _, target = path.removeprefix("./").partition(" -> ")
            expect(owner == "root/root", f"{self.name}: {path} is of {owner}")
            expect(mode in MODES, f"{self.name}: {path} has the mode {mode}")
            if target:
                self.links[path] = target
            if path and not path.endswith("/"):
                self.modes[path] = mode

    def check(self, version, unpacked):
        doc = unpacked / "usr/share/doc" / self.name
        expect(self.fields["Version"].startswith(version + "-"), f"{self.name} is {self.fields['Version']}")
        expect((doc / "changelog.Debian.gz").is_file(), f"{self.name} has no changelog.Debian.gz")
        expect("No licence has been granted yet" in (doc / "copyright").read_text(encoding="utf-8"),
               f"{self.name} does not say that there is no licence")
        for pattern in CONTENTS[self.name]:
            expect(any(re.search(pattern, path) for path in self.modes), f"{self.name} has nothing like {pattern}")
        for path in self.modes:
            expect(not STRANGERS.search(path), f"{self.name} has {path}")
            file = unpacked / path
            if not file.is_symlink() and file.read_bytes()[:4] == b"\x7fELF":
                self.check_program(file)

    def check_program(self, file):
        dynamic = run("readelf", "--dynamic", "--sections", file)
        expect("RUNPATH" not in dynamic and "RPATH" not in dynamic, f"{file.name} has a RUNPATH")
        expect(".symtab" not in dynamic and ".debug_info" not in dynamic, f"{file.name} is not stripped")
        if self.name == "libquillet0":
            soname = re.search(r"SONAME.*\[(.*)\]", dynamic)[1]
            expect(soname.endswith(".so.0"), f"{file.name} calls itself {soname}")

    def line(self):
        size = self.file.stat().st_size / 1024
        depends = self.fields.get("Depends", "-")
        return f"{self.name:18}{len(self.modes):5} files{size:7.0f} KiB  {depends}"


def check_library(file, folder, version):
    """Whoever is linked to the library learns from these files what to depend on."""
    run("dpkg-deb", "--control", file, folder)
    symbols, shlibs, triggers = ((folder / name).read_text(encoding="utf-8") for name in ("symbols", "shlibs", "triggers"))
    major, minor, _ = version.split(".")
    below = f"libquillet0 (<< {major}.{int(minor) + 1}~)"
    for library in ("libquillet", "libquillet_platform"):
        expect(f"{library}.so.{major} libquillet0 #MINVER#, {below}\n" in symbols, f"symbols of {library} do not say {below}")
        expect(f"{library} {major} libquillet0 (>= {major}.{minor}), {below}\n" in shlibs, f"shlibs of {library} do not say {below}")
    expect("_ZN8CQuillet11InitQuilletEv@Base" in symbols, "symbols do not have CQuillet::InitQuillet")
    expect("ldconfig" in triggers, "ldconfig is not asked for")


def check_manual_page(root, build):
    """The page of the server is written by hand: it must know what the program knows."""
    page = (root / "serving/man/quillet-simulator.1").read_text(encoding="utf-8").replace("\\-", "-")
    options = set(re.findall(r"(?<!\w)--[\w-]+", run(build / "serving/quillet-simulator", "--help")))
    expect(len(options) > 5, "quillet-simulator --help tells no options")
    for option in sorted(options):
        expect(option in page, f"quillet-simulator.1 does not tell {option}")


def without_archives(file, folder):
    """The package without its static libraries: lintian reads half a minute over those of an unoptimised build."""
    folder.parent.mkdir()
    run("dpkg-deb", "--raw-extract", file, folder)
    for archive in folder.rglob("*.a"):
        archive.unlink()
    sums = folder / "DEBIAN/md5sums"
    lines = sums.read_text(encoding="utf-8").splitlines(keepends=True)
    sums.write_text("".join(line for line in lines if not line.endswith(".a\n")), encoding="utf-8")
    file = folder.with_suffix(".deb")
    run("dpkg-deb", "--root-owner-group", "-Zgzip", "-z1", "--build", folder, file)
    return file


def check_links(pages):
    """The pages were written for the tree. As packaged, they must lead to each other."""
    tried = 0
    for page in sorted(pages.rglob("*.md")):
        for line, target in documents.Document(pages, page).links():
            path = target.partition("#")[0]
            tried += 1
            expect(re.match(r"[a-z]+:", path) or (page.parent / path).exists(),
                   f"quillet-doc: {page.relative_to(pages)}:{line}: there is no {target}")
    expect(tried > 50, f"the pages have {tried} links")


def check_with_lintian(packages, output):
    files = [package.file if package.name != "libquillet-dev" else
             without_archives(package.file, output / "for-lintian" / "libquillet-dev") for package in packages.values()]
    said = subprocess.run(["lintian", "--allow-root", "--fail-on", "error,warning", *map(str, files)],
                          capture_output=True, text=True, check=False)
    expect(said.returncode == 0, f"lintian says\n{said.stdout}{said.stderr}")
    print("lintian:", said.stdout.strip() or "nothing", "(libquillet-dev without its static libraries)")


def main(root, build, output, version):
    root, build, output = (pathlib.Path(each).resolve() for each in (root, build, output))
    shutil.rmtree(output, ignore_errors=True)
    output.mkdir(parents=True)
    # As quickly as can be; a package for others is made smaller.
    quickly = {**os.environ, "DPKG_DEB_COMPRESSOR_TYPE": "gzip", "DPKG_DEB_COMPRESSOR_LEVEL": "1"}
    made = subprocess.run([str(root / "scripts/make-packages"), str(build), str(output)], capture_output=True,
                          text=True, check=False, env=quickly)
    if made.returncode != 0:
        sys.exit(f"make-packages ended with {made.returncode}:\n{made.stderr}")
    packages = {package.name: package for package in map(Package, sorted(output.glob("*.deb")))}
    if sorted(packages) != sorted(NAMES):
        sys.exit(f"there are {sorted(packages)}")
    owners = {}
    for package in packages.values():
        unpacked = output / "unpacked" / package.name
        unpacked.mkdir(parents=True)
        run("dpkg-deb", "--extract", package.file, unpacked)
        package.check(version, unpacked)
        for path in package.modes:
            expect(path not in owners, f"{path} is in {package.name} and {owners.get(path)}")
            owners[path] = package.name
        print(package.line())
    exactly = f"(= {packages['libquillet0'].fields['Version']})"
    for name in ("libquillet-dev", "quilletctl", "quillet-simulator", "python3-quillet"):
        expect(f"libquillet0 {exactly}" in packages[name].fields["Depends"], f"{name} does not need its own libquillet0")
    expect(f"libquillet-dev {exactly}" in packages["quillet-simulator"].fields["Depends"],
           "quillet-simulator does not need its own libquillet-dev")
    expect(re.search(r"python3 \(>= 3\.\d+~\)", packages["python3-quillet"].fields["Depends"]),
           "python3-quillet takes any Python")
    # What the program loads late is no less needed.
    for needed in ("libcurl4", "libpugixml1v5"):
        expect(needed in packages["quilletctl"].fields["Depends"], f"quilletctl does not need {needed}")
    check_library(packages["libquillet0"].file, output / "control", version)
    check_manual_page(root, build)
    check_links(output / "unpacked/quillet-doc/usr/share/doc/quillet")
    check_with_lintian(packages, output)
    if mistakes:
        sys.exit("\n".join(mistakes))


if __name__ == "__main__":
    main(*sys.argv[1:])
