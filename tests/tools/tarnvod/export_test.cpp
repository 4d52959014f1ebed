// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <recording/recording_writer.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <vector>

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

/** What a Python program prints; its arguments begin at sys.argv[1]. */
std::string python(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<std::string> words{"-c", program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const test::Outcome outcome = test::Process("/usr/bin/python3", words).wait();
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  return outcome.output;
}

class Export : public test::TwoCameras {
 protected:
  test::Outcome exported(const std::string& format, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"export", recording, "--format", format, "--output", output};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return test::run(arguments);
  }

  std::vector<std::string> leftInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(output.parent_path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  const std::filesystem::path output = folder / "out";
};

TEST_F(Export, AsCsvHasARowForEachDetectionAndEachEvent) {
  const test::Outcome outcome = exported("csv");

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_EQ(python(R"py(
import csv, sys
rows = list(csv.DictReader(open(sys.argv[1], newline="")))
print(",".join(rows[0]))
human, car = rows[0], rows[1]
for row in (human, car):
    print(row["frame"], row["timestamp"], row["objectId"], row["className"], row["score"], row["status"],
          row["coord1"], row["coord4"], row["attributes"])
event = [row for row in rows if row["event"]]
print(len(rows), len(event), event[0]["frame"], event[0]["objectId"], event[0]["event"], event[0]["objectIds"])
print(all(int(row["arrival"]) > 1600000000000000 for row in rows))
)py",
                   {output}),
            "frame,timestamp,arrival,objectId,className,score,status,coord1,coord2,coord3,coord4,attributes,"
            "classifications,event,objectIds\n"
            "1 0 7 Human 80 TrackedConfident 0.1 0.6 coat=red\n"
            "1 0 9 car 0 Untracked 0 0 \n"
            "31 1 11 7 Connect 9\n"
            "True\n");
}

TEST_F(Export, AsCsvKeepsNamesWithCommasAndQuotationMarks) {
  ::VOD::DetectorInformation detector;
  auto* strange = detector.add_object_classes();
  strange->set_name("a \"b\", c\nd");
  detector.add_attribute_types()->set_name("x,y");
  ::VOD::Scene scene;
  auto* detection = scene.add_detections();
  detection->add_attributes()->set_score(3);
  auto* classification = detection->add_classifications();
  classification->set_class_(0);
  classification->set_score(50);
  {
    vod::recording::RecordingWriter writer(folder / "strange", detector.SerializeAsString(), std::nullopt);
    writer.append(scene.SerializeAsString());
  }
  EXPECT_EQ(test::run({"export", folder / "strange", "--format", "csv", "--output", output}).exitCode, 0);
  EXPECT_EQ(python(R"py(
import csv, sys
row = list(csv.DictReader(open(sys.argv[1], newline="")))[0]
print([row["className"], row["attributes"], row["classifications"], row["arrival"]])
)py",
                   {output}),
            "['a \"b\", c\\nd', 'x,y:3', 'a \"b\", c\\nd:50', '']\n");
}

TEST_F(Export, AsMotHasPixelsAndFramesFromOne) {
  const test::Outcome outcome = exported("mot", {"--size", "200x100"});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(test::contentsOf(output), StartsWith("1,7,20.00,20.00,20.00,40.00,80,-1,-1,-1\n"
                                                   "1,9,0.00,0.00,0.00,0.00,0,-1,-1,-1\n"
                                                   "2,7,22.00,20.00,20.00,40.00,80,-1,-1,-1\n"));
}

TEST_F(Export, AsMotNeedsTheSizeOfThePicture) {
  const test::Outcome outcome = exported("mot");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("--size"));
  for (const char* size : {"200", "0x100", "-1x100", "axb", "200x"}) {
    EXPECT_EQ(exported("mot", {"--size", size}).exitCode, 2) << size;
  }
  EXPECT_FALSE(std::filesystem::exists(output));
}

TEST_F(Export, AsSqliteAnswersQuestionsWithOneQuery) {
  const test::Outcome outcome = exported("sqlite");

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_EQ(python(R"py(
import sqlite3, sys
database = sqlite3.connect(sys.argv[1])
ask = lambda query: print(database.execute(query).fetchall())
ask("PRAGMA integrity_check")
ask("SELECT count(*), min(timestamp), max(timestamp), count(arrival), count(monotonic) FROM frames")
ask("SELECT className, count(*), count(DISTINCT objectId) FROM detections GROUP BY className ORDER BY className")
ask("SELECT typeName, className, score, count(*) FROM attributes GROUP BY 1, 2, 3")
ask("SELECT frame, action, objectId, value FROM events, json_each(objectIds)")
ask("SELECT round(coord1, 3), round(coord4, 3), score, status FROM detections WHERE frame = 3 AND objectId = 7")
ask("""SELECT (timestamp - (SELECT min(timestamp) FROM frames)) / 60000000 AS minute, count(DISTINCT objectId)
       FROM detections JOIN frames USING (frame) WHERE className = 'Human' GROUP BY minute""")
ask("SELECT count(*) FROM sqlite_master WHERE type = 'index'")
)py",
                   {output}),
            "[('ok',)]\n"
            "[(20, 0, 1900000, 20, 20)]\n"
            "[('Human', 20, 1), ('car', 10, 1)]\n"
            "[('coat', 'red', None, 20)]\n"
            "[(11, 'Connect', 7, 9)]\n"
            "[(0.12, 0.6, 80, 'TrackedConfident')]\n"
            "[(0, 1)]\n"
            "[(6,)]\n");
}

/** Reads an MCAP file by its public description: checks every checksum and offset, and prints what it finds. */
constexpr const char* mcapReader = R"py(
import struct, sys, zlib
data = open(sys.argv[1], "rb").read()
magic = b"\x89MCAP0\r\n"
assert data.startswith(magic) and data.endswith(magic)

def records(start, end):
    while start < end:
        opcode, length = struct.unpack_from("<BQ", data, start)
        yield start, opcode, data[start + 9:start + 9 + length]
        start += 9 + length
    assert start == end

def text(body, at):
    length, = struct.unpack_from("<I", body, at)
    return body[at + 4:at + 4 + length], at + 4 + length

footer_at = len(data) - 8 - 29
opcode, length, summary, offsets, checksum = struct.unpack_from("<BQQQI", data, footer_at)
assert (opcode, length) == (2, 20) and zlib.crc32(data[summary:footer_at + 25]) == checksum
schemas, channels, messages, chunks = {}, {}, {}, {}
for start, opcode, body in records(8, summary):
    if opcode == 3:
        (identity,), (name, at) = struct.unpack_from("<H", body), text(body, 2)
        encoding, at = text(body, at)
        schemas[identity] = name.decode(), encoding.decode(), text(body, at)[0]
    elif opcode == 4:
        identity, schema = struct.unpack_from("<HH", body)
        topic, at = text(body, 4)
        channels[identity] = schema, topic.decode(), text(body, at)[0].decode()
    elif opcode == 6:
        first, last, size, crc = struct.unpack_from("<QQQI", body)
        compression, at = text(body, 28)
        assert compression == b"" and struct.unpack_from("<Q", body, at)[0] == size
        chunk = body[at + 8:]
        assert len(chunk) == size and zlib.crc32(chunk) == crc
        chunks[start] = first, last, 9 + len(body), size
    elif opcode == 7:
        identity, length = struct.unpack_from("<HI", body)
        assert length == len(body) - 6
        for time, offset in struct.iter_unpack("<QQ", body[6:]):
            opcode, length, channel, sequence, logged, published = struct.unpack_from("<BQHIQQ", chunk, offset)
            assert (opcode, channel, logged) == (5, identity, time)
            messages.setdefault(identity, []).append((sequence, logged, published, chunk[offset + 31:offset + 9 + length]))
for start, opcode, body in records(summary, offsets):
    if opcode == 8:
        first, last, at, length = struct.unpack_from("<QQQQ", body)
        assert chunks.pop(at) == (first, last, length, struct.unpack_from("<Q", body, len(body) - 8)[0])
    elif opcode == 11:
        count, schema_count, channel_count = struct.unpack_from("<QHI", body)
        assert (count, schema_count, channel_count) == (sum(map(len, messages.values())), len(schemas), len(channels))
assert not chunks
groups = list(records(offsets, footer_at))
for start, opcode, body in groups:
    group, at, length = struct.unpack("<BQQ", body)
    assert opcode == 14 and all(found == group for _, found, _ in records(at, at + length))
for identity, (schema, topic, encoding) in channels.items():
    name, schema_encoding, descriptors = schemas[schema]
    print(topic, encoding, name, schema_encoding, b"VOD" in descriptors and b"object_id" in descriptors, len(messages[identity]))
scenes = messages[1]
print([sequence for sequence, *_ in scenes] == list(range(1, len(scenes) + 1)), scenes[3][2])
stream = open(sys.argv[2], "rb").read()
for _, logged, _, scene in scenes:
    length = len(scene)
    prefix = bytes([length]) if length < 128 else bytes([length & 127 | 128, length >> 7])
    assert logged > 1600000000 * 10**9 and stream.startswith(prefix + scene)
    stream = stream[len(prefix) + length:]
print(len(stream), messages[2][0][3] == open(sys.argv[3], "rb").read())
)py";

TEST_F(Export, AsMcapKeepsTheMessagesByteForByteWithTheirSchema) {
  const test::Outcome outcome = exported("mcap");

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_EQ(python(mcapReader, {output, recording / "scenes.pb", recording / "detector-information.pb"}),
            "/scenes protobuf VOD.Scene protobuf True 20\n"
            "/detector-information protobuf VOD.DetectorInformation protobuf True 1\n"
            "True 300000000\n"
            "0 True\n");
}

TEST_F(Export, AsMcapOfALongRecordingHasSeveralChunks) {
  {
    vod::recording::RecordingWriter writer(folder / "long", test::detector().SerializeAsString());
    for (int number = 0; number < 30000; ++number) {
      writer.append(test::sceneBytes(number));
    }
  }
  const test::Outcome outcome = test::run({"export", folder / "long", "--format", "mcap", "--output", output});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(python(mcapReader, {output, folder / "long" / "scenes.pb", recording / "detector-information.pb"}),
              HasSubstr("VOD.Scene protobuf True 30000\n"));
}

class ExportOfAnyFormat : public Export, public testing::WithParamInterface<const char*> {
 protected:
  const std::vector<std::string> size_ =
      std::string(GetParam()) == "mot" ? std::vector<std::string>{"--size", "9x9"} : std::vector<std::string>{};
};

TEST_P(ExportOfAnyFormat, ReplacesAFileThatIsThere) {
  test::writeTo(output, "something else");
  EXPECT_EQ(exported(GetParam(), size_).exitCode, 0);
  EXPECT_THAT(test::contentsOf(output), testing::Not(HasSubstr("something else")));
  EXPECT_THAT(leftInFolder(), testing::UnorderedElementsAre("recording", "out"));
}

TEST_P(ExportOfAnyFormat, OfNothingLeavesTheFileAsItWas) {
  test::writeTo(output, "something else");
  std::filesystem::remove(recording / "scenes.pb");
  const test::Outcome outcome = exported(GetParam(), size_);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr((recording / "scenes.pb").string() + ": No such file or directory"));
  EXPECT_EQ(test::contentsOf(output), "something else");
  EXPECT_THAT(leftInFolder(), testing::UnorderedElementsAre("recording", "out"));
}

TEST_P(ExportOfAnyFormat, OfADamagedRecordingHoldsWhatCanBeReadAndFails) {
  std::filesystem::resize_file(recording / "scenes.pb", std::filesystem::file_size(recording / "scenes.pb") - 3);
  const test::Outcome outcome = exported(GetParam(), size_);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("cut off"));
  EXPECT_THAT(outcome.errors, HasSubstr(output.string() + " holds what could be read"));
  EXPECT_GT(std::filesystem::file_size(output), 100U);
}

TEST_P(ExportOfAnyFormat, IntoAFolderThatIsMissingNamesThePath) {
  std::vector<std::string> arguments{"export", recording, "--format", GetParam(), "--output", output / "deep"};
  arguments.insert(arguments.end(), size_.begin(), size_.end());
  const test::Outcome outcome = test::run(arguments);
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: " + (output / "deep").string() + ": No such file or directory\n");
}

INSTANTIATE_TEST_SUITE_P(ByFormat, ExportOfAnyFormat, testing::Values("csv", "mot", "sqlite", "mcap"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_F(Export, ToAFullDiskFails) {
  const test::Outcome outcome = test::run({"export", recording, "--format", "csv", "--output", "/dev/full"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: /dev/full: No space left on device\n");
}

TEST_F(Export, MayBeWrittenIntoAPipe) {
  const test::Outcome outcome = test::run({"export", recording, "--format", "csv", "--output", "/dev/stdout"});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, StartsWith("frame,timestamp,arrival,"));
}

TEST_F(Export, KnowsFourFormats) {
  const test::Outcome outcome = exported("xml");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("xml"));
}

}  // namespace
