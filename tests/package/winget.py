#!/usr/bin/env python3
"""Holds the manifests for winget against their schema 1.6, as far as it concerns them, and against the zip.

Usage: winget.py FOLDER ZIP VERSION
"""
import hashlib
import pathlib
import sys
import zipfile

import jsonschema
import yaml

IDENTIFIER = "Quillet.Quillet"
TEXT = {"type": "string"}
HEAD = {
    "PackageIdentifier": {**TEXT, "pattern": r"^[^.\s\\/:*?\"<>|\x01-\x1f]{1,32}(\.[^.\s\\/:*?\"<>|\x01-\x1f]{1,32}){1,7}$",
                          "maxLength": 128},
    "PackageVersion": {**TEXT, "pattern": r"^[^\\/:*?\"<>|\x01-\x1f]+$", "maxLength": 128},
    "ManifestVersion": {"const": "1.6.0"},
}
LOCALE = {**TEXT, "pattern": r"^([a-zA-Z]{2,3}|[iI]-[a-zA-Z]+|[xX]-[a-zA-Z]{1,8})(-[a-zA-Z]{1,8})*$", "maxLength": 20}
INSTALLER_TYPES = ["msix", "msi", "appx", "exe", "inno", "nullsoft", "wix", "burn", "portable"]


def text(least, most):
    return {**TEXT, "minLength": least, "maxLength": most}


def listed(items, most):
    return {"type": "array", "items": items, "minItems": 1, "maxItems": most, "uniqueItems": True}


def thing(properties, required):
    """Keys beyond these are mistakes: we use no others."""
    return {"type": "object", "properties": properties, "required": required, "additionalProperties": False}


def manifest(kind, properties, required):
    return thing({**HEAD, "ManifestType": {"const": kind}, **properties}, [*HEAD, "ManifestType", *required])


NESTED_FILE = thing({"RelativeFilePath": text(1, 512), "PortableCommandAlias": text(1, 40)}, ["RelativeFilePath"])
INSTALLER = thing({
    "Architecture": {"enum": ["x86", "x64", "arm", "arm64", "neutral"]},
    "InstallerUrl": {**TEXT, "pattern": "^([Hh][Tt][Tt][Pp][Ss]?)://.+$", "maxLength": 2048},
    "InstallerSha256": {**TEXT, "pattern": "^[A-Fa-f0-9]{64}$"},
}, ["Architecture", "InstallerUrl", "InstallerSha256"])
SCHEMAS = {
    ".yaml": manifest("version", {"DefaultLocale": LOCALE}, ["DefaultLocale"]),
    ".installer.yaml": manifest("installer", {
        "Platform": listed({"enum": ["Windows.Desktop", "Windows.Universal"]}, 2),
        "InstallerType": {"enum": [*INSTALLER_TYPES, "zip", "pwa"]},
        "NestedInstallerType": {"enum": INSTALLER_TYPES},
        "NestedInstallerFiles": listed(NESTED_FILE, 1024),
        "Installers": listed(INSTALLER, 1024),
    }, ["Installers", "InstallerType"]),
    ".locale.en-US.yaml": manifest("defaultLocale", {
        "PackageLocale": LOCALE, "Publisher": text(2, 256), "PackageName": text(2, 256), "License": text(3, 512),
        "ShortDescription": text(3, 256), "Moniker": {**text(1, 40), "pattern": r"^\S+$"},
        "Tags": listed(text(1, 40), 16),
    }, ["PackageLocale", "Publisher", "PackageName", "License", "ShortDescription"]),
}


def mistakes(folder, archive, version):
    folder = folder / "manifests/q/Quillet/Quillet" / version
    found, is_valid = {}, True
    for ending, schema in SCHEMAS.items():
        content = (folder / f"{IDENTIFIER}{ending}").read_text(encoding="utf-8")
        found[ending] = yaml.safe_load(content)
        for problem in jsonschema.Draft7Validator(schema).iter_errors(found[ending]):
            yield f"{ending}: {problem.json_path}: {problem.message}"
            is_valid = False
        if (found[ending]["PackageIdentifier"], found[ending]["PackageVersion"]) != (IDENTIFIER, version):
            yield f"{ending} is about another package"
    others = {path.name for path in folder.iterdir()} - {f"{IDENTIFIER}{ending}" for ending in SCHEMAS}
    if others:
        yield f"there are {others} as well"
    if not is_valid:
        return
    about, locale = found[".installer.yaml"], found[".locale.en-US.yaml"]
    if locale["PackageLocale"] != found[".yaml"]["DefaultLocale"]:
        yield "the default locale is another"
    if "No licence has been granted" not in locale["License"]:
        yield f"a licence is named: {locale['License']}"
    installer, = about["Installers"]
    if installer["InstallerSha256"].lower() != hashlib.sha256(archive.read_bytes()).hexdigest():
        yield "the checksum is another"
    if installer["InstallerUrl"].rsplit("/", 1)[1] != archive.name:
        yield f"{installer['InstallerUrl']} does not name {archive.name}"
    if (about["InstallerType"], about["NestedInstallerType"]) != ("zip", "portable"):
        yield "it is no portable program in a zip"
    paths = {each["PortableCommandAlias"]: each["RelativeFilePath"].replace("\\", "/")
             for each in about["NestedInstallerFiles"]}
    if sorted(paths) != ["quillet-properties", "quilletctl"]:
        yield f"the commands are {sorted(paths)}"
    with zipfile.ZipFile(archive) as content:
        names = set(content.namelist())
    beside = {str(pathlib.PurePosixPath(path).parent / "quillet.dsc.resource.json") for path in paths.values()}
    for path in sorted({*paths.values(), *beside} - names):
        yield f"{archive.name} has no {path}"


def main(folder, archive, version):
    problems = list(mistakes(pathlib.Path(folder), pathlib.Path(archive), version))
    if problems:
        sys.exit("\n".join(problems))


if __name__ == "__main__":
    main(*sys.argv[1:])
