// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "client.h"

namespace vod::host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string scene = sceneWith({{0.5F, 0.5F}});
constexpr std::chrono::milliseconds shortLimit{20};

/** A client whose callback stands at a gate. */
class ACallbackThatRuns : public HostTest {
 protected:
  ACallbackThatRuns() {
    client_.subscribe();
    channel(0).pushScene(scene);
    gate_.waitUntilReached();
  }
  ~ACallbackThatRuns() override { gate_.open(); }

  /** Ends the client on another thread, and lets the callback go on when the call cannot but be waiting for it. */
  template <typename End>
  void expectToWait(End end, const std::string& call) {
    bool isOver = false;
    std::thread ending([&] {
      EXPECT_EQ(end(), 0);
      EXPECT_TRUE(isOver);
    });
    waitForCalls([&](const std::vector<Call>& calls) { return calls.back().text() == call; });
    afterGate_ = [&] { isOver = true; };
    gate_.open();
    ending.join();
  }

  const Gate gate_;
  std::function<void()> afterGate_;
  Client client_{0,
                 {[this](Client&) {
                    gate_.pass();
                    if (afterGate_) {
                      afterGate_();
                    }
                  },
                  {}}};
};

TEST_F(ACallbackThatRuns, IsWaitedForByUnsubscribe) {
  expectToWait([this] { return client_.unsubscribe(); }, "unsubscribe(#1)");
}

TEST_F(ACallbackThatRuns, IsWaitedForByDelete) {
  expectToWait([this] { return client_.remove(); }, "delete(#1)");
}

TEST_F(ACallbackThatRuns, IsWaitedForUpToTheLimitAndThenReported) {
  waitForCallbacks(true, shortLimit);
  EXPECT_EQ(
      errorsOf([this] { EXPECT_EQ(client_.unsubscribe(), 0); }),
      "video_object_detection_subscriber: unsubscribe: a callback of subscriber #1 still runs after 20 ms; no longer "
      "waiting for it\n");
  EXPECT_EQ(errorsOf([this] { EXPECT_EQ(client_.remove(), 0); }),
            "video_object_detection_subscriber: delete: a callback of subscriber #1 still runs after 20 ms; no longer "
            "waiting for it\n");
}

TEST_F(ACallbackThatRuns, IsWaitedForTwoSecondsByDefault) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THAT(errorsOf([this] { EXPECT_EQ(client_.remove(), 0); }), testing::HasSubstr("still runs after 2000 ms"));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST_F(ACallbackThatRuns, IsNotWaitedForByAPlatformThatDoesNotWait) {
  waitForCallbacks(false);
  EXPECT_EQ(errorsOf([this] {
              EXPECT_EQ(client_.unsubscribe(), 0);
              EXPECT_EQ(client_.remove(), 0);
            }),
            "");
}

TEST_F(ACallbackThatRuns, IsTheLastOneAfterDelete) {
  waitForCallbacks(false);
  channel(0).pushScene(scene).dropSubscriptions();
  EXPECT_EQ(client_.remove(), 0);
  gate_.open();
  drain();
  EXPECT_THAT(client_.scenes(), ElementsAre(scene));
  EXPECT_EQ(client_.teardowns(), 0);
}

TEST_F(ACallbackThatRuns, IsNotWaitedForWhenAnotherSubscriberEnds) {
  Client other(0);
  other.subscribe();
  EXPECT_EQ(errorsOf([&] { EXPECT_EQ(other.remove(), 0); }), "");
}

TEST_F(ACallbackThatRuns, IsWaitedForByReset) {
  bool isOver = false;
  afterGate_ = [&] { isOver = true; };
  waitForCallbacks(false);
  EXPECT_EQ(client_.remove(), 0);
  reset();
  EXPECT_TRUE(isOver);
}

class ACallback : public HostTest {};

TEST_F(ACallback, EndsItsOwnSubscriberWithoutWaitingForItself) {
  const auto end = [](Client& client) {
    EXPECT_EQ(client.unsubscribe(), 0);
    EXPECT_EQ(client.remove(), 0);
  };
  Client detected(0, {end, {}});
  Client tornDown(0, {{}, end});
  detected.subscribe();
  tornDown.subscribe();
  EXPECT_EQ(errorsOf([] {
              channel(0).pushScene(scene).dropSubscriptions();
              drain();
            }),
            "");
  EXPECT_EQ(detected.teardowns(), 0);
  EXPECT_EQ(tornDown.teardowns(), 1);
  EXPECT_EQ(liveSubscribers(), 0);
}

TEST_F(ACallback, SeesNoOtherAfterItHasDeletedItsSubscriber) {
  Client client(0, {[](Client& self) { EXPECT_EQ(self.remove(), 0); }, {}});
  client.subscribe();
  channel(0).pushScene(scene).pushScene(scene);
  drain();
  EXPECT_THAT(client.scenes(), ElementsAre(scene));
}

}  // namespace
}  // namespace vod::host
