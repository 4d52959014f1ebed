// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/frame_json.h"

#include "records/json.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <string>
#include <vector>

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

Data detectionAt(float coord1, float coord2, float coord3, float coord4) {
  return {coord1, coord2, coord3, coord4, 7, "human", 80, DetectionStatus::TrackedConfident, {}, {}};
}

Data detectionNamed(const std::string& name) {
  return {0,
          0,
          0,
          0,
          7,
          name,
          80,
          DetectionStatus::Untracked,
          {{name, name, 5}, {"hat", std::nullopt, std::nullopt}},
          {{name, std::nullopt}}};
}

void expectTheTextOfValues(const DetectionData& frame) {
  const std::string schema = R"({"schema":"tarnvod.frame/1",)";
  EXPECT_EQ(frameJson(frame, 3) + '\n', schema + oneLine(toJson(frame, 3)).substr(1));
}

TEST(AFrameWrittenDirectly, HasAllFieldsInTheirOrder) {
  const DetectionData frame{100000, {detectionNamed("car")}, {{EventAction::Connect, 7, {9, -1}}}};

  EXPECT_EQ(
      frameJson(frame, 1),
      R"({"schema":"tarnvod.frame/1","camera":1,"timestamp":100000,"detections":[{"coord1":0.0,)"
      R"("coord2":0.0,"coord3":0.0,"coord4":0.0,"objectId":7,"className":"car","score":80,"status":"Untracked","attributes":[{"typeName":"car",)"
      R"("className":"car","score":5},{"typeName":"hat","className":null,"score":null}],)"
      R"("classifications":[{"className":"car","score":null}]}],)"
      R"("events":[{"action":"Connect","objectId":7,"objectIds":[9,-1]}]})");
  expectTheTextOfValues(frame);
}

TEST(AFrameWrittenDirectly, HasTheNumbersOfValues) {
  using Limits = std::numeric_limits<float>;
  expectTheTextOfValues({std::numeric_limits<std::uint64_t>::max(),
                         {detectionAt(0.1F, 1, -0.0F, 1.0F / 3), detectionAt(1e10F, 1e-7F, 123456.7F, 0.0001F),
                          detectionAt(Limits::max(), Limits::denorm_min(), Limits::infinity(), Limits::quiet_NaN())},
                         {}});
}

TEST(AFrameWrittenDirectly, HasTheTextsOfValues) {
  for (const char* name : {"", "\"\\/", "\x1b[31m\n\t", "Grün 車 🚗", "\xFFx\xE8\xBB", "\x7F\xC2\x9B", "</script>"}) {
    expectTheTextOfValues({0, {detectionNamed(name)}, {}});
  }
}

TEST(AFrameWrittenDirectly, MayBeEmpty) {
  expectTheTextOfValues({0, {}, {}});
}

TEST(AFrameWrittenDirectly, IsAppendedToTheText) {
  const DetectionData frame{100000, std::vector<Data>(100, detectionNamed("car")), {}};
  TextBuffer text;
  text.append("before,");

  appendFrameJson(text, frame, 3);
  appendFrameJson(text, frame, 3);

  EXPECT_EQ(text.text(), "before," + frameJson(frame, 3) + frameJson(frame, 3));
  expectTheTextOfValues(frame);
}

TEST(AFrameInAnEnvelope, GainsFieldsAndKeepsTheOthers) {
  const DetectionData frame{100000, {detectionNamed("car")}, {}};
  const std::string plain = frameJson(frame, 2);

  const std::string text = frameJson(frame, {"north", "gate", "0123456789abcdef"}, {2, 7, 1700000000000001, true});

  const std::string head = R"({"schema":"tarnvod.frame/1",)";
  EXPECT_EQ(text, head +
                      R"("site":"north","device":"gate","start":"0123456789abcdef","sequence":7,)"
                      R"("arrival":1700000000000001,"clockSet":true,)" +
                      plain.substr(head.size()));
}

}  // namespace
