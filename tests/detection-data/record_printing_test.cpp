// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/printed.h"

#include <gtest/gtest.h>
#include <tarnvod/detection_data.h>

namespace tarn::VOD {
namespace {

using test::printed;

TEST(AnEventAction, PrintsItsNameOrItsNumber) {
  EXPECT_EQ(printed(EventAction::Delete), "Delete");
  EXPECT_EQ(printed(EventAction::Connect), "Connect");
  EXPECT_EQ(printed(static_cast<EventAction>(2)), "2");
  EXPECT_EQ(printed(static_cast<EventAction>(-1)), "-1");
}

TEST(ADetectionStatus, PrintsItsNameOrItsNumber) {
  EXPECT_EQ(printed(DetectionStatus::Untracked), "Untracked");
  EXPECT_EQ(printed(DetectionStatus::TrackedUnconfident), "TrackedUnconfident");
  EXPECT_EQ(printed(DetectionStatus::TrackedConfident), "TrackedConfident");
  EXPECT_EQ(printed(static_cast<DetectionStatus>(7)), "7");
}

TEST(AnAttribute, PrintsOnOneLine) {
  EXPECT_EQ(printed(Attribute("colour", "red", 80)), R"(Attribute{typeName: "colour", className: "red", score: 80})");
  EXPECT_EQ(printed(Attribute("colour", std::nullopt, std::nullopt)),
            R"(Attribute{typeName: "colour", className: none, score: none})");
}

TEST(AClassification, PrintsOnOneLine) {
  EXPECT_EQ(printed(Classification("human", 90)), R"(Classification{className: "human", score: 90})");
}

TEST(AnEvent, PrintsOnOneLine) {
  EXPECT_EQ(printed(VodEvent(EventAction::Connect, -1, {5, 3, 5})),
            "VodEvent{action: Connect, objectId: -1, objectIds: [5, 3, 5]}");
}

TEST(AFrame, PrintsOnOneLine) {
  const Data person(0.25F, 0.5F, -0.75F, 1, 42, "human", 90, DetectionStatus::TrackedConfident,
                    {Attribute("colour", "red", 80)}, {Classification("human", 90)});
  EXPECT_EQ(printed(DetectionData(1000, {person}, {VodEvent(EventAction::Delete, 4, {})})),
            R"(DetectionData{timestamp: 1000, detections: [Data{coord1: 0.25, coord2: 0.5, coord3: -0.75, coord4: 1, )"
            R"(objectId: 42, className: "human", score: 90, status: TrackedConfident, )"
            R"(attributes: [Attribute{typeName: "colour", className: "red", score: 80}], )"
            R"(classifications: [Classification{className: "human", score: 90}]}], )"
            R"(events: [VodEvent{action: Delete, objectId: 4, objectIds: []}]})");
}

TEST(AnEmptyFrame, PrintsOnOneLine) {
  EXPECT_EQ(printed(DetectionData(0, {}, {})), "DetectionData{timestamp: 0, detections: [], events: []}");
}

TEST(AName, StaysOnItsLineWhateverItHolds) {
  EXPECT_EQ(printed(Classification("a\"b\\c\nd\x7F\x01 Gr\xC3\xBCn", std::nullopt)),
            "Classification{className: \"a\\\"b\\\\c\\x0ad\\x7f\\x01 Gr\xC3\xBCn\", score: none}");
}

}  // namespace
}  // namespace tarn::VOD
