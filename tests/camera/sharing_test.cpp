// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A camera is not alone: others of its number, the handler, a queue.

#include "camera/camera_test.h"

#include <tarnvod/frame_queue.h>

namespace tarn::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using TwoCamerasOfOneNumber = CameraTest;

TEST_F(TwoCamerasOfOneNumber, LeaveTheFramesToTheFirst) {
  CameraLog second;
  const TestCamera first(1, people(), camera_);
  const TestCamera other(1, people(), second);
  EXPECT_EQ(other.status().state, CameraState::Waiting);
  EXPECT_EQ(other.status().reason, "another Camera of this process has this number");
  passWithFrames(1s);
  EXPECT_THAT(camera_.takeFrames(), SizeIs(10));
  EXPECT_THAT(second.takeFrames(), IsEmpty());
}

TEST_F(TwoCamerasOfOneNumber, GoOnWithTheSecondWhenTheFirstEnds) {
  CameraLog second;
  auto first = std::make_unique<TestCamera>(1, people(), camera_);
  const TestCamera other(1, {{"car"}, {}}, second);
  SteeredTime::settle();  // the cameras' thread waits for later, so that only the end of the first one can wake it
  first.reset();
  SteeredTime::settle();
  EXPECT_EQ(other.status().state, CameraState::Receiving);
  deliver({1, 5});
  EXPECT_THAT(second.takeFrames(), ElementsAre(ElementsAre("car")));
}

TEST_F(TwoCamerasOfOneNumber, KeepTheSubscriptionWhenTheSecondEnds) {
  const TestCamera first(1, people(), camera_);
  {
    const TestCamera second(1, people(), [](auto) {});
  }
  deliver();
  EXPECT_THAT(camera_.takeFrames(), SizeIs(1));
}

using CamerasOfSeveralNumbers = CameraTest;

TEST_F(CamerasOfSeveralNumbers, AreIndependent) {
  CameraLog second;
  const TestCamera first(1, people(), camera_);
  const TestCamera other(2, {{"car"}, {}}, second);
  dropSubscriptions();
  deliver({5}, 1);
  EXPECT_THAT(second.takeFrames(), ElementsAre(ElementsAre("car")));
  pass(750ms);
  deliver();
  EXPECT_THAT(camera_.takeFrames(), SizeIs(1));
}

using ANumberOfTheHandlerToo = CameraTest;

TEST_F(ANumberOfTheHandlerToo, IsTakenOverWithTheRegion) {
  setUp(1, {"car"}, VOD::VodChannelConfiguration{0, 0, 1, 1});
  vod::host::clearJournal();
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 0.5F, 1}}, camera_);
  EXPECT_THAT(vod::host::journal(), Contains("set_channel_configuration(channel=0, roi=[0, 0, 0.5, 1])"));
  deliver({1, 5});
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human")));
  EXPECT_EQ(inbox_.size(), 0U);
}

TEST_F(ANumberOfTheHandlerToo, IsTakenOverAlsoWhenAnUpdateOfItHasFailed) {
  setUp(1, {"car"});
  setUp(1, {"unicorn"});
  vod::host::clearJournal();
  const TestCamera camera(1, {{"human"}, VOD::VodChannelConfiguration{0, 0, 0.5F, 1}}, camera_);
  EXPECT_THAT(vod::host::journal(), Contains("set_channel_configuration(channel=0, roi=[0, 0, 0.5, 1])"));
}

TEST_F(ANumberOfTheHandlerToo, IsTakenBackAfterASilence) {
  const TestCamera camera(1, people(), camera_);
  setUp(1, {"car"});
  deliver({1});
  EXPECT_EQ(inbox_.size(), 1U);
  pass(750ms);
  deliver({1});
  EXPECT_EQ(inbox_.size(), 1U);
  EXPECT_THAT(camera_.takeFrames(), ElementsAre(ElementsAre("human")));
  SteeredTime::settle();
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Receiving, CameraState::Silent, CameraState::Receiving));
}

TEST_F(ANumberOfTheHandlerToo, IsSubscribedAgainWhenSomebodyTearsItDown) {
  const TestCamera camera(1, people(), camera_);
  Handler::teardown(1);
  pass(750ms);
  deliver();
  EXPECT_THAT(camera_.takeFrames(), SizeIs(1));
}

TEST_F(ANumberOfTheHandlerToo, IsReleasedByTheCamera) {
  { const TestCamera camera(1, people(), camera_); }
  EXPECT_TRUE(setUp(1));
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

using AQueueOfCameras = CameraTest;

TEST_F(AQueueOfCameras, ReceivesTheFramesOfEach) {
  VOD::FrameQueue queue;
  const TestCamera first(1, people(), queue.callback(1));
  const TestCamera second(2, {{"car"}, {}}, queue.callback(2));
  deliver({1});
  deliver({5}, 1);
  const auto fromFirst = queue.tryPop();
  const auto fromSecond = queue.tryPop();
  ASSERT_TRUE(fromFirst && fromSecond);
  EXPECT_EQ(fromFirst->camera, 1);
  EXPECT_EQ(fromSecond->camera, 2);
  EXPECT_EQ(fromSecond->frame->detections.at(0).className, "car");
}

TEST_F(AQueueOfCameras, ThatNobodyEmptiesCausesNoSetUp) {
  VOD::FrameQueue queue(1);
  const TestCamera camera(1, people(), queue.callback(1));
  vod::host::clearJournal();
  passWithFrames(60s);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_EQ(camera.status().interruptions, 0U);
}

}  // namespace
}  // namespace tarn::test
