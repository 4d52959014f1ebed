// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Which empty frames may have been made without the classes that were asked for, and when frames stay away.

#include <gtest/gtest.h>
#include <tarnvod/detail/camera_flow.h>

#include <chrono>

namespace {

using tarn::VOD::detail::CameraFlow;
using namespace std::chrono_literals;

class AnEmptyFrame : public testing::Test {
 protected:
  CameraFlow::Setup setUp(bool success) {
    const CameraFlow::Setup setup = flow_.beginSetup(now_);
    flow_.endSetup(success, now_);
    return setup;
  }

  bool isAccepted(CameraFlow::Setup setup) { return flow_.accept(setup, false, now_); }

  /** Also has the application take it, for some time. */
  bool isDelivered(CameraFlow::Setup setup, CameraFlow::Duration duration) {
    const CameraFlow::Time arrival = now_;
    const bool isComplete = isAccepted(setup);
    flow_.beginCallback();
    now_ += duration;
    flow_.endCallback(arrival, now_);
    return isComplete;
  }

  CameraFlow::Time now_{1h};
  CameraFlow flow_{now_};
};

TEST_F(AnEmptyFrame, OfASetUpThatSucceededIsComplete) {
  EXPECT_TRUE(isAccepted(setUp(true)));
}

TEST_F(AnEmptyFrame, OfASetUpThatFailedIsDoubtful) {
  EXPECT_FALSE(isAccepted(setUp(false)));
  EXPECT_TRUE(flow_.isDoubtful());
}

TEST_F(AnEmptyFrame, OfASetUpThatMayStillFailIsDoubtful) {
  setUp(true);
  const CameraFlow::Setup undecided = flow_.beginSetup(now_);
  EXPECT_FALSE(isAccepted(undecided));
  flow_.endSetup(true, now_);
  EXPECT_TRUE(isAccepted(undecided));
}

TEST_F(AnEmptyFrame, OfTheSetUpBeforeIsCompleteWhileThatIsRenewed) {
  const CameraFlow::Setup before = setUp(true);
  flow_.beginSetup(now_);
  EXPECT_TRUE(isAccepted(before));
}

TEST_F(AnEmptyFrame, OfASetUpThatSucceededIsCompleteAlthoughAPauseWasSeenMeanwhile) {
  const CameraFlow::Setup before = setUp(true);
  const CameraFlow::Setup renewed = flow_.beginSetup(now_);
  now_ += CameraFlow::lease;
  EXPECT_FALSE(isAccepted(before));
  flow_.endSetup(true, now_);
  EXPECT_TRUE(isAccepted(renewed));
}

TEST_F(AnEmptyFrame, IsDoubtfulAfterAPause) {
  const CameraFlow::Setup setup = setUp(true);
  now_ += CameraFlow::lease - 1ms;
  EXPECT_TRUE(isAccepted(setup));
  now_ += 1ms;
  EXPECT_FALSE(isAccepted(setup));
}

TEST_F(AnEmptyFrame, AfterOneWithDetectionsOfTheSameSetUpIsComplete) {
  const CameraFlow::Setup setup = setUp(true);
  const CameraFlow::Setup failed = setUp(false);
  EXPECT_FALSE(isAccepted(setup));
  EXPECT_TRUE(flow_.accept(setup, true, now_));
  EXPECT_TRUE(isAccepted(setup));
  EXPECT_FALSE(isAccepted(failed));
}

TEST_F(AnEmptyFrame, AfterALongCallbackIsTakenForComplete) {
  const CameraFlow::Setup setup = setUp(true);
  const CameraFlow::Time begin = now_;
  flow_.beginCallback();
  now_ += 5s;
  EXPECT_TRUE(isAccepted(setup)) << "of another subscription, during the callback";
  flow_.endCallback(begin, now_);
  EXPECT_TRUE(isAccepted(setup));
}

TEST_F(AnEmptyFrame, IsTakenForCompleteForTenSecondsOfTheServicesTimeAtMost) {
  const CameraFlow::Setup setup = setUp(true);
  EXPECT_TRUE(isDelivered(setup, 5s));
  for (int tenth = 1; tenth < 100; ++tenth) {
    now_ += 100ms;
    EXPECT_TRUE(isDelivered(setup, 0s));
    EXPECT_GT(flow_.nextLook(now_), now_) << "tenths of a second: " << tenth;
  }
  now_ += 100ms;
  EXPECT_TRUE(isDelivered(setup, 0s));
  EXPECT_LE(flow_.nextLook(now_), now_) << "the set-up is due for renewal";
}

TEST(ACameraWhoseCallbackRuns, IsNotQuiet) {
  const CameraFlow::Time begin{1h};
  CameraFlow flow(begin);
  flow.beginCallback();
  EXPECT_FALSE(flow.isQuiet(begin + 1h));
  flow.endCallback(begin, begin + 1h);
  EXPECT_FALSE(flow.isQuiet(begin + 1h));
  EXPECT_TRUE(flow.isQuiet(begin + 2h));
}

}  // namespace
