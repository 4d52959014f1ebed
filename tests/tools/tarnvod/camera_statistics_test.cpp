// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "cameras/camera_statistics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

using namespace std::chrono_literals;
using tarn::command::CameraStatistics;
using tarn::command::Clock;
using tarn::VOD::Attribute;
using tarn::VOD::Classification;
using tarn::VOD::Data;
using tarn::VOD::DetectionData;
using tarn::VOD::DetectionStatus;
using testing::ElementsAre;
using testing::Pair;

namespace {

DetectionData frameWith(std::uint32_t objectId, const std::string& className) {
  return {0,
          {Data(0, 0, 0, 0, objectId, className, 50, DetectionStatus::TrackedConfident, std::vector<Attribute>(),
                std::vector<Classification>())},
          {}};
}

class Statistics : public testing::Test {
 protected:
  void add(Clock::duration at, std::uint32_t objectId = 1) { statistics.add(frameWith(objectId, "human"), start + at); }

  const Clock::time_point start = Clock::now();
  CameraStatistics statistics;
};

}  // namespace

using TheRate = Statistics;

TEST_F(TheRate, IsThatOfTheLastThreeSeconds) {
  for (int second = 0; second < 60; ++second) {
    add(std::chrono::seconds(second));
  }
  for (int tenth = 0; tenth <= 30; ++tenth) {
    add(60s + tenth * 100ms);
  }

  EXPECT_DOUBLE_EQ(statistics.rate(start + 63s), 10);
}

TEST_F(TheRate, IsZeroThreeSecondsAfterTheLastFrame) {
  add(0s);
  add(100ms);

  EXPECT_DOUBLE_EQ(statistics.rate(start + 3s), 10);
  EXPECT_DOUBLE_EQ(statistics.rate(start + 3s + 101ms), 0);
}

using AnObject = Statistics;

TEST_F(AnObject, CountsOnceHoweverManyFramesItIsIn) {
  add(0s);
  add(1s);
  add(2s);
  add(2s, 2);

  EXPECT_THAT(statistics.objectsByClass(), ElementsAre(Pair("human", 2)));
}

TEST_F(AnObject, ThatComesBackWithinAMinuteDoesNotCountAgain) {
  add(0s);
  add(30s, 2);
  add(60s);

  EXPECT_THAT(statistics.objectsByClass(), ElementsAre(Pair("human", 2)));
}

TEST_F(AnObject, ThatComesBackAfterAMinuteCountsAgain) {
  add(0s);
  add(61s, 2);
  add(62s);

  EXPECT_THAT(statistics.objectsByClass(), ElementsAre(Pair("human", 3)));
}

TEST_F(AnObject, IsAsOldAsTheTimeBetweenItsFirstAndItsLastFrame) {
  add(0s);
  add(2s);
  add(5s);

  EXPECT_EQ(statistics.ageOf(1), 5s);
  EXPECT_EQ(statistics.ageOf(2), 0s);
}
