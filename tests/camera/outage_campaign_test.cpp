// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Random outages, one after the other: after each one the detections that were asked for flow again within two seconds
// of the service's return, no frame is passed off as complete that is not, and the states are those of a model.

#include "camera/camera_test.h"

#include <cstdlib>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

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

enum class Kind { Drop, OneFailingCall, FailingCalls, ServiceDown };

/** Something that ends the subscription, and how long it lasts. */
struct Outage {
  Kind kind;
  std::chrono::milliseconds length;
};

/**
 * The model: which states an outage may bring, S for silent, W for waiting and R for receiving. A frame comes each 100 ms
 * until the outage; 750 ms after the last one the camera is silent and is set up again, and then once a second.
 *
 * @param withRetries  the library's retry thread may be quicker than that
 */
std::string statesOf(const Outage& outage, bool withRetries) {
  switch (outage.kind) {
    case Kind::Drop:
      return withRetries ? "(SR)?" : "SR";
    case Kind::ServiceDown:
      // At the last frame but one before 750 ms the service is back, or it is not there when the camera is set up.
      return outage.length > 700ms ? "SWR" : withRetries ? "(SR)?" : "SR";
    case Kind::OneFailingCall:
      return withRetries ? "(SW?R)?" : "SW?R";
    case Kind::FailingCalls:
      return withRetries ? "(SW*R)?" : "SW*R";
  }
  return {};
}

std::string lettersOf(const std::vector<CameraState>& states) {
  std::string letters;
  for (const CameraState state : states) {
    std::ostringstream name;
    name << state;
    letters += name.str().front();
  }
  return letters;
}

class RandomOutages : public CameraTest, public testing::WithParamInterface<bool> {
 protected:
  int randomAtMost(int greatest) { return std::uniform_int_distribution<>(0, greatest)(random_); }

  /** @return what broke; how long it lasts is random too */
  Outage breakSomething() {
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
    const Function function = functions[static_cast<std::size_t>(randomAtMost(9))];
    const auto kind = static_cast<Kind>(randomAtMost(3));
    if (kind == Kind::OneFailingCall) {
      vod::host::plan(Fault(function).onCall(1 + randomAtMost(4)).failsWith(1));
    } else if (kind == Kind::FailingCalls) {
      vod::host::plan(Fault(function).always().failsWith(1));
    }
    if (kind == Kind::ServiceDown) {
      takeServiceDown();
    } else {
      dropSubscriptions();
    }
    return {kind, std::chrono::milliseconds(100 * randomAtMost(60))};
  }

  void expectDetectionsAgain(const TestCamera& camera, int outage) {
    passWithFrames(2s);
    camera_.takeFrames();
    deliver();
    ASSERT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human"))) << "outage " << outage;
    ASSERT_EQ(camera.status().state, CameraState::Receiving) << "outage " << outage;
    ASSERT_FALSE(vod::host::channel(0).subscriptions().empty());
  }

  void expectStates(const Outage& outage, int number) {
    const std::string states = lettersOf(camera_.takeStates());
    const std::string expected = statesOf(outage, GetParam());
    EXPECT_TRUE(std::regex_match(states, std::regex(expected)))
        << "outage " << number << " of kind " << static_cast<int>(outage.kind) << " and " << outage.length.count()
        << " ms: " << states << " in place of " << expected;
  }

 private:
  std::mt19937 random_{1};
};

TEST_P(RandomOutages, AreAllOvercome) {
  if (GetParam()) {
    startRetryThread();
  }
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}}, camera_);
  SteeredTime::settle();
  EXPECT_EQ(lettersOf(camera_.takeStates()), "R");
  const int outages = numberOfOutages();
  for (int number = 0; number < outages && !HasFailure(); ++number) {
    passWithFrames(std::chrono::milliseconds(100 * (1 + randomAtMost(9))));
    const Outage outage = breakSomething();
    passWithFrames(outage.length);
    EXPECT_THAT(camera_.takeFrames(), Each(ElementsAre("human"))) << "outage " << number;
    vod::host::liftAllFaults();
    vod::host::bringServiceUp();
    expectDetectionsAgain(camera, number);
    expectStates(outage, number);
    vod::host::clearJournal();
  }
  const CameraStatus status = camera.status();
  EXPECT_EQ(status.framesReceived, status.framesDelivered + status.framesHeldBack);
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutTheRetryThread, RandomOutages, testing::Bool());

}  // namespace
}  // namespace tarn::test
