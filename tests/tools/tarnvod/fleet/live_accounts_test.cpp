// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/live_accounts.h"

#include "fleet/messages.h"
#include "fleet/number_set.h"
#include "fleet/topics.h"
#include "records/frame_json.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace tarn::command;
using namespace tarn::VOD;

namespace {

using Ranges = std::vector<NumberSet::Range>;

TEST(ASetOfNumbers, JoinsWhatIsAdjacent) {
  NumberSet numbers;
  numbers.add(1, 3);
  numbers.add(7, 9);

  EXPECT_EQ(numbers.add(4, 6), 3U);

  EXPECT_EQ(numbers.ranges(), 1U);
  EXPECT_EQ(numbers.size(), 9U);
}

TEST(ASetOfNumbers, CountsOnlyWhatIsNew) {
  NumberSet numbers;
  numbers.add(2, 4);
  numbers.add(8, 8);

  EXPECT_EQ(numbers.add(3, 9), 4U);
  EXPECT_EQ(numbers.add(5, 5), 0U);

  EXPECT_EQ(numbers.size(), 8U);
  EXPECT_EQ(numbers.lowest(), 2U);
  EXPECT_EQ(numbers.highest(), 9U);
}

TEST(ASetOfNumbers, FindsItsGaps) {
  NumberSet numbers;
  numbers.add(3, 4);
  numbers.add(7, 7);

  EXPECT_EQ(numbers.gaps(1, 9), (Ranges{{1, 2}, {5, 6}, {8, 9}}));
  EXPECT_EQ(numbers.gaps(3, 7), (Ranges{{5, 6}}));
  EXPECT_EQ(numbers.gaps(4, 5), (Ranges{{5, 5}}));
  EXPECT_TRUE(numbers.gaps(3, 4).empty());
}

TEST(AnEmptySetOfNumbers, IsOneGap) {
  EXPECT_EQ(NumberSet().gaps(1, 3), (Ranges{{1, 3}}));
}

class ALiveAudit : public testing::Test {
 protected:
  static constexpr const char* firstStart = "0123456789abcdef";
  static constexpr const char* secondStart = "fedcba9876543210";

  void frame(std::uint64_t sequence, const std::string& start = firstStart) {
    const Envelope envelope{1, sequence, arrivalOf(sequence), true};
    live.take(framesTopic("north", "gate", 1), frameJson({0, {}, {}}, {"north", "gate", start}, envelope),
              arrivalOf(sequence) + delay);
  }

  void frames(std::uint64_t first, std::uint64_t last, const std::string& start = firstStart) {
    for (std::uint64_t sequence = first; sequence <= last; ++sequence) {
      frame(sequence, start);
    }
  }

  void dropped(std::uint64_t first, std::uint64_t last) {
    live.take(droppedTopic("north", "gate", 1),
              droppedJson({"north", "gate", firstStart}, {1, firstStart, first, last}), 0);
  }

  void status(const std::string& state, std::uint64_t numbered, const std::string& start = firstStart) {
    PublisherReport report;
    report.state = state;
    CameraReport camera;
    camera.status.camera = 1;
    camera.numbered = numbered;
    report.cameras.push_back(camera);
    live.take(statusTopic("north", "gate"), statusJson({"north", "gate", start}, report), 0);
  }

  static std::int64_t arrivalOf(std::uint64_t sequence) { return 1'000'000 * static_cast<std::int64_t>(sequence); }

  CameraAccount account() const { return live.accounts().at(0); }

  std::int64_t delay = 0;
  LiveAccounts live{AuditOptions{}};
};

TEST_F(ALiveAudit, OfFramesWithoutGapsFindsNothing) {
  frames(1, 10);

  EXPECT_EQ(account().stored, 10U);
  EXPECT_EQ(account().numbered, 10U);
  EXPECT_EQ(account().missing, 0U);
}

TEST_F(ALiveAudit, BeginsWithTheFirstFrameThatItHears) {
  status("running", 5);
  frames(6, 7);

  EXPECT_EQ(account().numbered, 2U);
  EXPECT_EQ(account().missing, 0U);
}

TEST_F(ALiveAudit, FindsTheFramesThatAreMissing) {
  frames(1, 3);
  frames(6, 6);

  EXPECT_EQ(account().missing, 2U);
  EXPECT_EQ(account().missingSince, arrivalOf(3));
  EXPECT_EQ(account().missingFrames, (std::vector<FrameRange>{{1, firstStart, 4, 5}}));
}

TEST_F(ALiveAudit, DoesNotMissWhatComesLater) {
  frames(1, 3);
  frames(6, 6);
  frames(4, 5);

  EXPECT_EQ(account().missing, 0U);
  EXPECT_EQ(account().missingSince, std::nullopt);
}

TEST_F(ALiveAudit, CountsFramesThatComeAgain) {
  frames(1, 3);
  frames(2, 3);

  EXPECT_EQ(account().repeated, 2U);
  EXPECT_EQ(account().stored, 3U);
}

TEST_F(ALiveAudit, CountsFramesThatAreLate) {
  frame(1);
  delay = 11'000'000;
  frame(2);

  EXPECT_EQ(account().late, 1U);
}

TEST_F(ALiveAudit, CountsWhatTheDeviceDroppedApart) {
  frames(1, 2);
  dropped(3, 4);
  frames(6, 6);

  EXPECT_EQ(account().dropped, 2U);
  EXPECT_EQ(account().missing, 1U);
  EXPECT_EQ(account().numbered, 6U);
}

TEST_F(ALiveAudit, WaitsForTheEndOfAStartThatRuns) {
  frames(1, 2);
  status("running", 5);

  EXPECT_EQ(account().waiting, 3U);
  EXPECT_EQ(account().missing, 0U);
}

TEST_F(ALiveAudit, MissesTheEndOfAStartThatHasEnded) {
  frames(1, 2);
  status("stopped", 5);

  EXPECT_EQ(account().waiting, 0U);
  EXPECT_EQ(account().missing, 3U);
}

TEST_F(ALiveAudit, MissesTheBeginningOfTheNextStart) {
  frames(1, 2);
  frames(3, 4, secondStart);

  EXPECT_EQ(account().starts, 2U);
  EXPECT_EQ(account().missing, 2U);
}

TEST_F(ALiveAudit, RefusesForgedNumbers) {
  frames(1, 1);
  frame(1'000'000'000);
  dropped(2, 1'000'000'000);
  status("stopped", 1'000'000'000);

  EXPECT_EQ(account().missing, 0U);
  EXPECT_EQ(live.refused().at("a number that cannot be the camera's"), 3U);
}

TEST_F(ALiveAudit, RefusesAStartWithMoreGapsThanItKeeps) {
  for (std::uint64_t number = 1; number <= 10'001; ++number) {
    frame(2 * number);
  }

  EXPECT_EQ(live.refused().at("too many gaps"), 1U);
  EXPECT_EQ(account().stored, 10'000U);
}

TEST_F(ALiveAudit, CountsMessagesThatAreNotOfAFleet) {
  live.take(framesTopic("north", "gate", 1), "garbage", 0);

  EXPECT_EQ(live.refused().at("not a JSON object"), 1U);
  EXPECT_TRUE(live.accounts().empty());
}

}  // namespace
