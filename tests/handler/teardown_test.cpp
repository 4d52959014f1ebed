// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "handler/handler_test.h"
#include "support/scene_builder.h"

#include <future>

namespace tarn::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using Teardown = HandlerTest;

TEST_F(Teardown, OfAnUnknownCameraDoesNothing) {
  Handler::teardown(7);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(Teardown, OfAnActiveCameraUnsubscribesAndDeletes) {
  setUp(1);
  vod::host::clearJournal();
  Handler::teardown(1);
  EXPECT_THAT(vod::host::journal(), ElementsAre("unsubscribe(#2)", "delete(#2)"));
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

TEST_F(Teardown, LeavesOtherCamerasAlone) {
  setUp(1);
  setUp(2);
  Handler::teardown(1);
  EXPECT_THAT(classesAfter(2, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(Teardown, OfAPendingCameraMakesNoPlatformCallAndEndsItsRetries) {
  vod::host::plan(Fault(Function::Subscribe).failsWith(1));
  setUp(1);
  vod::host::clearJournal();
  Handler::teardown(1);
  retryOnce();
  EXPECT_THAT(vod::host::journal(), IsEmpty());
}

TEST_F(Teardown, OfACameraThatIsBothPendingAndActiveTakesThePendingOneFirst) {
  setUp(1, {"human"});
  setUp(1, {"unicorn"});  // parks the failed update next to the live channel
  vod::host::clearJournal();
  Handler::teardown(1);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
  Handler::teardown(1);
  EXPECT_THAT(vod::host::journal(), ElementsAre("unsubscribe(#2)", "delete(#2)"));
}

TEST_F(Teardown, StillDeletesWhenUnsubscribingFails) {
  setUp(1);
  vod::host::plan(Fault(Function::Unsubscribe).failsWith(1));
  vod::host::clearJournal();
  Handler::teardown(1);
  EXPECT_THAT(vod::host::journal(), ElementsAre("unsubscribe(#2)", "delete(#2)"));
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_WARNING, "Failed to disconnect to vod for camera 1\n"}));
}

TEST_F(Teardown, ForgetsTheCameraWhenBothCallsFailAndWarnsTwice) {
  setUp(2);
  vod::host::plan(Fault(Function::Unsubscribe).failsWith(1));
  vod::host::plan(Fault(Function::Delete).failsWith(1));
  Handler::teardown(2);
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_WARNING, "Failed to disconnect to vod for camera 2\n"},
                                        LogLine{LOG_WARNING, "Failed to destroy a vod subscription for camera 2\n"}));
  vod::host::clearJournal();
  Handler::teardown(2);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
}

TEST_F(Teardown, CallsThePlatformWithoutHoldingTheLock) {
  setUp(1);
  const vod::host::Gate gate;
  vod::host::plan(Fault(Function::Unsubscribe).waitsAt(gate));
  auto teardown = std::async(std::launch::async, [] { Handler::teardown(1); });
  gate.waitUntilReached();
  EXPECT_FALSE(Handler::getSupportedClasses().empty()) << "this needs the lock, and so would wait for the teardown";
  gate.open();
  teardown.get();
}

using TheServiceDropping = HandlerTest;

TEST_F(TheServiceDropping, AnActiveCameraDeletesItsSubscriberAndParksIt) {
  setUp(1);
  vod::host::clearJournal();
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  EXPECT_THAT(vod::host::journal(), ElementsAre("delete(#2)")) << "nothing is left to unsubscribe";
  EXPECT_THAT(log_.lines(), IsEmpty());
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

TEST_F(TheServiceDropping, ACameraIsHealedByTheRetryWithCallbackClassesAndRegion) {
  setUp(1, {"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1});
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  vod::host::clearJournal();
  retryOnce();
  EXPECT_THAT(
      vod::host::journal(),
      ElementsAre("create(channel=0)", "get_information(#4)", "delete(#4)", "create(channel=0)",
                  "set_get_detection_callback(#5)", "set_teardown_callback(#5)", "set_receive_empty_hits(#5, true)",
                  "set_channel_configuration(channel=0, roi=[0, 0, 1, 1])", "use_channel_configuration(#5, true)",
                  "subscribe(#5)", "get_information(#5)", "create(channel=0)", "get_information(#6)", "delete(#6)"));
  ::VOD::Scene scene;
  setBox(addDetection(scene, 1), 0, 0, 1, 1);
  EXPECT_THAT(classesAfter(1, scene.SerializeAsString()), ElementsAre(ElementsAre("human")));
}

TEST_F(TheServiceDropping, LogsAnErrorWhenTheSubscriberCannotBeDeletedAndParksTheCameraAllTheSame) {
  setUp(1);
  vod::host::plan(Fault(Function::Delete).failsWith(1));
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  EXPECT_THAT(log_.lines(), ElementsAre(LogLine{LOG_ERR, "Failed to delete vod subscriber\n"}));
  retryOnce();
  EXPECT_EQ(vod::host::channel(0).subscriptions().size(), 1U);
}

TEST_F(TheServiceDropping, ACameraThatWasTornDownChangesNothing) {
  setUp(1);
  const vod::host::Registration old = vod::host::registration(2);
  Handler::teardown(1);
  vod::host::clearJournal();
  old.teardown(old.userData);
  retryOnce();
  EXPECT_THAT(vod::host::journal(), IsEmpty());
}

TEST_F(TheServiceDropping, ACameraThatIsAlsoPendingKeepsThePendingRecord) {
  setUp(1, {"human"}, VOD::VodChannelConfiguration{0, 0, 1, 1});
  setUp(1, {"unicorn"});  // parked: no classes, no region
  vod::host::channel(0).dropSubscriptions();
  vod::host::drain();
  vod::host::clearJournal();
  retryOnce();
  EXPECT_THAT(vod::host::journal(), Not(Contains(testing::StartsWith("set_channel_configuration"))));
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(IsEmpty()));
}

TEST_F(TheServiceDropping, IsIgnoredWithNullUserData) {
  setUp(1);
  vod::host::clearJournal();
  vod::host::registration(2).teardown(nullptr);
  EXPECT_THAT(vod::host::journal(), IsEmpty());
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

}  // namespace
}  // namespace tarn::test
