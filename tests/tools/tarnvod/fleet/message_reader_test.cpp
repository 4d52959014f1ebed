// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/message_reader.h"

#include "fleet/messages.h"
#include "fleet/topics.h"
#include "records/frame_json.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

const Origin origin{"north", "gate", "0123456789abcdef"};
const std::string topic = framesTopic("north", "gate", 2);

std::string validFrame() {
  const DetectionData frame{
      5, {{0, 0, 1, 1, 7, "human", 80, DetectionStatus::Untracked, {{"coat", "red", 5}}, {}}}, {}};
  return frameJson(frame, origin, {2, 41, 1000, true});
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  return text.replace(text.find(from), from.size(), to);
}

std::string refusalOf(const std::string& messageTopic, const std::string& payload) {
  try {
    readMessage(messageTopic, payload);
  } catch (const Refusal& refusal) {
    return refusal.what();
  }
  return "";
}

TEST(AReceivedFrame, IsReadWithItsOriginAndNumber) {
  const auto message = readMessage(topic, validFrame());

  const auto& frame = std::get<CollectedFrame>(message);
  EXPECT_EQ(frame.origin.device, "gate");
  EXPECT_EQ(frame.envelope.camera, 2);
  EXPECT_EQ(frame.envelope.sequence, 41U);
  EXPECT_EQ(frame.envelope.arrival, 1000);
  EXPECT_TRUE(frame.envelope.clockSet);
  EXPECT_EQ(frame.timestamp, 5U);
  EXPECT_EQ(frame.detections.size(), 1U);
}

TEST(AReceivedFrame, MayHaveFieldsThatAreNotKnown) {
  EXPECT_EQ(refusalOf(topic, replaced(validFrame(), "{", R"({"later":[{"added":1}],)")), "");
}

TEST(AReceivedMessage, OfAnotherTopicIsRefused) {
  for (const char* other : {"tarnvod/north/gate/camera/0/frames", "tarnvod/north/gate/camera/02/frames", "x",
                            "tarnvod/north/gate/camera/2/other", "tarnvod/no rth/gate/camera/2/frames",
                            "tarnvod//gate/camera/2/frames", "tarnvod/north/gate/stored"}) {
    EXPECT_EQ(refusalOf(other, validFrame()), "not a topic of a fleet") << other;
  }
}

TEST(AReceivedMessage, ThatIsNotJsonIsRefused) {
  for (const std::string payload : {"", "garbage", "{", "[1]", "\xFF\xFE", "{\"schema\":\"\xFF\"}", "null"}) {
    EXPECT_EQ(refusalOf(topic, payload), "not a JSON object") << payload;
  }
}

TEST(AReceivedMessage, ThatIsNestedWithoutEndIsRefused) {
  EXPECT_EQ(refusalOf(topic, std::string(500'000, '[')), "nested too deeply");
  EXPECT_EQ(refusalOf(topic, R"({"schema":)" + std::string(100'000, '[') + std::string(100'000, ']') + "}"),
            "nested too deeply");
}

TEST(AReceivedMessage, MayHaveBracketsInTexts) {
  EXPECT_EQ(refusalOf(topic, replaced(validFrame(), "human", std::string(100, '[') + "\\\"" + std::string(100, '{'))),
            "");
}

TEST(AReceivedMessage, LargerThanAMebibyteIsRefused) {
  EXPECT_EQ(refusalOf(topic, validFrame() + std::string(largestMessage, ' ')), "larger than a mebibyte");
}

TEST(AReceivedMessage, OfAnotherSchemaIsRefused) {
  EXPECT_EQ(refusalOf(topic, replaced(validFrame(), "frame/1", "frame/2")), "another schema");
  EXPECT_EQ(refusalOf(topic, R"({"temperature":21})"), "another schema");
  EXPECT_EQ(refusalOf(topic, R"({"schema":1})"), "another schema");
  EXPECT_EQ(refusalOf(topic, goneJson(origin)), "another schema");
}

TEST(AReceivedMessage, OfAnotherCameraThanItsTopicIsRefused) {
  for (const std::string& other :
       {framesTopic("south", "gate", 2), framesTopic("north", "yard", 2), framesTopic("north", "gate", 1)}) {
    EXPECT_EQ(refusalOf(other, validFrame()), "another camera than that of the topic") << other;
  }
}

class AReceivedFrameWithABadField : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(AReceivedFrameWithABadField, IsRefused) {
  EXPECT_EQ(refusalOf(topic, replaced(validFrame(), GetParam()[0], GetParam()[1])), "a field is missing or invalid");
}

INSTANTIATE_TEST_SUITE_P(
    EachField, AReceivedFrameWithABadField,
    testing::Values(std::vector<std::string>{R"("sequence":41)", R"("sequence":0)"},
                    std::vector<std::string>{R"("sequence":41)", R"("sequence":-1)"},
                    std::vector<std::string>{R"("sequence":41)", R"("sequence":4.5)"},
                    std::vector<std::string>{R"("sequence":41)", R"("sequence":18446744073709551615)"},
                    std::vector<std::string>{R"("sequence":41)", R"("sequence":"41")"},
                    std::vector<std::string>{R"("sequence":41,)", ""},
                    std::vector<std::string>{R"("start":"0123456789abcdef")", R"("start":"'; DROP TABLE frames;--")"},
                    std::vector<std::string>{R"("arrival":1000)", R"("arrival":null)"},
                    std::vector<std::string>{R"("clockSet":true)", R"("clockSet":1)"},
                    std::vector<std::string>{R"("timestamp":5)", R"("timestamp":-5)"},
                    std::vector<std::string>{R"("detections":[{)", R"("detections":[1,{)"},
                    std::vector<std::string>{R"("coord1":0.0)", R"("coord1":"0")"},
                    std::vector<std::string>{R"("objectId":7)", R"("objectId":{})"},
                    std::vector<std::string>{R"("typeName":"coat")", R"("typeName":null)"},
                    std::vector<std::string>{R"("events":[])", R"("events":[{}])"},
                    std::vector<std::string>{R"("events":[])", R"("events":{})"}));

TEST(AReceivedNote, IsReadWithItsRange) {
  const auto message = readMessage(droppedTopic("north", "gate", 2), droppedJson(origin, {2, origin.start, 3, 9}));

  EXPECT_EQ(std::get<CollectedNote>(message).frames, (FrameRange{2, origin.start, 3, 9}));
}

TEST(AReceivedNote, OfARangeThatEndsBeforeItBeginsIsRefused) {
  EXPECT_EQ(refusalOf(droppedTopic("north", "gate", 2), droppedJson(origin, {2, origin.start, 9, 3})),
            "a field is missing or invalid");
}

TEST(AReceivedStatus, IsReadWithItsCameras) {
  PublisherReport report;
  report.state = "running";
  CameraReport camera;
  camera.status.camera = 2;
  camera.status.state = CameraState::Silent;
  camera.numbered = 7;
  report.cameras.push_back(camera);

  const auto message = readMessage(statusTopic("north", "gate"), statusJson(origin, report));

  const auto& status = std::get<CollectedStatus>(message);
  EXPECT_EQ(status.state, "running");
  ASSERT_EQ(status.cameras.size(), 1U);
  EXPECT_EQ(status.cameras[0].state, "Silent");
  EXPECT_EQ(status.cameras[0].numbered, 7U);
}

TEST(AReceivedStatus, OfAPublisherThatIsGoneNeedsNoCameras) {
  EXPECT_EQ(refusalOf(statusTopic("north", "gate"), goneJson(origin)), "");
  EXPECT_EQ(refusalOf(statusTopic("north", "gate"), replaced(goneJson(origin), "gone", "odd")),
            "a field is missing or invalid");
}

TEST(TheReportOfACollector, IsReadBackAsItWasWritten) {
  const StoredFrames stored{{{1, origin.start, 1, 20}, {2, origin.start, 5, 5}}, {{1, origin.start, 21, 30}}};

  const auto read = parseStored(storedJson("north", "gate", stored));

  ASSERT_TRUE(read);
  EXPECT_EQ(read->frames, stored.frames);
  EXPECT_EQ(read->dropped, stored.dropped);
}

TEST(TheReportOfACollector, IsNoneOfOtherTexts) {
  for (const char* text : {"", "{}", "[]", R"({"schema":"tarnvod.stored/1","frames":1,"dropped":[]})"}) {
    EXPECT_FALSE(parseStored(text)) << text;
  }
}

}  // namespace
