"""Commands of documents that are not run where the documents are tested, because they build the tree or run all of its
tests. Each is held against what it names instead, and each line of the list must still be needed.
"""
import json
import re

BUILD = "it builds the tree, as scripts/test does: presets and targets must exist"
SCRIPT = "it builds and runs much: the script must exist and know its arguments"
PACKAGE = "tests/package installs and packs what was built, and uses it"

# A command, and what it names.
ELSEWHERE = {
    r"cmake --preset (?P<preset>\S+)": BUILD,
    r"cmake --build (?:--preset |build/)(?P<preset>\S+)(?: -j ?\S+)?(?: --target (?P<targets>[\w ]+))?": BUILD,
    r"(?:\w+=\S+ )?(?:scripts/wine-run )?build/(?P<preset>\w+)/(?:\S+/)?(?P<targets>\w+)(?:\.exe)?(?: .*)?": BUILD,
    r"(?P<script>scripts/(?:bench|coverage|demo|lint|setup|test|valgrind))(?P<arguments>(?: [\w-]+)*)": SCRIPT,
    r"(?P<script>scripts/exported-interface)(?P<arguments>) build/(?P<preset>\w+)/\S+\.so": SCRIPT,
    r"cmake --install build/(?P<preset>\w+) --prefix \S+": PACKAGE,
    r"\(cd build/(?P<preset>\w+) && cpack(?: -D CPACK_WINGET_URL=\S+)?\)": PACKAGE,
    r"dpkg-buildpackage --build=binary --no-sign": "tests/package/debian makes the packages of what was built",
    r"(?P<script>scripts/make-packages) build/(?P<preset>\w+) \S+(?P<arguments>)": PACKAGE,
}


def rule_for(command):
    """The line of the list that a command falls under, with what it names; nothing when it is to be run."""
    for pattern in ELSEWHERE:
        found = re.fullmatch(pattern, command)
        if found:
            return pattern, found.groupdict()
    return None


def wrong_names(root, names):
    """What a command names and the tree does not have."""
    preset = names.get("preset")
    if preset:
        presets = json.loads((root / "CMakePresets.json").read_text(encoding="utf-8"))["configurePresets"]
        if preset not in (p["name"] for p in presets if not p.get("hidden")):
            yield f"there is no preset {preset}"
    for target in (names.get("targets") or "").split():
        if not is_target(root, target):
            yield f"there is no target {target}"
    script = names.get("script")
    if script:
        if not (root / script).is_file():
            yield f"there is no {script}"
            return
        text = (root / script).read_text(encoding="utf-8")
        for argument in names["arguments"].split():
            if not re.search(rf"(?<![\w-]){re.escape(argument)}(?![\w-])", text):
                yield f"{script} does not know {argument}"


def is_target(root, name):
    """Whether a build file names a target, or it is made of the source file of its name."""
    files = [file for pattern in ("CMakeLists.txt", "*.cmake", f"{name}.cpp") for file in root.rglob(pattern)
             if "build" not in file.relative_to(root).parts]
    return any(file.stem == name or re.search(rf"\b{name}\b", file.read_text(encoding="utf-8")) for file in files)
