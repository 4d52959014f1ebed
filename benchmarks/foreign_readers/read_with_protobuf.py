# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""Reads a recording as somebody would without the command, with Python's Protocol Buffers.

usage: read_with_protobuf.py parse RECORDING
       read_with_protobuf.py csv RECORDING OUTPUT
       read_with_protobuf.py query RECORDING

`parse` prints the number of detections, `csv` writes the columns of `tarnvod export --format csv`, `query` prints the number of detections
of each class and minute as JSON. The path of modules must have what protoc generates from the project's schema.
"""
import collections
import csv
import json
import struct
import sys

import video_object_detection_pb2 as schema

HEADER = ("frame,timestamp,arrival,objectId,className,score,status,coord1,coord2,coord3,coord4,attributes,classifications,"
          "event,objectIds").split(",")
STATUSES = ["Untracked", "TrackedUnconfident", "TrackedConfident"]
MINUTE = 60_000_000  # in microseconds


def scenes_of(recording):
    """The messages stand one after the other, each after its length as a base-128 varint."""
    with open(f"{recording}/scenes.pb", "rb") as file:
        stream = file.read()
    at, end = 0, len(stream)
    while at < end:
        length = shift = 0
        while stream[at] > 127:
            length |= (stream[at] & 127) << shift
            shift += 7
            at += 1
        length |= stream[at] << shift
        at += 1
        yield schema.Scene.FromString(stream[at:at + length])
        at += length


def arrivals_of(recording):
    with open(f"{recording}/scenes.idx", "rb") as file:
        file.seek(32)
        for _, wall_clock, _, _, _ in struct.iter_unpack("<QqqII", file.read()):
            yield wall_clock


def detector_of(recording):
    with open(f"{recording}/detector-information.pb", "rb") as file:
        return schema.DetectorInformation.FromString(file.read())


def class_names(detector):
    return {each.id: each.name for each in detector.object_classes}


def parse(recording):
    print(sum(len(scene.detections) for scene in scenes_of(recording)))


def query(recording):
    names, counts = class_names(detector_of(recording)), collections.Counter()
    for scene in scenes_of(recording):
        minute = scene.timestamp // MINUTE
        for detection in scene.detections:
            counts[names[detection.class_id], minute] += 1
    json.dump([[*key, count] for key, count in sorted(counts.items())], sys.stdout)


def write_csv(recording, output):
    detector = detector_of(recording)
    classes = class_names(detector)
    attributes = {each.id: each.name for each in detector.attribute_types}
    values = {(kind.id, each.id): each.name for kind in detector.attribute_types for each in kind.attribute_classes}
    with open(output, "w", encoding="utf-8", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(HEADER)
        for number, (scene, arrival) in enumerate(zip(scenes_of(recording), arrivals_of(recording)), 1):
            begin = (number, scene.timestamp, arrival)
            for each in scene.detections:
                writer.writerow((
                    *begin, each.object_id, classes[each.class_id], each.score, STATUSES[each.status],
                    f"{each.coord_1:.9g}", f"{each.coord_2:.9g}", f"{each.coord_3:.9g}", f"{each.coord_4:.9g}",
                    ";".join(f"{attributes[part.type]}={values[part.type, getattr(part, 'class')]}:{part.score}"
                             for part in each.attributes),
                    ";".join(f"{classes[getattr(part, 'class')]}:{part.score}" for part in each.classifications), "", ""))
            for each in scene.events:
                action = "Connect" if each.action == schema.EVENT_CONNECT else "Delete"
                writer.writerow((*begin, each.object_id, *[""] * 9, action, " ".join(map(str, each.object_ids))))


if __name__ == "__main__":
    {"parse": parse, "csv": write_csv, "query": query}[sys.argv[1]](*sys.argv[2:])
