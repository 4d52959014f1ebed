// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The end of a camera: no callback after it, wherever it comes from.

#include "camera/camera_test.h"

#include <atomic>
#include <future>
#include <thread>

namespace tarn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/** Calls what the subscriber of a number registered, as a platform does that delivers after the end. */
void deliverLate(int subscriber) {
  const vod::host::Registration late = vod::host::registration(subscriber);
  const std::string scene = sceneOf({1});
  late.detection(reinterpret_cast<const std::uint8_t*>(scene.data()), static_cast<std::int32_t>(scene.size()),
                 late.userData);
}

class TheEndOfACamera : public CameraTest {
 protected:
  /** Sends a scene on the channel's own thread, and waits until it stands at the gate. */
  void sendTo(const vod::host::Gate& gate) const {
    vod::host::channel(0).pushScene(sceneOf({1}));
    gate.waitUntilReached();
  }

  std::unique_ptr<TestCamera> owned_;
};

TEST_F(TheEndOfACamera, EndsTheSubscription) {
  {
    const TestCamera camera(1, people(), camera_);
    EXPECT_THAT(vod::host::channel(0).subscriptions(), SizeIs(1));
  }
  EXPECT_THAT(vod::host::channel(0).subscriptions(), IsEmpty());
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

TEST_F(TheEndOfACamera, EndsTheRetriesOfAWaitingOne) {
  startRetryThread();
  takeServiceDown();
  { const TestCamera camera(1, people(), camera_); }
  vod::host::bringServiceUp();
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

TEST_F(TheEndOfACamera, IsFollowedByNoFrame) {
  owned_ = std::make_unique<TestCamera>(1, people(), camera_);
  const int subscriber = vod::host::channel(0).subscriptions().front();
  owned_.reset();
  deliverLate(subscriber);
  EXPECT_THAT(camera_.takeFrames(), IsEmpty());
}

TEST_F(TheEndOfACamera, FindsItsGateClosedForAFrameThatTheLibraryHasAlreadyTaken) {
  // The number is set up by somebody else when the camera ends; a copy of the callable is kept as a frame keeps it.
  VOD::DetectionCallback kept;
  {
    const TestCamera camera(1, people(), camera_);
    kept = VOD::detail::CameraWatch<SteeredTime>::receiverOf(1, 1);
  }
  kept(std::make_unique<VOD::DetectionData>(0, std::vector<VOD::Data>{}, std::vector<VOD::VodEvent>{}), 1);
  EXPECT_THAT(camera_.takeFrames(), IsEmpty());
}

TEST_F(TheEndOfACamera, WaitsForACallbackThatRuns) {
  vod::host::waitForCallbacks(false);
  const vod::host::Gate gate;
  std::atomic<bool> hasReturned = false;
  owned_ = std::make_unique<TestCamera>(1, people(), [&](auto) {
    gate.pass();
    hasReturned = true;
  });
  sendTo(gate);
  std::atomic<bool> hasEnded = false;
  std::thread end([&] {
    owned_.reset();
    hasEnded = true;
    EXPECT_TRUE(hasReturned);
  });
  EXPECT_FALSE(hasEnded);
  gate.open();
  end.join();
}

TEST_F(TheEndOfACamera, MayComeFromItsOwnFrame) {
  bool usedAfterwards = false;
  owned_ = std::make_unique<TestCamera>(1, people(), [&, kept = std::make_shared<int>(7)](auto) {
    owned_.reset();
    usedAfterwards = *kept == 7;
  });
  deliver();
  EXPECT_TRUE(usedAfterwards);
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
  deliver();
}

TEST_F(TheEndOfACamera, MayComeFromItsOwnFrameWhileItIsSetUp) {
  const vod::host::Gate inCallback;
  owned_ = std::make_unique<TestCamera>(1, people(), [&](auto) {
    inCallback.pass();
    owned_.reset();
  });
  SteeredTime::settle();
  const vod::host::Gate inSetUp;
  vod::host::plan(Fault(Function::GetInformation).waitsAt(inSetUp));
  SteeredTime::jump(750ms);
  inSetUp.waitUntilReached();
  vod::host::channel(0).pushScene(sceneOf({1}));
  inSetUp.open();
  inCallback.open();
  vod::host::drain();
  vod::host::waitForReturned(Function::Delete, 1);
  SteeredTime::settle();
  EXPECT_EQ(owned_, nullptr);
}

TEST_F(TheEndOfACamera, MayComeFromItsOwnReport) {
  std::promise<void> ended;
  owned_ = std::make_unique<TestCamera>(1, people(), camera_.onFrame(), [&](const CameraStatus& status) {
    if (status.state == CameraState::Silent) {
      owned_.reset();
      ended.set_value();
    }
  });
  SteeredTime::settle();
  SteeredTime::jump(1s);
  ended.get_future().wait();
  EXPECT_EQ(vod::host::liveSubscribers(), 0);
}

TEST_F(TheEndOfACamera, MayComeFromAnothersFrame) {
  const TestCamera other(2, people(), [&](auto) { owned_.reset(); });
  owned_ = std::make_unique<TestCamera>(1, people(), camera_);
  deliver({1}, 1);
  deliver();
  EXPECT_THAT(camera_.takeFrames(), IsEmpty());
}

TEST_F(TheEndOfACamera, IsFollowedByNoReport) {
  owned_ = std::make_unique<TestCamera>(1, people(), camera_);
  SteeredTime::settle();
  owned_.reset();
  SteeredTime::jump(1min);
  EXPECT_THAT(camera_.takeStates(), ElementsAre(CameraState::Receiving));
}

TEST_F(TheEndOfACamera, ReleasesItsCallbacks) {
  const auto held = std::make_shared<int>(0);
  {
    const TestCamera camera(
        1, people(), [held](auto) {}, [held](const CameraStatus&) {});
    EXPECT_EQ(held.use_count(), 3);
  }
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(TheEndOfACamera, LeavesTheRetryThreadOfTheApplicationRunning) {
  startRetryThread();
  { const TestCamera camera(1, people(), camera_); }
  EXPECT_TRUE(setUp(2));
  vod::host::channel(1).dropSubscriptions();
  vod::host::drain();
  sleep_.release();
  sleep_.waitUntilAsleep();
  EXPECT_THAT(vod::host::channel(1).subscriptions(), SizeIs(1));
}

}  // namespace
}  // namespace tarn::test
