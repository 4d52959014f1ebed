# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Mutations: a name, a file of the project, and the sed expression that breaks it in one place."""
import dataclasses
import difflib
import pathlib
import re
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
PROJECT = HERE.parents[2]
SEPARATOR = " :: "


@dataclasses.dataclass(frozen=True)
class Mutation:
    name: str
    file: str
    expression: str

    def __str__(self):
        return SEPARATOR.join((self.name, self.file, self.expression))

    def applied_to(self, text):
        """The text after the mutation; the same one when it does not apply."""
        return sed(self.expression, text)


def sed(expression, text):
    return subprocess.run(["sed", "-E", expression], input=text, capture_output=True, text=True, check=True).stdout


def read_lines(name):
    lines = (HERE / name).read_text(encoding="utf-8").splitlines()
    return [line for line in lines if line and not line.startswith("#")]


def parse(line):
    name, file, expression = line.split(SEPARATOR, 2)
    return Mutation(name, file, expression)


def handwritten():
    return [parse(line) for line in read_lines("mutations.txt")]


def changed_places(before, after):
    """How many separate runs of lines differ."""
    matcher = difflib.SequenceMatcher(a=before.splitlines(), b=after.splitlines(), autojunk=False)
    return sum(1 for tag, *_ in matcher.get_opcodes() if tag != "equal")


def fault_of(mutation, project=PROJECT):
    """Why a mutation does not apply as it should; nothing when each of its commands changes exactly one place."""
    path = project / mutation.file
    if not path.is_file():
        return f"{mutation.file} does not exist"
    text = path.read_text(encoding="utf-8")
    for command in re.split(r"; (?=/|s/|\d)", mutation.expression):
        try:
            changed = sed(command, text)
        except subprocess.CalledProcessError as error:
            return error.stderr.strip()
        if (places := changed_places(text, changed)) != 1:
            return f"applies to {places} places: {command}"
        text = changed
    return None


@dataclasses.dataclass(frozen=True)
class Equivalent:
    """A generated mutation that changes nothing that a test could see, and why."""
    file: str
    before: str
    after: str
    reason: str


def equivalents():
    return [Equivalent(*line.split(SEPARATOR)) for line in read_lines("equivalent.txt")]


def lines_of_change(before, after):
    """The lines that a mutation changes, before and after, without the spaces around them."""
    removed, added = [], []
    for line in difflib.ndiff(before.splitlines(), after.splitlines()):
        if line.startswith("- "):
            removed.append(line[2:].strip())
        elif line.startswith("+ "):
            added.append(line[2:].strip())
    return " ".join(removed), " ".join(added)


def is_equivalent(mutation, before, after):
    change = lines_of_change(before, after)
    return any(known.file == mutation.file and (known.before, known.after) == change for known in equivalents())
