// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

#include <stdexcept>

namespace vod::host {
namespace {

using testing::ElementsAre;

/** Results of calls of a function that has nothing else to do. */
std::vector<int> versionResults(int calls) {
  std::vector<int> results;
  for (int call = 0; call < calls; ++call) {
    int major = 0;
    int minor = 0;
    results.push_back(video_object_detection_subscriber_get_version(&major, &minor));
  }
  return results;
}

class AFault : public HostTest {};

TEST_F(AFault, MeetsTheFirstCallWithoutAChoice) {
  plan(Fault(Function::GetVersion).failsWith(7));
  EXPECT_THAT(versionResults(3), ElementsAre(7, 0, 0));
}

TEST_F(AFault, MeetsTheCallThatItIsPlannedFor) {
  plan(Fault(Function::GetVersion).onCall(2).failsWith(7));
  EXPECT_THAT(versionResults(3), ElementsAre(0, 7, 0));
}

TEST_F(AFault, CountsCallsFromTheTimeItIsPlanned) {
  versionResults(5);
  plan(Fault(Function::GetVersion).onCall(2).failsWith(7));
  EXPECT_THAT(versionResults(3), ElementsAre(0, 7, 0));
}

TEST_F(AFault, MeetsAllCallsFromOneOnUntilItIsLifted) {
  const int fault = plan(Fault(Function::GetVersion).fromCall(2).failsWith(7));
  EXPECT_THAT(versionResults(4), ElementsAre(0, 7, 7, 7));
  lift(fault);
  EXPECT_THAT(versionResults(1), ElementsAre(0));
}

TEST_F(AFault, MeetsNoOtherFunction) {
  plan(Fault(Function::GetVersion).always().failsWith(7));
  EXPECT_EQ(Client(0).createResult(), 0);
}

TEST_F(AFault, OfSeveralGivesTheCodeOfTheFirst) {
  plan(Fault(Function::GetVersion).onCall(2).failsWith(7));
  plan(Fault(Function::GetVersion).always().failsWith(8));
  EXPECT_THAT(versionResults(3), ElementsAre(8, 7, 8));
  liftAllFaults();
  EXPECT_THAT(versionResults(1), ElementsAre(0));
}

TEST_F(AFault, KeepsACallFromDoingItsWork) {
  Client client(0);
  plan(Fault(Function::Subscribe).failsWith(7));
  EXPECT_EQ(client.trySubscribe(), 7);
  EXPECT_THAT(channel(0).subscriptions(), testing::IsEmpty());
}

TEST_F(AFault, LetsACallSucceedWithoutDoingItsWork) {
  Client client(0);
  plan(Fault(Function::Subscribe).failsWith(0));
  EXPECT_EQ(client.trySubscribe(), 0);
  EXPECT_THAT(channel(0).subscriptions(), testing::IsEmpty());
}

TEST_F(AFault, KeepsDeleteFromNothingButItsResult) {
  Client client(0);
  plan(Fault(Function::Delete).failsWith(7));
  EXPECT_EQ(client.remove(), 7);
  EXPECT_EQ(client.handle(), nullptr);
  EXPECT_EQ(liveSubscribers(), 0);
}

TEST_F(AFault, IsTheAnswerWhetherTheServiceIsEnabled) {
  plan(Fault(Function::ServiceIsEnabled).onCall(1).failsWith(0));
  plan(Fault(Function::ServiceIsEnabled).onCall(2).failsWith(5));
  setEnabled(false);
  EXPECT_FALSE(video_object_detection_subscriber_service_is_enabled());
  EXPECT_TRUE(video_object_detection_subscriber_service_is_enabled());
  EXPECT_FALSE(video_object_detection_subscriber_service_is_enabled());
}

TEST_F(AFault, RunsTheTestsActionOnTheCallersThreadWithoutALock) {
  std::thread::id thread;
  plan(Fault(Function::GetVersion).runs([&] {
    thread = std::this_thread::get_id();
    std::thread([] { EXPECT_EQ(Client(0).createResult(), 0); }).join();
  }));
  EXPECT_THAT(versionResults(1), ElementsAre(0));
  EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST_F(AFault, HoldsACallAtAGate) {
  const Gate gate;
  plan(Fault(Function::GetVersion).waitsAt(gate).failsWith(7));
  std::thread caller([] { EXPECT_THAT(versionResults(1), ElementsAre(7)); });
  gate.waitUntilReached();
  EXPECT_FALSE(calls().back().result.has_value());
  gate.open();
  caller.join();
  EXPECT_EQ(calls().back().result, 7);
}

TEST_F(AFault, OpensItsGateWhenTheServiceIsReset) {
  const Gate gate;
  plan(Fault(Function::GetVersion).waitsAt(gate));
  std::thread caller([] { versionResults(1); });
  gate.waitUntilReached();
  reset();
  caller.join();
}

TEST_F(AFault, DelaysACall) {
  constexpr std::chrono::milliseconds delay{15};
  plan(Fault(Function::GetVersion).isDelayedBy(delay));
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THAT(versionResults(1), ElementsAre(0));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, delay);
}

TEST_F(AFault, ThatThrowsFailsTheCallAndIsReported) {
  plan(Fault(Function::GetVersion).runs([] { throw std::runtime_error("thrown"); }));
  EXPECT_EQ(errorsOf([] { EXPECT_THAT(versionResults(1), ElementsAre(testing::Ne(0))); }),
            "video_object_detection_subscriber: get_version: thrown\n");
}

}  // namespace
}  // namespace vod::host
