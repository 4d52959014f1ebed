// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The n-th allocation fails, for each n: nothing leaks, the registry stays consistent, and the next call works.

#include "support/allocation_failure.h"

#include "handler/handler_test.h"
#include "support/at_each_allocation.h"
#include "support/parsing_without_memory.h"
#include "support/scene_builder.h"

#include <optional>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AFullMemory : public HandlerTest {
 protected:
  AFullMemory() { vod::host::aroundCalls(AllocationFailure::pause, AllocationFailure::resume); }
};

class MemoryRunningOut : public AFullMemory {
 protected:
  void SetUp() override {
    if (!messagesSurviveFailedAllocations()) {
      GTEST_SKIP() << noSurvival;
    }
  }
};

TEST_F(MemoryRunningOut, InASetUpLeavesNoSubscriberAndNothingToRetryAndTheNextSetUpWorks) {
  retryOnce();
  const std::set<std::string> classes = {"human"};
  const VOD::DetectionCallback callback = inbox_.callback();
  atEachAllocation(
      [&] {
        Handler::setup(1, callback, classes, VOD::VodChannelConfiguration{0, 0, 1, 1});
      },
      [&] {
        vod::host::clearJournal();
        sleep_.release();
        sleep_.waitUntilAsleep();
        EXPECT_THAT(vod::host::journal(), IsEmpty()) << "the camera is not parked";
        Handler::teardown(1);
        EXPECT_EQ(vod::host::liveSubscribers(), 0);
        EXPECT_TRUE(setUp(1, classes));
        EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human")));
        Handler::teardown(1);
      });
}

TEST_F(MemoryRunningOut, InAnUpdateLeavesTheCameraAsItWasOrUpdated) {
  setUp(1, {"human"});
  const std::set<std::string> classes = {"car"};
  const VOD::DetectionCallback callback = inbox_.callback();
  atEachAllocation([&] { Handler::setup(1, callback, classes); },
                   [&] {
                     EXPECT_THAT(classesAfter(1, sceneOf({1, 5})),
                                 testing::AnyOf(ElementsAre(ElementsAre("human")), ElementsAre(ElementsAre("car"))));
                     EXPECT_EQ(vod::host::liveSubscribers(), 1);
                   });
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("car")));
}

TEST_F(MemoryRunningOut, WhileAFrameIsConvertedLosesThatFrameOnly) {
  setUp(1);
  int frames = 0;
  Handler::setup(1, [&frames](auto&&, int) { ++frames; }, {"human"});
  ::VOD::Scene scene;
  for (int i = 0; i < 2; ++i) {
    ::VOD::Detection& detection = addDetection(scene, 1);
    addAttribute(detection, 10, 1);
    addClassification(detection, 1, 3);
  }
  scene.add_events()->add_object_ids(4);
  const std::string bytes = scene.SerializeAsString();
  const vod::host::Registration live = vod::host::registration(2);
  atEachAllocation(
      [&] {
        live.detection(reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size()),
                       live.userData);
      },
      [] {});
  EXPECT_EQ(frames, 1) << "only the attempt that had all its memory";
}

void runOutOfMemoryInTheQueries() {
  vod::host::aroundCalls(AllocationFailure::pause, AllocationFailure::resume);
  const auto expectAllWell = [] { EXPECT_EQ(vod::host::liveSubscribers(), 0); };
  atEachAllocation([] { Handler::getDetectorInformation(1); }, expectAllWell);
  atEachAllocation([] { Handler::getSupportedClasses(); }, expectAllWell);
  atEachAllocation([] { Handler::getSupportedAttributes(); }, expectAllWell);
  EXPECT_EQ(Handler::getSupportedAttributes().size(), 3U);
}

TEST_F(AFreshProcess, WhoseMemoryRunsOutInTheQueriesLeavesNothingBehind) {
  if (!messagesSurviveFailedAllocations()) {
    GTEST_SKIP() << noSurvival;
  }
  expectWell(runOutOfMemoryInTheQueries);
}

TEST_F(AFullMemory, DoesNotMatterWhenACameraIsTornDownOrDropped) {
  setUp(1);
  setUp(2);
  const vod::host::Registration dropped = vod::host::registration(5);
  const AllocationFailure failure(1);
  Handler::teardown(1);
  dropped.teardown(dropped.userData);
  EXPECT_FALSE(failure.happened()) << "moving a record from map to map needs no memory";
}

TEST_F(AFullMemory, AtTheBeginningOfARetryKeepsAllCamerasPendingForTheNextRound) {
  setUp(0);  // has no channel, and so stays pending: each round begins with a question for its detector
  retryOnce();
  const int down = vod::host::plan(Fault(Function::Subscribe).always().failsWith(1));
  setUp(1, {"human"});
  vod::host::lift(down);
  std::optional<AllocationFailure> failure;
  const int trigger = vod::host::plan(Fault(Function::Create).onCall(1).runs([&] { failure.emplace(1); }));
  sleep_.release();
  sleep_.waitUntilAsleep();
  vod::host::lift(trigger);
  ASSERT_TRUE(failure);
  EXPECT_TRUE(failure->happened());
  failure.reset();
  EXPECT_EQ(vod::host::liveSubscribers(), 0) << "the round has ended";

  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human")));
}

TEST_F(MemoryRunningOut, InARetryKeepsTheCameraPendingWithItsCallableAndClassesForTheNextRound) {
  setUp(0);  // has no channel, and so stays pending: each round begins with a question for its detector
  retryOnce();
  bool failed = true;
  for (std::size_t number = 1; failed; ++number) {
    const int down = vod::host::plan(Fault(Function::Subscribe).always().failsWith(1));
    setUp(1, {"human"});
    vod::host::lift(down);
    std::optional<AllocationFailure> failure;
    const int trigger = vod::host::plan(Fault(Function::Create).onCall(1).runs([&] { failure.emplace(number); }));
    sleep_.release();
    sleep_.waitUntilAsleep();
    vod::host::lift(trigger);
    ASSERT_TRUE(failure);
    failed = failure->happened();
    failure.reset();
    EXPECT_TRUE(failed || vod::host::liveSubscribers() == 1) << "allocation " << number;

    sleep_.release();
    sleep_.waitUntilAsleep();
    EXPECT_EQ(vod::host::liveSubscribers(), 1) << "allocation " << number;
    EXPECT_THAT(classesAfter(1, sceneOf({1, 5})), ElementsAre(ElementsAre("human"))) << "allocation " << number;
    Handler::teardown(1);
  }
}

}  // namespace
}  // namespace tarn::test
