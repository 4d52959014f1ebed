// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Memory: a frame takes none of its own, and a camera survives that it runs out.

#include "camera/camera_test.h"
#include "support/allocation_failure.h"
#include "support/parsing_without_memory.h"

#include <memory>
#include <new>

namespace tarn::test {
namespace {

using testing::ElementsAre;

/** Hands a scene to the only subscriber, as the platform does, but without the platform's own allocations. */
class Service {
 public:
  Service() : registered_(vod::host::registration(vod::host::channel(0).subscriptions().front())) {}

  void deliver() const {
    registered_.detection(reinterpret_cast<const std::uint8_t*>(scene_.data()),
                          static_cast<std::int32_t>(scene_.size()), registered_.userData);
  }

  std::size_t allocationsOfAFrame() const {
    deliver();
    const AllocationFailure counter(AllocationFailure::none);
    deliver();
    return counter.count();
  }

 private:
  const std::string scene_ = sceneOf({1, 1, 1});
  const vod::host::Registration registered_;
};

using AFrameOfACamera = CameraTest;

TEST_F(AFrameOfACamera, AllocatesNothingMoreThanOneOfTheHandler) {
  ASSERT_TRUE(Handler::setup(1, [](auto&&, int) {}, {"human"}));
  const std::size_t ofTheHandler = Service().allocationsOfAFrame();
  Handler::teardown(1);

  const TestCamera camera(1, people(), [](auto) {});
  EXPECT_EQ(Service().allocationsOfAFrame(), ofTheHandler);
}

class ACameraWithoutMemory : public CameraTest {
 protected:
  ACameraWithoutMemory() { vod::host::aroundCalls(AllocationFailure::pause, AllocationFailure::resume); }

  void SetUp() override {
    if (!messagesSurviveFailedAllocations()) {
      GTEST_SKIP() << noSurvival;
    }
  }

  void expectRecovery(const TestCamera& camera, std::size_t number) {
    pass(2s);
    deliver();
    pass(100ms);
    deliver();
    EXPECT_EQ(camera.status().state, CameraState::Receiving) << "allocation " << number;
    EXPECT_GE(camera.status().framesDelivered, 1U) << "allocation " << number;
  }
};

TEST_F(ACameraWithoutMemory, IsEitherMadeAndRecoversOrLeavesNothingBehind) {
  const CameraRequest request = people();
  const VOD::Camera::FrameCallback onFrame = [](auto) {};
  bool failed = true;
  for (std::size_t number = 1; failed; ++number) {
    std::unique_ptr<TestCamera> camera;
    {
      const AllocationFailure failure(number);
      try {
        camera = std::make_unique<TestCamera>(1, request, onFrame);
      } catch (const std::bad_alloc&) {
        // Nothing was made; what that leaves is looked at below.
      }
      failed = failure.happened();
    }
    if (camera) {
      expectRecovery(*camera, number);
      camera.reset();
    }
    EXPECT_EQ(vod::host::liveSubscribers(), 0) << "allocation " << number;
  }
}

TEST_F(ACameraWithoutMemory, RecoversFromAFailureInARenewal) {
  bool failed = true;
  for (std::size_t number = 1; failed; ++number) {
    const TestCamera camera(1, people(), camera_);
    deliver();
    SteeredTime::settle();
    dropSubscriptions();
    {
      const AllocationFailure failure(number, Threads::All);
      pass(2s);
      failed = failure.happened();
    }
    expectRecovery(camera, number);
  }
}

TEST_F(ACameraWithoutMemory, IsReportedOnceThereIsSome) {
  bool failed = true;
  for (std::size_t number = 1; failed; ++number) {
    const TestCamera camera(1, people(), camera_);
    deliver();
    SteeredTime::settle();
    takeServiceDown();
    {
      const AllocationFailure failure(number, Threads::All);
      pass(2s);
      failed = failure.happened();
    }
    pass(2s);
    const bool wasReportRefused = camera.status().callbackExceptions > 0;  // by the log, which needs memory as well
    EXPECT_TRUE(wasReportRefused || camera_.takeStates().back() == CameraState::Waiting) << "allocation " << number;
    vod::host::bringServiceUp();
  }
}

}  // namespace
}  // namespace tarn::test
