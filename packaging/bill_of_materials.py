#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Writes a bill of materials, CycloneDX 1.5 in JSON, into each package that is about to be packed.

It lists the package's files with their digests, the shared libraries that its binaries load, and the libraries of others whose code
was compiled into them. Debian's package manager, if there is one, says which package a library belongs to and its version. The same
files give the same bill.
"""
import argparse
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import time
import urllib.parse
import uuid

FILE_NAME = "bill-of-materials.cdx.json"
SUPPLIER = "The tarnvod authors"
LICENSE = [{"license": {"id": "MIT"}}]


def output_of(*command):
    """What the command prints; None if it fails or is not installed."""
    try:
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout
    except (FileNotFoundError, subprocess.CalledProcessError):
        return None


class Package:
    """A package to be, in a folder: ROOT/usr/..."""

    def __init__(self, argument):
        self.name, root, compiled_in = argument.split("=")
        self.root = pathlib.Path(root)
        self.compiled_in = compiled_in.split(",") if compiled_in else []
        self.folder = next(self.root.glob(f"**/share/doc/{self.name}"))

    def files(self):
        """Its regular files but for the bill, in a fixed order."""
        found = (path for path in self.root.rglob("*") if path.is_file() and not path.is_symlink())
        return sorted(path for path in found if path != self.folder / FILE_NAME)

    def reference(self, file):
        return str(file.relative_to(self.root))


class Binary:
    """What the dynamic section of a file says; a file of another kind provides and needs nothing."""

    def __init__(self, path, objdump):
        self.provides, self.needs = [], []
        with open(path, "rb") as file:
            is_elf = file.read(4) == b"\x7fELF"
        if is_elf:
            dynamic = subprocess.run([objdump, "-p", path], check=True, capture_output=True, text=True).stdout
            self.provides = re.findall(r"^ +SONAME +(\S+)", dynamic, re.MULTILINE)
            self.needs = re.findall(r"^ +NEEDED +(\S+)", dynamic, re.MULTILINE)


@functools.lru_cache(maxsize=None)
def debian_component(name, architecture, linkage):
    """A library of Debian's, with the version that is installed here."""
    component = {"type": "library", "bom-ref": name, "name": name, "scope": "required",
                 "properties": [{"name": "tarnvod:linkage", "value": linkage}]}
    installed = output_of("dpkg-query", "--show", "--showformat=${db:Status-Abbrev} ${Version} ${Architecture}\n", name)
    for line in (installed or "").splitlines():
        status, version, of = line.split()
        if status == "ii" and of in (architecture, "all"):
            component["version"] = version
            component["purl"] = f"pkg:deb/debian/{name}@{urllib.parse.quote(version)}?arch={of}"
    return component


@functools.lru_cache(maxsize=None)
def shared_library(soname, architecture):
    """The package that provides this file to the loader; the file's name alone where that is unknown."""
    owners = output_of("dpkg-query", "--search", f"*/{soname}") or ""
    for line in sorted(owners.splitlines()):
        owner, path = line.split(": ", 1)
        name, _, of = owner.partition(":")
        if of == architecture and re.fullmatch(r"(/usr)?/lib(64)?(/[^/]+-linux-gnu[^/]*)?/[^/]+", path):
            return debian_component(name, architecture, "shared")
    return {"type": "library", "bom-ref": soname, "name": soname, "scope": "required",
            "properties": [{"name": "tarnvod:linkage", "value": "shared"}]}


def own_component(name, version, kind):
    return {"type": kind, "bom-ref": name, "name": name, "version": version, "supplier": {"name": SUPPLIER},
            "licenses": LICENSE}


def bill(package, own_libraries, arguments):
    """The bill of a package; own_libraries: the package of ours that provides a soname."""
    components, dependencies = {}, {package.name: set()}
    for name in package.compiled_in:
        components[name] = debian_component(name, arguments.architecture, "compiled in")
        dependencies[package.name].add(name)
    for path in package.files():
        reference = package.reference(path)
        digest = hashlib.sha256(path.read_bytes()).hexdigest()
        components[reference] = {"type": "file", "bom-ref": reference, "name": reference,
                                 "hashes": [{"alg": "SHA-256", "content": digest}]}
        for soname in Binary(path, arguments.objdump).needs:
            owner = own_libraries.get(soname)
            library = own_component(owner, arguments.version, "library") if owner else shared_library(
                soname, arguments.architecture)
            dependencies.setdefault(reference, set()).add(library["bom-ref"])
            if owner != package.name:
                components[library["bom-ref"]] = library
                dependencies[package.name].add(library["bom-ref"])

    described = own_component(package.name, arguments.version, "application" if package.name.endswith("tools") else "library")
    document = {
        "bomFormat": "CycloneDX", "specVersion": "1.5", "version": 1,
        "metadata": {"component": described, "supplier": {"name": SUPPLIER}},
        "components": [components[key] for key in sorted(components)],
        "dependencies": [{"ref": key, "dependsOn": sorted(dependencies[key])} for key in sorted(dependencies)]}
    if "SOURCE_DATE_EPOCH" in os.environ:
        moment = time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"]))
        document["metadata"]["timestamp"] = time.strftime("%Y-%m-%dT%H:%M:%SZ", moment)
    identity = uuid.uuid5(uuid.NAMESPACE_URL, json.dumps(document, sort_keys=True))
    return {**document, "serialNumber": f"urn:uuid:{identity}"}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--version", required=True, help="of the packages")
    parser.add_argument("--architecture", required=True, help="of the packages, as Debian names it")
    parser.add_argument("--objdump", required=True, help="that reads binaries of the architecture")
    parser.add_argument("packages", nargs="+", type=Package, metavar="NAME=ROOT=COMPILED,IN",
                        help="a package, the folder with its files, and Debian's packages that were compiled in")
    arguments = parser.parse_args()

    own_libraries = {soname: package.name for package in arguments.packages for path in package.files()
                     for soname in Binary(path, arguments.objdump).provides}
    for package in arguments.packages:
        text = json.dumps(bill(package, own_libraries, arguments), indent=2) + "\n"
        (package.folder / FILE_NAME).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
