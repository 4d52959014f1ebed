// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Every function may be called from inside the application's callback, with and without a platform that waits for it.

#include "handler/on_release.h"
#include "handler/retry_thread_callback.h"

#include <functional>
#include <future>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct HandlerCall {
  const char* name;
  std::function<void()> call;
};

void PrintTo(const HandlerCall& call, std::ostream* out) {
  *out << call.name;
}

class ACallback : public HandlerTest, public testing::WithParamInterface<std::tuple<HandlerCall, bool>> {};

TEST_P(ACallback, MayCall) {
  const auto& [function, platformWaits] = GetParam();
  vod::host::waitForCallbacks(platformWaits);
  bool returned = false;
  Handler::setup(1,
                 [&returned, &call = function.call](auto&&, int) {
                   call();
                   returned = true;
                 },
                 {"human"});
  vod::host::channel(0).pushScene(sceneOf({1}));
  vod::host::drain();
  EXPECT_TRUE(returned);
  sleep_.releaseAll();
}

const std::vector<HandlerCall> calls = {
    {"Initialize", [] { Handler::initialize(1); }},
    {"Deinitialize", [] { Handler::deinitialize(); }},
    {"SetupOfItsOwnCamera", [] { EXPECT_TRUE(Handler::setup(1, nullptr, {"car"})); }},
    {"SetupOfAnotherCamera", [] { EXPECT_TRUE(Handler::setup(2, nullptr, {"car"})); }},
    {"SetupThatFails", [] { EXPECT_FALSE(Handler::setup(2, nullptr, {"unicorn"})); }},
    {"TeardownOfItsOwnCamera", [] { Handler::teardown(1); }},
    {"TeardownOfAnotherCamera", [] { Handler::teardown(2); }},
    {"IsDlpuEnabled", [] { EXPECT_TRUE(Handler::isDlpuEnabled()); }},
    {"GetNumberOfChannels", [] { EXPECT_EQ(Handler::getNumberOfChannels(), 2U); }},
    {"GetNumberOfSimultaneousChannels", [] { EXPECT_EQ(Handler::getNumberOfSimultaneousChannels(), 2U); }},
    {"GetServiceVersion", [] { EXPECT_EQ(Handler::getServiceVersion(), "1.0"); }},
    {"GetDetectorInformation", [] { EXPECT_EQ(Handler::getDetectorInformation(2).getCameraNbr(), 1); }},
    {"FreeGetDetectorInformation", [] { EXPECT_EQ(VOD::getDetectorInformation().getCameraNbr(), 1); }},
    {"GetSupportedClasses", [] { EXPECT_EQ(Handler::getSupportedClasses().size(), 3U); }},
    {"GetSupportedAttributes", [] { EXPECT_EQ(Handler::getSupportedAttributes().size(), 3U); }},
};

INSTANTIATE_TEST_SUITE_P(EveryFunction, ACallback, testing::Combine(testing::ValuesIn(calls), testing::Bool()),
                         [](const auto& instance) {
                           return std::get<0>(instance.param).name + std::string(std::get<1>(instance.param)
                                                                                     ? "OnAPlatformThatWaits"
                                                                                     : "OnOneThatDoesNot");
                         });

using ACallbackInsideSubscribe = HandlerTest;

TEST_F(ACallbackInsideSubscribe, OfTheCameraThatIsBeingSetUpFindsItNotYetActive) {
  vod::host::deliverDuringSubscribe(sceneOf({1}));
  EXPECT_TRUE(setUp(1));
  EXPECT_EQ(inbox_.size(), 0U);
  EXPECT_THAT(classesAfter(1, sceneOf({1})), ElementsAre(ElementsAre("human")));
}

TEST_F(ACallbackOnTheRetryThread, CannotWaitForThatThread) {
  std::promise<std::error_code> code;
  startRetryThreadAndRunThere([&code] {
    Handler::initialize(9);  // runs already: nothing happens
    try {
      Handler::deinitialize();
      code.set_value({});
    } catch (const std::system_error& failure) {
      code.set_value(failure.code());
    }
  });
  EXPECT_EQ(code.get_future().get(), std::errc::resource_deadlock_would_occur);
}

TEST_F(ACallbackOnTheRetryThread, EndsTheThreadAfterItsRoundByDeinitialize) {
  std::promise<void> ended;
  startRetryThreadAndRunThere([&ended] {
    thread_local std::shared_ptr<void> untilTheThreadsEnd;
    untilTheThreadsEnd = onRelease([&ended] { ended.set_value(); });
    EXPECT_THROW(Handler::deinitialize(), std::system_error);
  });
  ended.get_future().get();
  EXPECT_EQ(vod::host::channel(1).subscriptions().size(), 1U) << "the round was finished first";
}

TEST_F(ACallbackInsideSubscribe, ThatTearsThePendingCameraDownDoesNotUpsetTheRetries) {
  setUp(1);
  const vod::host::Registration live = vod::host::registration(2);
  Handler::setup(1, [](auto&&, int) { Handler::teardown(2); }, {"human"});
  const int down = vod::host::plan(Fault(Function::Create).always().failsWith(1));
  setUp(2);
  vod::host::lift(down);
  vod::host::plan(Fault(Function::Create).onCall(1).runs([&live] {
    const std::uint8_t nothing = 0;
    live.detection(&nothing, 0, live.userData);
  }));
  retryOnce();
  EXPECT_EQ(vod::host::channel(1).subscriptions().size(), 1U) << "its retry was already under way";
}

TEST_F(ACallbackInsideSubscribe, ThatDropsACameraRetriedInTheSameRoundLeavesItToTheNextRound) {
  const int down = vod::host::plan(Fault(Function::Create).always().failsWith(1));
  setUp(1);
  setUp(2);
  vod::host::lift(down);
  // Camera 1 has just been retried with success when, inside camera 2's first call, the service drops camera 1 again.
  vod::host::plan(Fault(Function::Create).onCall(4).runs([] {
    const vod::host::Registration retried = vod::host::registration(2);
    retried.teardown(retried.userData);
  }));
  retryOnce();
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_EQ(vod::host::channel(0).subscriptions().size(), 1U);
}

}  // namespace
}  // namespace tarn::test
