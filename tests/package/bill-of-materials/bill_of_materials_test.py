#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""bill_of_materials_test.py BUILD OBJDUMP OUTCOME: checks one outcome of the bills that are written for what BUILD installs."""
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parents[3]
WRITER = PROJECT / "packaging" / "bill_of_materials.py"
PACKAGES = {"libtarnvod0": "runtime", "libtarnvod-dev": "development", "tarnvod-host-platform": "host-platform",
            "tarnvod-tools": "tools"}
COMPILED_IN = re.search(r"TOOLS_COMPILED_IN ([a-z].*)\)", (PROJECT / "packaging" / "CMakeLists.txt").read_text())[1]
# Headers of the compiler and the kernel; their code belongs to every program.
TOOLCHAIN = {"gcc-defaults", "glibc", "linux"}


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Staged:
    """What the build installs, by package, with bills."""

    def __init__(self, build, objdump, folder):
        self.build, self.objdump, self.folder = build, objdump, pathlib.Path(folder)
        for component in PACKAGES.values():
            output_of("cmake", "--install", build, "--component", component, "--prefix", self.folder / component / "usr")

    def write(self, **environment):
        packages = [f"{name}={self.folder / component}={COMPILED_IN if component == 'tools' else ''}"
                    for name, component in PACKAGES.items()]
        architecture = output_of("dpkg", "--print-architecture").strip()
        subprocess.run([sys.executable, WRITER, "--version", "1.2.3", "--architecture", architecture, "--objdump", self.objdump,
                        *packages], check=True, env={**os.environ, **environment})

    def text(self, name):
        return (self.root(name) / f"usr/share/doc/{name}/bill-of-materials.cdx.json").read_text(encoding="utf-8")

    def bill(self, name):
        return json.loads(self.text(name))

    def root(self, name):
        return self.folder / PACKAGES[name]

    def files(self, name):
        found = (path for path in self.root(name).rglob("*") if path.is_file() and not path.is_symlink())
        return {str(path.relative_to(self.root(name))): path for path in found if not path.name.endswith(".cdx.json")}


def components(bill, kind):
    return {component["name"]: component for component in bill["components"] if component["type"] == kind}


def dependencies(bill):
    return {entry["ref"]: entry["dependsOn"] for entry in bill["dependencies"]}


def check_format(bill):
    """What CycloneDX requires of the members that occur."""
    assert bill["bomFormat"] == "CycloneDX" and bill["specVersion"] == "1.5" and bill["version"] == 1
    assert re.fullmatch(r"urn:uuid:[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}", bill["serialNumber"])
    assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", bill["metadata"]["timestamp"])
    assert not set(bill) - {"bomFormat", "specVersion", "version", "serialNumber", "metadata", "components", "dependencies"}
    all_components = [bill["metadata"]["component"], *bill["components"]]
    references = [component["bom-ref"] for component in all_components]
    assert len(references) == len(set(references)), "a reference occurs twice"
    for component in all_components:
        assert component["type"] in ("application", "library", "file") and component["name"]
        assert component.get("scope", "required") == "required"
        assert all(re.fullmatch("[0-9a-f]{64}", digest["content"]) for digest in component.get("hashes", []))
        assert re.fullmatch(r"pkg:deb/debian/[a-z0-9.+-]+@[\w.~%-]+\?arch=\w+", component.get("purl", "pkg:deb/debian/a@1?arch=all"))
    for reference, needed in dependencies(bill).items():
        assert {reference, *needed} <= set(references), f"{reference} or what it depends on is not a component"
        assert len(needed) == len(set(needed))


def has_the_members_of_its_format(staged):
    staged.write(SOURCE_DATE_EPOCH="1790000000")
    for name in PACKAGES:
        check_format(staged.bill(name))
        assert staged.bill(name)["metadata"]["timestamp"] == "2026-09-21T14:13:20Z"
        assert staged.bill(name)["metadata"]["component"]["name"] == name
        assert staged.bill(name)["metadata"]["component"]["version"] == "1.2.3"


def lists_each_file_with_its_digest(staged):
    staged.write()
    for name in PACKAGES:
        listed = {file: component["hashes"][0]["content"] for file, component in components(staged.bill(name), "file").items()}
        assert listed == {file: hashlib.sha256(path.read_bytes()).hexdigest() for file, path in staged.files(name).items()}


def names_what_the_library_loads(staged):
    staged.write()
    bill = staged.bill("libtarnvod0")
    library = next(file for file in components(bill, "file") if file.endswith("/libtarnvod.so.0.0"))
    needed = dependencies(bill)[library]
    assert any(name.startswith("libprotobuf-lite") for name in needed) and "tarnvod-host-platform" in needed, needed
    known = components(bill, "library")
    for name in needed:
        if name != "tarnvod-host-platform":
            installed = output_of("dpkg-query", "--show", "--showformat=${Version}\n", name).splitlines()
            assert known[name]["version"] in installed, known[name]


def names_the_packages_of_what_the_command_loads(staged):
    staged.write()
    needed = dependencies(staged.bill("tarnvod-tools"))["usr/bin/tarnvod"]
    for name in ("libtarnvod0", "tarnvod-host-platform", "libsqlite3-0", "zlib1g"):
        assert name in needed, needed


def source_of(package):
    return output_of("dpkg-query", "--show", "--showformat=${source:Package}\n", package).splitlines()[0]


def headers_of(build, target_folder):
    """The system's headers that the objects in this folder of the build were compiled with, as the build recorded them."""
    headers, inside = set(), False
    for line in output_of("ninja", "-C", build, "-t", "deps").splitlines():
        if not line.startswith(" "):
            inside = line.startswith(target_folder)
        elif inside and line.strip().startswith("/usr/include/"):
            headers.add(line.strip())
    return headers


def names_whatever_the_command_was_compiled_with(staged):
    staged.write()
    named = {source_of(name) for name, library in components(staged.bill("tarnvod-tools"), "library").items() if "purl" in library}
    headers = headers_of(staged.build, "tools/tarnvod/")
    assert headers, "the build has recorded no headers"
    owners = {line.split(":")[0] for line in output_of("dpkg-query", "--search", *headers).splitlines()}
    compiled_in = {source_of(owner) for owner in owners}
    compiled_in = {source for source in compiled_in if source not in TOOLCHAIN and not re.fullmatch(r"gcc-\d+", source)}
    assert compiled_in <= named, f"not in the bill: {compiled_in - named}"
    assert {source_of(name) for name in COMPILED_IN.split(",")} <= compiled_in, "the bill names a library that is not compiled in"


def is_the_same_for_the_same_files(staged):
    staged.write()
    first = [staged.text(name) for name in PACKAGES]
    staged.write()
    assert first == [staged.text(name) for name in PACKAGES]


def names_files_where_no_package_is_known(staged):
    staged.write(PATH=str(staged.folder))
    bill = staged.bill("libtarnvod0")
    assert any(name.startswith("libprotobuf-lite.so.") for name in components(bill, "library")), bill
    assert not any("purl" in component for component in bill["components"])


def is_refused_when_damaged(staged):
    """The check of the format itself."""
    staged.write(SOURCE_DATE_EPOCH="1790000000")
    whole = staged.bill("tarnvod-tools")
    damages = [lambda bill: bill.update(specVersion="2"), lambda bill: bill.pop("bomFormat"),
               lambda bill: bill.update(serialNumber="1"), lambda bill: bill["components"].append(bill["components"][0]),
               lambda bill: bill["components"][0].update(type="thing"), lambda bill: bill["components"].pop(),
               lambda bill: bill["dependencies"][0]["dependsOn"].append("nothing")]
    for damage in damages:
        bill = json.loads(json.dumps(whole))
        damage(bill)
        try:
            check_format(bill)
        except (AssertionError, KeyError):
            continue
        raise AssertionError("a damaged bill was accepted")


OUTCOMES = {"HasTheMembersOfItsFormat": has_the_members_of_its_format,
            "ListsEachFileWithItsDigest": lists_each_file_with_its_digest,
            "NamesWhatTheLibraryLoads": names_what_the_library_loads,
            "NamesThePackagesOfWhatTheCommandLoads": names_the_packages_of_what_the_command_loads,
            "NamesWhateverTheCommandWasCompiledWith": names_whatever_the_command_was_compiled_with,
            "IsTheSameForTheSameFiles": is_the_same_for_the_same_files,
            "NamesFilesWhereNoPackageIsKnown": names_files_where_no_package_is_known,
            "IsRefusedWhenDamaged": is_refused_when_damaged}


def main():
    build, objdump, outcome = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        OUTCOMES[outcome](Staged(build, objdump, folder))


if __name__ == "__main__":
    main()
