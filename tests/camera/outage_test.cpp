// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Whatever happens to the service, the detections that were asked for come again.

#include "camera/camera_test.h"

namespace tarn::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class AnOutage : public CameraTest {
 protected:
  /** Lets a round of the library's retry thread pass. */
  void retryNow() {
    sleep_.release();
    sleep_.waitUntilAsleep();
  }

  /** Drops the subscription; a retry fails and the next one succeeds: what is delivered then lacks the classes. */
  void loseTheClasses(SteeredTime::Duration duration) {
    const int failure = vod::host::plan(Fault(Function::Create).always().failsWith(1));
    dropSubscriptions();
    retryNow();
    vod::host::lift(failure);
    SteeredTime::jump(duration);
    retryNow();
  }
};

TEST_F(AnOutage, OfFourSecondsEndsWithDetections) {
  startRetryThread();
  const TestCamera camera(1, people(), camera_);
  passWithFrames(4s);
  EXPECT_THAT(camera_.takeFrames(), SizeIs(40));

  takeServiceDown();
  passWithFrames(4s);
  EXPECT_THAT(camera_.takeFrames(), IsEmpty());

  vod::host::bringServiceUp();
  passWithFrames(4s);
  const auto frames = camera_.takeFrames();
  EXPECT_THAT(frames, SizeIs(testing::Ge(30U)));
  EXPECT_THAT(frames, Each(ElementsAre("human")));
  EXPECT_THAT(camera_.takeStates(),
              ElementsAre(CameraState::Receiving, CameraState::Silent, CameraState::Waiting, CameraState::Receiving));
  EXPECT_GE(camera.status().lastInterruption, 4s);
}

TEST_F(AnOutage, WithoutTheRetryThreadEndsWithDetectionsToo) {
  const TestCamera camera(1, people(), camera_);
  passWithFrames(1s);
  takeServiceDown();
  passWithFrames(4s);
  camera_.takeFrames();
  vod::host::bringServiceUp();
  passWithFrames(2s);
  EXPECT_THAT(camera_.takeFrames(), SizeIs(testing::Ge(10U)));
}

TEST_F(AnOutage, EndsWithTheRegionThatWasAskedFor) {
  startRetryThread();
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 0.5F, 1}}, camera_);
  passWithFrames(1s);
  takeServiceDown();
  pass(10s);
  vod::host::clearJournal();
  vod::host::bringServiceUp();
  pass(1s);
  EXPECT_THAT(vod::host::journal(), testing::Contains("set_channel_configuration(channel=0, roi=[0, 0, 0.5, 1])"));
}

TEST_F(AnOutage, OfTheSubscriptionAloneIsOverInASecond) {
  const TestCamera camera(1, people(), camera_);
  deliver();
  dropSubscriptions();
  passWithFrames(1s);
  EXPECT_THAT(camera_.takeFrames(), SizeIs(testing::Ge(3U)));
  EXPECT_EQ(camera.status().interruptions, 1U);
}

TEST_F(AnOutage, ThatTheRetryThreadBridgesBringsNoFrameWithoutItsDetections) {
  startRetryThread();
  const TestCamera camera(1, people(), camera_);
  passWithFrames(1s);
  const vod::host::Gate gate;
  const TestCamera other(
      2, people(), [](auto) {}, [&gate](const auto&) { gate.pass(); });
  gate.waitUntilReached();  // from now on the cameras' thread is busy, and so it is late

  loseTheClasses(1s);
  deliver();
  EXPECT_EQ(camera.status().framesHeldBack, 1U);
  gate.open();
  SteeredTime::settle();
  deliver();

  EXPECT_THAT(camera_.takeFrames(), Each(ElementsAre("human")));
  EXPECT_EQ(camera.status().framesReceived, 12U);
  EXPECT_EQ(camera.status().framesDelivered, 11U);
}

TEST_F(AnOutage, ThatTheRetryThreadBridgesDoesNotHoldFramesWithDetectionsBack) {
  const TestCamera camera(1, people(), camera_);
  const vod::host::Gate gate;
  const TestCamera other(
      2, people(), [](auto) {}, [&gate](const auto&) { gate.pass(); });
  gate.waitUntilReached();
  deliver();
  SteeredTime::jump(5s);
  deliver({});
  deliver({1});
  deliver({});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human"), ElementsAre("human"), IsEmpty()));
  gate.open();
}

TEST_F(AnOutage, WithoutAnyPauseIsRepairedAfterTenSeconds) {
  startRetryThread();
  const TestCamera camera(1, people(), camera_);
  deliver();
  loseTheClasses(0s);
  passWithFrames(10s);
  camera_.takeFrames();
  passWithFrames(1s);
  EXPECT_THAT(camera_.takeFrames(), Each(ElementsAre("human")));
}

TEST_F(AnOutage, WhenACameraIsMadeIsNotLeftToTheRetryThread) {
  startRetryThread();
  vod::host::plan(Fault(Function::Subscribe).onCall(1).failsWith(1));
  const TestCamera camera(1, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  vod::host::clearJournal();
  retryNow();
  EXPECT_THAT(vod::host::journal(), IsEmpty()) << "the library would subscribe without the classes";
}

TEST_F(AnOutage, BeginsAgainWhileItIsBeingRepaired) {
  const TestCamera camera(1, people(), camera_);
  passWithFrames(1s);
  takeServiceDown();
  vod::host::plan(Fault(Function::Subscribe).runs([] { vod::host::takeServiceDown(); }).failsWith(1));
  pass(2s);
  vod::host::bringServiceUp();
  pass(2s);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  vod::host::bringServiceUp();
  passWithFrames(2s);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
  EXPECT_EQ(camera.status().interruptions, 1U);
}

/** One function of the platform, one of whose calls fails. */
class AFailingCall : public CameraTest, public testing::WithParamInterface<Function> {
 protected:
  /** Whether the camera delivers detections two seconds from now, with nothing else than them before. */
  void expectRecovery(const TestCamera& camera, const std::string& when) {
    passWithFrames(2s);
    EXPECT_EQ(camera.status().state, CameraState::Receiving) << when;
    camera_.takeFrames();
    deliver();
    EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human"))) << when;
  }
};

constexpr int callsThatFail = 6;

TEST_P(AFailingCall, OfAnyNumberIsOvercomeWhenACameraIsMade) {
  for (int call = 1; call <= callsThatFail; ++call) {
    vod::host::plan(Fault(GetParam()).onCall(call).failsWith(1));
    const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}}, camera_);
    expectRecovery(camera, "call " + std::to_string(call));
    vod::host::liftAllFaults();
  }
}

TEST_P(AFailingCall, OfAnyNumberIsOvercomeWhenASubscriptionIsDropped) {
  startRetryThread();
  for (int call = 1; call <= callsThatFail; ++call) {
    const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}}, camera_);
    passWithFrames(500ms);
    vod::host::plan(Fault(GetParam()).onCall(call).failsWith(1));
    dropSubscriptions();
    passWithFrames(2s);
    expectRecovery(camera, "call " + std::to_string(call));
    EXPECT_EQ(camera.status().framesReceived, camera.status().framesDelivered + camera.status().framesHeldBack);
    vod::host::liftAllFaults();
  }
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, AFailingCall,
                         testing::Values(Function::Create, Function::Delete, Function::Subscribe, Function::Unsubscribe,
                                         Function::SetGetDetectionCallback, Function::SetTeardownCallback,
                                         Function::SetReceiveEmptyHits, Function::UseChannelConfiguration,
                                         Function::SetChannelConfiguration, Function::GetInformation,
                                         Function::GetNbrChannels, Function::GetNbrChannelsSimultaneously));

}  // namespace
}  // namespace tarn::test
