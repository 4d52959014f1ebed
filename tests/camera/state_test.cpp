// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What a camera reports of itself.

#include "camera/camera_test.h"
#include "support/detector_builder.h"
#include "support/printed.h"

#include <stdexcept>

namespace tarn::test {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using ACamera = CameraTest;

TEST_F(ACamera, ReceivesAsSoonAsItIsMade) {
  const TestCamera camera(1, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
  EXPECT_EQ(camera.status().reason, "");
  deliver({1, 5});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human")));
}

TEST_F(ACamera, ReportsItsFirstState) {
  const TestCamera camera(1, people(), camera_);
  SteeredTime::settle();
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Receiving));
}

TEST_F(ACamera, WithoutClassesReceivesAllThatTheDetectorKnows) {
  const TestCamera camera(1, {}, camera_);
  deliver({1, 5, 7});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human", "car", "bus")));
}

TEST_F(ACamera, TakesClassesInAnyCase) {
  const TestCamera camera(1, {{"HUMAN", "Car"}, {}}, camera_);
  deliver({1, 5, 7});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human", "car")));
}

TEST_F(ACamera, TakesTheFirstAndTheLastLetterInAnyCase) {
  const TestCamera camera(1, {{"AZ"}, {}}, camera_);
  EXPECT_THAT(camera.status().refusedClasses, ElementsAre("az"));
}

TEST_F(ACamera, DeliversFramesWithoutDetections) {
  const TestCamera camera(1, people(), camera_);
  deliver({});
  deliver({5});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(IsEmpty(), IsEmpty()));
  EXPECT_EQ(camera.status().framesHeldBack, 0U);
}

TEST_F(ACamera, CountsItsFrames) {
  const TestCamera camera(1, people(), camera_);
  deliver();
  pass(100ms);
  deliver();
  const CameraStatus status = camera.status();
  EXPECT_EQ(status.framesReceived, 2U);
  EXPECT_EQ(status.framesDelivered, 2U);
  EXPECT_EQ(status.framesHeldBack, 0U);
  EXPECT_EQ(status.lastFrame, SteeredTime::now());
}

TEST_F(ACamera, MeasuresTheLongestCallback) {
  SteeredTime::Duration duration = 30ms;
  const TestCamera camera(1, people(), [&duration](auto) { SteeredTime::jump(duration); });
  deliver();
  duration = 10ms;
  deliver();
  EXPECT_EQ(camera.status().longestCallback, 30ms);
}

TEST_F(ACamera, PrintsAndComparesItsStatus) {
  CameraStatus status;
  status.camera = 3;
  status.state = CameraState::Silent;
  status.reason = "no frames come";
  status.framesDelivered = 9;
  EXPECT_EQ(printed(status), "camera 3: Silent, no frames come; frames: 9 delivered");
  status.framesHeldBack = 1;
  status.interruptions = 2;
  status.lastInterruption = 1500ms;
  status.longestInterruption = 4s;
  status.callbackExceptions = 1;
  status.lastException = "no room";
  EXPECT_EQ(printed(status),
            "camera 3: Silent, no frames come; frames: 9 delivered, 1 held back; interruptions: 2, the last 1.5 s, the "
            "longest 4 s; exceptions: 1, the last 'no room'");
  const CameraStatus same = status;
  EXPECT_EQ(status, same);
  status.framesReceived = 1;
  EXPECT_NE(status, same);
}

TEST_F(ACamera, PrintsItsStateByName) {
  EXPECT_EQ(printed(CameraState::Waiting), "Waiting");
  EXPECT_EQ(printed(CameraState::Receiving), "Receiving");
  EXPECT_EQ(printed(CameraState::Silent), "Silent");
  EXPECT_EQ(printed(CameraState::Refused), "Refused");
  EXPECT_EQ(printed(static_cast<CameraState>(9)), "CameraState(9)");
}

using ASilentService = CameraTest;

TEST_F(ASilentService, IsReportedAfterThreeQuartersOfASecond) {
  const TestCamera camera(1, people(), camera_);
  deliver();
  pass(749ms);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
  pass(1ms);
  EXPECT_EQ(camera.status().state, CameraState::Silent);
  EXPECT_EQ(camera.status().reason, "no frames come");
}

TEST_F(ASilentService, IsAnInterruptionOnceFramesHaveCome) {
  const TestCamera camera(1, people(), camera_);
  deliver();
  pass(2s);
  deliver();
  const CameraStatus status = camera.status();
  EXPECT_EQ(status.state, CameraState::Receiving);
  EXPECT_EQ(status.interruptions, 1U);
  EXPECT_EQ(status.lastInterruption, 2s);
  EXPECT_EQ(status.longestInterruption, 2s);
  pass(1s);
  deliver();
  EXPECT_EQ(camera.status().interruptions, 2U);
  EXPECT_EQ(camera.status().lastInterruption, 1s);
  EXPECT_EQ(camera.status().longestInterruption, 2s);
  SteeredTime::settle();
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Receiving, CameraState::Silent, CameraState::Receiving,
                                                CameraState::Silent, CameraState::Receiving));
}

TEST_F(ASilentService, BeforeTheFirstFrameIsNotAnInterruption) {
  const TestCamera camera(1, people(), camera_);
  pass(2s);
  deliver();
  EXPECT_EQ(camera.status().interruptions, 0U);
}

TEST_F(ASilentService, IsAskedForItsDetectorAndLeftSubscribed) {
  const TestCamera camera(1, people(), camera_);
  deliver();
  vod::host::clearJournal();
  pass(60s);
  EXPECT_THAT(vod::host::journal(), AllOf(SizeIs(80), Each(HasSubstr("get_information"))));
}

TEST_F(ASilentService, DeliversItsEmptyFramesWhenTheyComeAgain) {
  const TestCamera camera(1, people(), camera_);
  deliver();
  pass(5s);
  deliver({});
  EXPECT_EQ(camera.status().framesDelivered, 2U);
}

using ASlowService = CameraTest;

TEST_F(ASlowService, IsNotSilentOnceItsPaceIsKnown) {
  const TestCamera camera(1, people(), camera_);
  for (int frame = 0; frame < 20; ++frame) {
    pass(2s);
    deliver({});
    SteeredTime::settle();
  }
  camera_.takeStates();
  for (int frame = 0; frame < 5; ++frame) {
    pass(2s);
    deliver({});
    SteeredTime::settle();
  }
  EXPECT_THAT(camera_.takeStates(), IsEmpty());
  EXPECT_EQ(camera.status().framesDelivered, 25U);
}

using AnUnansweringService = CameraTest;

TEST_F(AnUnansweringService, IsWaitedFor) {
  takeServiceDown();
  const TestCamera camera(1, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  EXPECT_EQ(camera.status().reason, "the service does not answer");
  pass(3s);
  vod::host::bringServiceUp();
  pass(1s);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
  deliver();
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human")));
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Waiting, CameraState::Receiving));
}

TEST_F(AnUnansweringService, IsWaitedForWhenAllClassesAreWanted) {
  takeServiceDown();
  const TestCamera camera(1, {}, camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  vod::host::bringServiceUp();
  pass(1s);
  deliver({1, 5});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human", "car")));
}

TEST_F(AnUnansweringService, IsAskedForItsChannelsOnce) {
  takeServiceDown();
  const TestCamera camera(1, people(), camera_);
  pass(10s);
  EXPECT_THAT(vod::host::journal(), testing::Contains("get_nbr_channels()").Times(1));
}

TEST_F(AnUnansweringService, IsDistinguishedFromADisabledOne) {
  takeServiceDown();
  vod::host::setEnabled(false);
  const TestCamera camera(1, people(), camera_);
  EXPECT_EQ(camera.status().reason, "the service is disabled on this device");
}

TEST_F(AnUnansweringService, IsDistinguishedFromACameraThatDoesNotExist) {
  const TestCamera camera(9, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  EXPECT_EQ(camera.status().reason, "the service has no such camera, only 2");
}

TEST_F(AnUnansweringService, ThatDoesNotDescribeItsDetectorRefusesNoClass) {
  vod::host::plan(Fault(Function::GetInformation).always().failsWith(1));
  const TestCamera camera(1, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  vod::host::liftAllFaults();
  pass(1s);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
}

TEST_F(AnUnansweringService, ThatRefusesTheSubscriptionIsReported) {
  vod::host::plan(Fault(Function::Subscribe).always().failsWith(1));
  const TestCamera camera(1, people(), camera_);
  EXPECT_EQ(camera.status().state, CameraState::Waiting);
  EXPECT_EQ(camera.status().reason,
            "the service refuses the subscription (it allows 2 at a time); the system log says why");
}

TEST_F(AnUnansweringService, ThatAnswersButRefusesIsReportedAgain) {
  takeServiceDown();
  const TestCamera camera(1, people(), camera_);
  SteeredTime::settle();
  vod::host::plan(Fault(Function::Subscribe).always().failsWith(1));
  vod::host::bringServiceUp();
  pass(1s);
  const auto reports = camera_.reports();
  ASSERT_THAT(reports, SizeIs(2));
  EXPECT_EQ(reports[0].reason, "the service does not answer");
  EXPECT_EQ(reports[1].state, CameraState::Waiting);
  EXPECT_THAT(reports[1].reason, HasSubstr("refuses the subscription"));
}

TEST_F(AnUnansweringService, ThatRefusesARegionIsReported) {
  vod::host::plan(Fault(Function::SetChannelConfiguration).always().failsWith(1));
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1}}, camera_);
  EXPECT_THAT(camera.status().reason, HasSubstr("with its region of interest"));
}

using AnUnknownClass = CameraTest;

TEST_F(AnUnknownClass, IsRefusedByName) {
  const TestCamera camera(1, {{"human", "unicorn", "Dragon"}, {}}, camera_);
  const CameraStatus status = camera.status();
  EXPECT_EQ(status.state, CameraState::Refused);
  EXPECT_THAT(status.refusedClasses, ElementsAre("dragon", "unicorn"));
  EXPECT_EQ(status.reason, "the detector does not know 'dragon', 'unicorn'; it knows 'bus', 'car', 'human'");
}

TEST_F(AnUnknownClass, BringsNoFramesAtAll) {
  startRetryThread();
  const TestCamera camera(1, {{"human", "unicorn"}, {}}, camera_);
  passWithFrames(5s);
  EXPECT_THAT(camera_.takeFrames(), IsEmpty());
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Refused));
}

TEST_F(AnUnknownClass, IsAcceptedOnceTheDetectorKnowsIt) {
  const TestCamera camera(1, {{"human", "unicorn"}, {}}, camera_);
  ::VOD::DetectorInformation information;
  information.ParseFromString(detectorBytes());
  addClass(information, 9, "unicorn");
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  pass(1s);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
  EXPECT_THAT(camera.status().refusedClasses, IsEmpty());
  deliver({9});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("unicorn")));
}

TEST_F(AnUnknownClass, OfADetectorThatHasChangedEndsTheSubscription) {
  const TestCamera camera(1, {{"human", "car"}, {}}, camera_);
  deliver();
  ::VOD::DetectorInformation information;
  information.add_object_classes()->set_name("human");
  vod::host::channel(0).detectorInformation(information.SerializeAsString());
  pass(1s);
  EXPECT_EQ(camera.status().state, CameraState::Refused);
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
}

using AThrowingCallback = CameraTest;

TEST_F(AThrowingCallback, IsCountedAndReportedOnceInARow) {
  bool throws = true;
  const TestCamera camera(
      1, people(),
      [&throws](auto) {
        if (throws) {
          throw std::runtime_error("no room");
        }
      },
      camera_.onState());
  SteeredTime::settle();
  deliver();
  SteeredTime::settle();
  deliver();
  EXPECT_EQ(camera.status().callbackExceptions, 2U);
  EXPECT_EQ(camera.status().lastException, "no room");
  EXPECT_EQ(camera.status().framesDelivered, 2U);
  SteeredTime::settle();
  throws = false;
  deliver();
  throws = true;
  deliver();
  SteeredTime::settle();
  std::vector<std::uint64_t> reported;
  for (const CameraStatus& status : camera_.reports()) {
    reported.push_back(status.callbackExceptions);
  }
  EXPECT_THAT(reported, ElementsAre(0, 1, 3));
}

TEST_F(AThrowingCallback, MayThrowAnything) {
  const TestCamera camera(1, people(), [](auto) { throw 1; });
  deliver();
  EXPECT_EQ(camera.status().lastException, "not a std::exception");
}

TEST_F(AThrowingCallback, ForStatesIsCountedAndCalledAtTheNextChange) {
  int calls = 0;
  const TestCamera camera(1, people(), camera_.onFrame(), [&calls](const CameraStatus&) {
    ++calls;
    throw std::runtime_error("not now");
  });
  SteeredTime::settle();
  deliver();
  pass(1s);
  EXPECT_EQ(camera.status().callbackExceptions, 2U);
  EXPECT_EQ(calls, 2);
}

using ASlowApplication = CameraTest;

TEST_F(ASlowApplication, CausesNoSetUp) {
  const TestCamera camera(
      1, people(), [](auto) { SteeredTime::jump(5s); }, camera_.onState());
  vod::host::clearJournal();
  for (int frame = 0; frame < 100; ++frame) {
    deliver(frame % 2 == 0 ? std::vector<std::uint32_t>{1} : std::vector<std::uint32_t>{});
    SteeredTime::settle();
  }
  EXPECT_EQ(camera.status().framesDelivered, 100U);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Receiving));
}

TEST_F(ASlowApplication, ThatIsInsideOfItsCallbackForLongIsNotAnInterruption) {
  const vod::host::Gate gate;
  const TestCamera camera(
      1, people(), [&gate](auto) { gate.pass(); }, camera_.onState());
  vod::host::channel(0).pushScene(sceneOf({1}));
  gate.waitUntilReached();
  vod::host::clearJournal();
  pass(60s);
  EXPECT_EQ(camera.status().state, CameraState::Receiving);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  gate.open();
  vod::host::drain();
}

}  // namespace
}  // namespace tarn::test
