# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Compares the instructions and allocations of a frame with the committed counts, and fails when one is exceeded by more than 2 %.

usage: check_counts.py DIRECTORY COUNTS [--update]

DIRECTORY holds the benchmark programs. COUNTS names a pipeline and a sample on each line, and what it takes for a frame:
instructions, allocations, bytes allocated. With --update it is written with what these programs take. Counts are comparable
between machines with the same compiler, C library and Protocol Buffers; on others a failure may mean no more than that these differ.
"""
import os
import sys
from concurrent.futures import ThreadPoolExecutor

from report import heap, per_frame

TOLERANCE = 1.02
UNITS = ("instructions", "allocations", "bytes")


def read(path):
    """The head, which is kept, and the counts by name."""
    with open(path, encoding="utf-8") as file:
        lines = file.read().splitlines()
    head = [line for line in lines if line.startswith("#")]
    rows = [line.split() for line in lines if line and not line.startswith("#")]
    return head, {name: tuple(map(int, counts)) for name, *counts in rows}


def measure(directory, names):
    program = os.path.join(directory, "count_frames")
    allocated = heap(os.path.join(directory, "count_allocations"))
    missing = [name for name in names if name not in allocated]
    if missing:
        sys.exit(f"these programs do not have {', '.join(missing)}: a library was not found")
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        instructions = pool.map(lambda name: per_frame(program, *name.split("/")), names)
        return {name: (round(count), *map(int, allocated[name])) for name, count in zip(names, instructions)}


def excesses(committed, measured):
    for name, limits in committed.items():
        for unit, limit, count in zip(UNITS, limits, measured[name]):
            if count > limit * TOLERANCE:
                yield f"{name}: {count} {unit}, committed are {limit}"


def write(path, head, measured):
    width = max(map(len, measured))
    rows = [f"{name:{width}} {counts[0]:8} {counts[1]:5} {counts[2]:7}" for name, counts in measured.items()]
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(head + rows) + "\n")


def main():
    if len(sys.argv) not in (3, 4) or sys.argv[3:] not in ([], ["--update"]):
        sys.exit(__doc__)
    directory, path = sys.argv[1:3]
    head, committed = read(path)
    measured = measure(directory, list(committed))
    if sys.argv[3:]:
        write(path, head, measured)
        return
    found = list(excesses(committed, measured))
    print("\n".join(found) if found else f"{len(committed)} pipelines take at most 2 % more than the committed counts")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
