# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Runs the benchmark programs of a build directory and writes their figures between the markers of a document.

usage: report.py DIRECTORY DOCUMENT

Counts are the difference between two runs that differ in their number of frames alone. The environment variable COUNTER
may hold a command that runs the program given to it and whose last line of output is the number of instructions, for
machines without callgrind.
"""
import functools
import json
import os
import re
import shlex
import statistics
import subprocess
import sys
import tempfile

SAMPLES = ["3", "12", "100", "12-outlines", "12-long-names", "street"]
CAMERA_SAMPLES = ["0", "3", "12", "street"]
CAMERA_PIPELINES = {"frame": "`Handler`, the only thread", "frame-with-retries": "`Handler` with retries", "camera": "`Camera`"}
LINE_SAMPLES = ["3", "12", "100", "street"]
CAMERA_LIMIT = 1.02  # of the instructions of a frame of 12 detections through `Handler` with retries
PROJECT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
STREET = os.path.join(PROJECT, "recordings", "street")
WRITE_FIGURES = os.path.join(PROJECT, "scripts", "lib", "write-figures")
COUNTER = shlex.split(os.environ.get("COUNTER", ""))


def output_of(command):
    result = subprocess.run(command, capture_output=True, text=True, check=False)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)} failed:\n{result.stderr}")
    return result.stdout + result.stderr


def first_number(pattern, text):
    found = re.search(pattern, text)
    if not found:
        sys.exit(f"no count in the output of the counting tool:\n{text}")
    return int(found[1].replace(",", ""))


def instructions(command):
    if COUNTER:
        return int(output_of(COUNTER + command).split()[-1])
    with tempfile.TemporaryDirectory() as folder:
        profile = os.path.join(folder, "callgrind.out")
        text = output_of(["valgrind", "--tool=callgrind", f"--callgrind-out-file={profile}"] + command)
    return first_number(r"Collected : (\d+)", text)


def heap(program):
    """Blocks and bytes that each pipeline of each sample allocates for a frame."""
    lines = (line.split() for line in output_of([program]).splitlines())
    return {name: (blocks, size) for name, blocks, size in lines}


@functools.lru_cache(maxsize=None)
def per_frame(program, pipeline, sample, *classes):
    """Instructions. Both numbers of frames are multiples of the number of scenes that a sample takes in turn."""
    few, many = 40, 120
    first, last = (instructions([program, pipeline, sample, str(frames), *map(str, classes)]) for frames in (few, many))
    return (last - first) / (many - few)


def times(program):
    """The processor times of each benchmark's repetitions, in nanoseconds."""
    text = subprocess.run(
        [program, "--benchmark_repetitions=9", "--benchmark_enable_random_interleaving=true",
         "--benchmark_min_time=0.01", "--benchmark_format=json"], capture_output=True, text=True, check=True).stdout
    repetitions = {}
    for run in json.loads(text)["benchmarks"]:
        if run["run_type"] == "iteration":
            repetitions.setdefault(run["run_name"], []).append(run["cpu_time"])
    return repetitions


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "|".join(["---"] + ["---:"] * (len(head) - 1)) + "|"]
    return lines + ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows] + [""]


def pipelines_of(sample, measured):
    """The library's own in a fixed order, then other formats, which contain no outlines and do not depend on long names."""
    ours = ["parse", "frame", "convert", "copy", "copy-record"]
    others = sorted({name.split("/")[0] for name in measured if "/" in name} - set(ours))
    return ours + (others if sample.isdigit() or sample == "street" else [])


def frame_rows(directory, measured):
    program = os.path.join(directory, "count_frames")
    allocated = heap(os.path.join(directory, "count_allocations"))
    for sample in SAMPLES:
        parse = per_frame(program, "parse", sample)
        parse_times = measured[f"parse/{sample}"]
        for pipeline in pipelines_of(sample, measured):
            count = parse if pipeline == "parse" else per_frame(program, pipeline, sample)
            own = measured[f"{pipeline}/{sample}"]
            quartiles = statistics.quantiles([a / b for a, b in zip(own, parse_times)], n=4)
            yield (sample, pipeline, f"{count:.0f}", f"{count / parse:.3f}", f"{min(own) / 1000:.2f}",
                   f"{min(own) / min(parse_times):.2f} ({quartiles[0]:.2f}–{quartiles[2]:.2f})",
                   *allocated[f"{pipeline}/{sample}"])


def limit_rows(directory):
    """How far a frame is from the least that it can take: its parse, and a copy of the finished record."""
    program = os.path.join(directory, "count_frames")
    for sample in SAMPLES:
        frame, *parts = (per_frame(program, pipeline, sample) for pipeline in ("frame", "parse", "copy-record"))
        yield sample, f"{sum(parts):.0f}", f"{frame:.0f}", f"{frame / sum(parts):.3f}"


def line_rows(directory):
    """What the text of a record takes; nothing where its libraries were not found."""
    program = os.path.join(directory, "count_frames")
    allocated = heap(os.path.join(directory, "count_allocations"))
    for sample in LINE_SAMPLES:
        if f"line/{sample}" in allocated:
            line, frame = per_frame(program, "line", sample), per_frame(program, "frame", sample)
            yield sample, f"{line:.0f}", f"{line / frame:.2f}", *allocated[f"line/{sample}"]


def camera_rows(directory):
    """What a frame costs through each class; fails when a `Camera` adds more than it may."""
    program = os.path.join(directory, "count_frames")
    allocated = heap(os.path.join(directory, "count_allocations"))
    for sample in CAMERA_SAMPLES:
        counts = {pipeline: per_frame(program, pipeline, sample) for pipeline in CAMERA_PIPELINES}
        base = counts["frame-with-retries"]
        if sample == "12" and counts["camera"] > base * CAMERA_LIMIT:
            sys.exit(f"a Camera takes {counts['camera']:.0f} instructions for a frame, Handler {base:.0f}")
        for pipeline, name in CAMERA_PIPELINES.items():
            yield (sample, name, f"{counts[pipeline]:.0f}", f"{counts[pipeline] / base:.3f}", *allocated[f"{pipeline}/{sample}"])


def camera_table(directory):
    return table(["sample", "through", "instructions", "to `Handler` with retries", "allocations", "bytes"], camera_rows(directory))


def latency_table(directory):
    """Times, so they are those of a machine with that load; what holds the lock how long is what they show."""
    rows = [line.split() for line in output_of([os.path.join(directory, "frame_latency"), "20"]).splitlines()]
    def microseconds(nanoseconds):
        return f"{int(nanoseconds) / 1000:.1f}"

    return table(["eight cameras, 30 frames a second", "count", "median µs", "99 %", "99.9 %", "worst"],
                 [(name.replace("-", " "), count, *map(microseconds, times)) for name, count, *times in rows])


def figures(directory):
    program = os.path.join(directory, "count_frames")
    measured = times(os.path.join(directory, "frame_benchmark"))
    lines = table(["sample", "pipeline", "instructions", "to parse", "best µs", "to parse (quartiles)", "allocations",
                   "bytes"], frame_rows(directory, measured))
    lines += table(["sample", "parse and a copy of the record", "frame", "ratio"], limit_rows(directory))
    lines += camera_table(directory)
    lines += table(["sample", "instructions of a line of JSON", "to `frame`", "allocations", "bytes"], line_rows(directory))
    lines += table(["other than frames", "best µs"],
                   [(name, f"{min(values) / 1000:.1f}") for name, values in measured.items() if "/" not in name])
    lines += table(["requested classes", "instructions of an empty frame"],
                   [(classes, f"{per_frame(program, 'frame', '0', classes):.0f}") for classes in (1, 80)])
    scaling = [line.split() for line in output_of([os.path.join(directory, "thread_scaling")]).splitlines()]
    lines += table(["cameras, each on a thread", "frames per second", "to one", "frames per processor second, to one"],
                   [(row[1], f"{float(row[2]):.0f}", f"{float(row[3]):.2f}", f"{float(row[4]):.2f}")
                    for row in scaling if row[0] == "scaling"])
    lines += table(["requested classes", "lock held, median ns including one clock reading"],
                   [(row[1], row[2]) for row in scaling if row[0] == "lock"])
    lines += latency_table(directory)
    lines += [f"One clock reading took {row[1]} ns on average." for row in scaling if row[0] == "clock"]
    return "\n".join(lines)


def write_figures(document, name, text):
    """Writes the text between the markers of a document; ends the program where it lacks them."""
    if subprocess.run([WRITE_FIGURES, document, name], input=text, text=True, check=False).returncode != 0:
        sys.exit(1)


def load(when):
    """Times are worth something only when little else ran; counts do not depend on it."""
    return f"Load of the machine {when} the measurement: {os.getloadavg()[0]:.1f} with {os.cpu_count()} processors."


def main():
    if len(sys.argv) != 3:
        sys.exit("usage: report.py DIRECTORY DOCUMENT")
    text = load("before") + "\n\n" + figures(sys.argv[1]) + "\n" + load("after")
    print(text)
    write_figures(sys.argv[2], "scripts/benchmark", text)


if __name__ == "__main__":
    main()
