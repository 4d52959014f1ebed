// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Random outages, one after the other: after each one the detections that were asked for flow again within two seconds
// of the service's return, no frame is passed off as complete that is not, and the states follow from one another.

#include "camera/camera_test.h"

#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <utility>

namespace tarn::test {
namespace {

using testing::Each;
using testing::ElementsAre;

/** How many outages, by the environment variable TARNVOD_TEST_OUTAGES. */
int numberOfOutages() {
  constexpr int ofANormalRun = 500;
  const char* const wanted = std::getenv("TARNVOD_TEST_OUTAGES");
  return wanted == nullptr ? ofANormalRun : std::atoi(wanted);
}

/** Whether a camera may be reported in one state right after another one. */
bool canFollow(CameraState before, CameraState after) {
  static const std::set<std::pair<CameraState, CameraState>> possible = {
      {CameraState::Waiting, CameraState::Receiving}, {CameraState::Receiving, CameraState::Silent},
      {CameraState::Receiving, CameraState::Waiting}, {CameraState::Silent, CameraState::Receiving},
      {CameraState::Silent, CameraState::Waiting},    {CameraState::Waiting, CameraState::Waiting},
  };
  return possible.count({before, after}) > 0;
}

class RandomOutages : public CameraTest, public testing::WithParamInterface<bool> {
 protected:
  int randomAtMost(int greatest) { return std::uniform_int_distribution<>(0, greatest)(random_); }

  void breakSomething() {
    static const std::vector<Function> functions = {Function::Create,
                                                    Function::Subscribe,
                                                    Function::SetGetDetectionCallback,
                                                    Function::GetInformation,
                                                    Function::SetTeardownCallback,
                                                    Function::SetReceiveEmptyHits,
                                                    Function::GetNbrChannels,
                                                    Function::Delete,
                                                    Function::UseChannelConfiguration,
                                                    Function::SetChannelConfiguration};
    switch (randomAtMost(3)) {
      case 0:
        dropSubscriptions();
        break;
      case 1:
        vod::host::plan(
            Fault(functions[static_cast<std::size_t>(randomAtMost(9))]).onCall(1 + randomAtMost(4)).failsWith(1));
        dropSubscriptions();
        break;
      case 2:
        vod::host::plan(Fault(functions[static_cast<std::size_t>(randomAtMost(9))]).always().failsWith(1));
        dropSubscriptions();
        break;
      default:
        takeServiceDown();
    }
  }

  void expectDetectionsAgain(const TestCamera& camera, int outage) {
    passWithFrames(2s);
    camera_.takeFrames();
    deliver();
    ASSERT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human"))) << "outage " << outage;
    ASSERT_EQ(camera.status().state, CameraState::Receiving) << "outage " << outage;
    ASSERT_FALSE(vod::host::channel(0).subscriptions().empty());
  }

  void expectPossibleStates() {
    for (const CameraState state : camera_.takeStates()) {
      EXPECT_TRUE(canFollow(last_, state)) << last_ << ", then " << state;
      last_ = state;
    }
  }

 private:
  std::mt19937 random_{1};
  CameraState last_ = CameraState::Waiting;
};

TEST_P(RandomOutages, AreAllOvercome) {
  if (GetParam()) {
    startRetryThread();
  }
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}}, camera_);
  const int outages = numberOfOutages();
  for (int outage = 0; outage < outages && !HasFailure(); ++outage) {
    passWithFrames(std::chrono::milliseconds(100 * (1 + randomAtMost(9))));
    breakSomething();
    passWithFrames(std::chrono::milliseconds(100 * randomAtMost(60)));
    EXPECT_THAT(camera_.takeFrames(), Each(ElementsAre("human"))) << "outage " << outage;
    vod::host::liftAllFaults();
    vod::host::bringServiceUp();
    expectDetectionsAgain(camera, outage);
    expectPossibleStates();
    vod::host::clearJournal();
  }
  const CameraStatus status = camera.status();
  EXPECT_EQ(status.framesReceived, status.framesDelivered + status.framesHeldBack);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutTheRetryThread, RandomOutages, testing::Bool());

}  // namespace
}  // namespace tarn::test
