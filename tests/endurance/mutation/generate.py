#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Prints plain mutations in the format of mutations.txt, chosen at random: conditions negated, comparisons shifted, calls removed,
results and constants changed. The same seed and source give the same mutations.

usage: generate.py [--seed N] [--count N] [FILE...]
"""
import argparse
import fnmatch
import random
import re
import subprocess

from mutations import PROJECT, Mutation

PATTERNS = ["src/*.cpp", "src/*.h", "platform/host/*.cpp", "platform/recording/*.cpp", "tools/tarnvod/*.cpp",
            "include/tarnvod/camera*.h", "include/tarnvod/detail/*.h", "include/tarnvod/frame_queue.h"]

# What is replaced in a line, the replacement, and what that is called. Spaces distinguish operators from templates and shifts.
REPLACEMENTS = [
    (r" == ", " != ", "equal becomes unequal"),
    (r" != ", " == ", "unequal becomes equal"),
    (r" < ", " <= ", "less becomes less or equal"),
    (r" <= ", " < ", "less or equal becomes less"),
    (r" > ", " >= ", "greater becomes greater or equal"),
    (r" >= ", " > ", "greater or equal becomes greater"),
    (r" && ", " || ", "and becomes or"),
    (r" \|\| ", " && ", "or becomes and"),
    (r"\breturn true;", "return false;", "true becomes false"),
    (r"\breturn false;", "return true;", "false becomes true"),
    (r" \+ ", " - ", "plus becomes minus"),
    (r" - ", " + ", "minus becomes plus"),
    (r"\+\+(?=\w)", "--", "increment becomes decrement"),
    (r"(?<=[ ({])(\d+)(?=[;,)}])", lambda found: str(int(found[1]) + 1), "a constant grows"),
    (r"\bif \((?!constexpr)([^;]*)\) \{$", lambda found: f"if (!({found[1]})) {{", "a condition is negated"),
]
JOINS = ("plus becomes minus",)
CALL = re.compile(r"\s+(?!return|throw|delete|using|template|static_assert|typedef)[\w:]+(?:(?:\.|->|::)\w+(?:\(\))?)*\([^{}]*\);$")
NOT_CODE = re.compile(r"\s*(//|/?\*|#|template|using |static_assert|\[\[)|.*\boperator\b|.*=> ")


def without_texts(line):
    """The line with string literals, character literals and comments blanked."""
    blank = lambda found: "~" * len(found[0])
    return re.sub(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'|//.*', blank, line)


def mutations_of_line(file, number, line):
    masked = without_texts(line)
    if NOT_CODE.match(masked):
        return
    for pattern, replacement, what in REPLACEMENTS:
        for found in re.finditer(pattern, masked):
            # A replacement made of the match must not see the masked text. Texts are put together with plus.
            original = re.compile(pattern).match(line, found.start())
            if original is None or original.span() != found.span() or (what in JOINS and "~" in masked):
                continue
            new = original.expand(replacement) if isinstance(replacement, str) else replacement(original)
            changed = line[:original.start()] + new + line[original.end():]
            yield Mutation(f"{what}, line {number}", file, f"{number}c\\{escaped(changed)}")
    if CALL.fullmatch(masked) and not re.search(r"\w [\w:]+\(", masked):
        yield Mutation(f"a call is removed, line {number}", file, f"{number}d")


def escaped(line):
    return line.replace("\\", "\\\\")


def all_mutations(files):
    for file in files:
        for number, line in enumerate((PROJECT / file).read_text(encoding="utf-8").splitlines(), 1):
            yield from mutations_of_line(file, number, line)


def source_files():
    tracked = subprocess.run(["git", "ls-files"], cwd=PROJECT, capture_output=True, text=True, check=True).stdout.split()
    return [file for file in tracked if any(fnmatch.fnmatch(file, pattern) for pattern in PATTERNS)]


def generated(seed, count, files=None):
    candidates = list(all_mutations(files or source_files()))
    return random.Random(seed).sample(candidates, min(count, len(candidates)))


def main():
    parser = argparse.ArgumentParser(description="Prints random plain mutations.")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=50)
    parser.add_argument("files", nargs="*", metavar="FILE")
    arguments = parser.parse_args()
    for mutation in generated(arguments.seed, arguments.count, arguments.files):
        print(mutation)


if __name__ == "__main__":
    main()
