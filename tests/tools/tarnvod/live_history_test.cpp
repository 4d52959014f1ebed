// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/live_history.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>

using namespace std::chrono_literals;

using tarn::command::Clock;
using tarn::command::LiveHistory;
using tarn::VOD::Data;
using tarn::VOD::DetectionData;
using tarn::VOD::DetectionStatus;
using tarn::VOD::EventAction;
using tarn::VOD::VodEvent;
using testing::SizeIs;

namespace {

/** A frame with one human. */
DetectionData frameOf(unsigned int objectId, std::vector<VodEvent> events = {}) {
  return {0, {Data(0, 0, 1, 1, objectId, "human", 80, DetectionStatus::TrackedConfident, {}, {})}, std::move(events)};
}

class ALiveHistory : public testing::Test {
 protected:
  const Clock::time_point start{1000s};
  LiveHistory history;
};

TEST_F(ALiveHistory, KeepsWhenAnObjectWasFirstAndLastSeen) {
  history.add(frameOf(7), start);
  history.add(frameOf(7), start + 500ms);

  const auto tracks = history.toJson(start + 1s)["tracks"];

  ASSERT_THAT(tracks, SizeIs(1));
  EXPECT_EQ(tracks[0]["objectId"], 7);
  EXPECT_EQ(tracks[0]["className"], "human");
  EXPECT_EQ(tracks[0]["first"], 1'000'000);
  EXPECT_EQ(tracks[0]["last"], 1'000'500);
}

TEST_F(ALiveHistory, StartsANewTrackAfterAGap) {
  history.add(frameOf(7), start);
  history.add(frameOf(7), start + 1500ms);

  EXPECT_THAT(history.toJson(start + 2s)["tracks"], SizeIs(2));
}

TEST_F(ALiveHistory, KeepsEventsWithTheirTime) {
  history.add(frameOf(7, {VodEvent(EventAction::Delete, 3, {})}), start);

  const auto events = history.toJson(start + 1s)["events"];

  ASSERT_THAT(events, SizeIs(1));
  EXPECT_EQ(events[0]["action"], "Delete");
  EXPECT_EQ(events[0]["at"], 1'000'000);
}

TEST_F(ALiveHistory, ForgetsAfterAMinute) {
  history.add(frameOf(7, {VodEvent(EventAction::Delete, 3, {})}), start);

  const auto past = history.toJson(start + 61s);

  EXPECT_THAT(past["tracks"], SizeIs(0));
  EXPECT_THAT(past["events"], SizeIs(0));
}

TEST_F(ALiveHistory, OfVeryManyObjectsForgetsTheOldest) {
  for (unsigned int objectId = 0; objectId < 5000; ++objectId) {
    history.add(frameOf(objectId), start);
  }

  const auto tracks = history.toJson(start)["tracks"];

  ASSERT_THAT(tracks, SizeIs(2000));
  EXPECT_EQ(tracks[0]["objectId"], 3000);
}

}  // namespace
