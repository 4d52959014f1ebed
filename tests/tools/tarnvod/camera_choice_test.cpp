// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Which cameras a command works with that keeps running.

#include "cameras/camera_choice.h"

#include "base/errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vod_host.h>

#include <chrono>
#include <string>

namespace {

using namespace std::chrono_literals;
using tarn::command::CameraChoice;
using tarn::command::Clock;
using testing::ElementsAre;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

/** A service with two channels. */
class ACameraChoice : public testing::Test {
 protected:
  ACameraChoice() {
    vod::host::reset();
    vod::host::setChannelCounts(2, 2);
    CaptureStderr();
  }
  ~ACameraChoice() override { GetCapturedStderr(); }

  const Clock::time_point now = Clock::now();
};

TEST_F(ACameraChoice, IsWhatWasNamedEachOnce) {
  EXPECT_THAT(CameraChoice({2, 1, 2}).find(now).value(), ElementsAre(1, 2));
}

TEST_F(ACameraChoice, WithoutNamesIsAllThatTheServiceHas) {
  EXPECT_THAT(CameraChoice({}).find(now).value(), ElementsAre(1, 2));
}

TEST_F(ACameraChoice, RefusesACameraThatDoesNotExist) {
  EXPECT_THROW(CameraChoice({3}).find(now), tarn::command::Failure);
}

TEST_F(ACameraChoice, WithNamesDoesNotNeedTheService) {
  vod::host::takeServiceDown();

  EXPECT_THAT(CameraChoice({2}).find(now).value(), ElementsAre(2));
}

TEST_F(ACameraChoice, WithoutNamesAsksTheServiceEveryFiveSeconds) {
  vod::host::takeServiceDown();
  CameraChoice choice({});
  EXPECT_FALSE(choice.find(now));
  vod::host::bringServiceUp();

  EXPECT_FALSE(choice.find(now + 4s));
  EXPECT_TRUE(choice.find(now + 5s));
}

TEST(ACameraChoiceOfAServiceThatIsDown, SaysOnceThatItWaits) {
  vod::host::reset();
  vod::host::takeServiceDown();
  CameraChoice choice({});
  const Clock::time_point now = Clock::now();

  CaptureStderr();
  choice.find(now);
  choice.find(now + 5s);

  const std::string errors = GetCapturedStderr();
  const auto said = errors.find("waiting until it does");
  EXPECT_NE(said, std::string::npos);
  EXPECT_EQ(errors.find("waiting", said + 1), std::string::npos);
}

}  // namespace
