# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Counts instructions against the number of cameras, detections, classes, attribute types and recorded frames, and draws the curves.

usage: scale.py BUILD DOCUMENT FOLDER

BUILD holds the benchmark programs and the command. The counts go between the markers of DOCUMENT, the pictures to FOLDER as SVG. Fails
when a curve grows faster than linearly: when its last items cost more each than those before them.
"""
import os
import signal
import subprocess
import sys
import tempfile

from report import instructions, table, write_figures

CAMERAS = [1, 2, 4, 8, 16]
SIZES = [1, 10, 100, 1000]
RECORDED_FRAMES = [1000, 10_000, 100_000, 1_000_000]
TOLERANCE = 1.3  # of the cost of an item between the last two points, to that between the two before them
FLAT = 1.05


def sized(build, cameras=1, detections=12, classes=8, types=6, frames=0):
    numbers = map(str, (cameras, detections, classes, types, frames))
    return instructions([f"{build}/benchmarks/count_scale", *numbers])


def second(build, **size):
    """What the cameras take for a second of ten frames each."""
    cameras = size.get("cameras", 1)
    few, many = (sized(build, frames=cameras * frames, **size) for frames in (10, 30))
    return (many - few) / 2


def frame(build, **size):
    return second(build, **size) / 10


def set_up(build, **size):
    """One set-up of a camera, with what the host platform does for it."""
    return sized(build, cameras=2, **size) - sized(build, cameras=1, **size)


def view(build, recording):
    """What the viewer takes until it can be opened, and to end."""
    with tempfile.TemporaryDirectory() as folder:
        counts, profile = (os.path.join(folder, name) for name in ("counts", "profile"))
        with subprocess.Popen(["valgrind", "--tool=callgrind", f"--callgrind-out-file={profile}", f"--log-file={counts}",
                               f"{build}/tools/tarnvod/tarnvod", "view", "--recording", recording, "--port", "0"],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as viewer:
            viewer.stdout.readline()
            viewer.send_signal(signal.SIGTERM)
        with open(counts, encoding="utf-8") as file:
            return int(next(line for line in file if "Collected : " in line).split()[-1])


def command(build, *arguments):
    return instructions([f"{build}/tools/tarnvod/tarnvod", *arguments])


def recorded(build, frames):
    """What each subcommand takes for a recording of one object."""
    with tempfile.TemporaryDirectory() as folder:
        recording, output = f"{folder}/recording", f"{folder}/output"
        subprocess.run([f"{build}/benchmarks/make_recording", recording, str(frames), "1"], check=True)
        return {"inspect": command(build, "inspect", recording),
                "render": command(build, "render", recording, "--output", output),
                "export": command(build, "export", recording, "--format", "csv", "--output", output),
                "compare": command(build, "compare", recording, recording),
                "view": view(build, recording)}


def curves(build):
    """By picture: the numbers, what they are numbers of, and the counts of each curve."""
    yield "cameras", CAMERAS, {"ten frames of each camera": [second(build, cameras=count) for count in CAMERAS]}
    yield "detections", SIZES, {"frame": [frame(build, detections=count) for count in SIZES]}
    for kind, items in (("classes", "classes"), ("types", "attribute-types")):
        yield items, SIZES, {"frame of 12 detections": [frame(build, **{kind: count}) for count in SIZES],
                            "set-up": [set_up(build, **{kind: count}) for count in SIZES]}
    measured = [recorded(build, frames) for frames in RECORDED_FRAMES]
    yield "recorded-frames", RECORDED_FRAMES, {name: [counts[name] for counts in measured] for name in measured[0]}


def growth(numbers, counts):
    """What an item costs between the last two points, in relation to the two before them; about 10 where the curve is a square."""
    before, last = ((counts[end] - counts[end - 1]) / (numbers[end] - numbers[end - 1]) for end in (len(counts) - 2, len(counts) - 1))
    return last / max(before, 1)


def is_linear(numbers, counts):
    """A curve that barely rises over the whole range is flat, however its pieces relate to each other."""
    return counts[-1] < counts[0] * FLAT or growth(numbers, counts) <= TOLERANCE


def name_picture(path, title):
    """gnuplot's own names have no spaces."""
    with open(path, encoding="utf-8") as file:
        picture = file.read()
    with open(path, "w", encoding="utf-8") as file:
        file.write(picture.replace("<title>Gnuplot</title>", f"<title>{title}</title>"))


def draw(path, items, numbers, lines):
    """With gnuplot, both axes logarithmic: what is linear rises by one decade in each decade."""
    data = "".join(f"${chr(ord('A') + place)} << END\n" + "".join(f"{n} {c}\n" for n, c in zip(numbers, counts)) + "END\n"
                   for place, counts in enumerate(lines.values()))
    plots = ", ".join(f"${chr(ord('A') + place)} with linespoints pointtype 7 pointsize 0.6 linewidth 2 title '{name}'"
                      for place, name in enumerate(lines))
    head = (f"set terminal svg size 560,360 background 'white' font 'sans-serif,13'\nset output '{path}'\nset logscale xy\n"
            f"set format x '%.0f'\nset format y '10^{{%L}}'\nset rmargin 4\nset grid\nset key left top\n"
            f"set xlabel '{items.replace('-', ' ')}'\nset ylabel 'instructions'\n")
    low = min(min(counts) for counts in lines.values())
    high = max(max(counts) for counts in lines.values())
    ranges = f"set xrange [{numbers[0]}:{numbers[-1]}]\nset yrange [{low / 3}:{high * 30}]\n"
    subprocess.run(["gnuplot"], input=f"{head}{ranges}{data}plot {plots}\n", text=True, check=True)
    name_picture(path, f"Instructions against {items.replace('-', ' ')}")


def rows(items, numbers, lines):
    for name, counts in lines.items():
        yield (items.replace("-", " "), name, ", ".join(f"{number:,}" for number in numbers),
               ", ".join(f"{count / 1000:,.0f}" for count in counts),
               "flat" if counts[-1] < counts[0] * FLAT else f"{growth(numbers, counts):.2f}")


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    build, document, folder = (os.path.abspath(path) for path in sys.argv[1:])
    found, steep = [], []
    for items, numbers, lines in curves(build):
        draw(os.path.join(folder, f"cost-of-{items}.svg"), items, numbers, lines)
        found += rows(items, numbers, lines)
        steep += [f"{name} against {items}" for name, counts in lines.items() if not is_linear(numbers, counts)]
        print(*found[-len(lines):], sep="\n", flush=True)
    head = ["of", "cost of", "numbers", "thousands of instructions", "last items to those before"]
    write_figures(document, "scripts/benchmark, scale", "\n".join(table(head, found)))
    if steep:
        sys.exit("faster than linear: " + ", ".join(steep))


if __name__ == "__main__":
    main()
