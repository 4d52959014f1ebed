// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Several cameras deliver on threads of their own while others are set up, updated, dropped, retried and torn down.

#include "handler/handler_test.h"
#include "support/detector_builder.h"
#include "support/scene_builder.h"

#include <array>
#include <atomic>
#include <thread>

namespace tarn::test {
namespace {

constexpr int steadyCamera = 1;
constexpr int lastCamera = 4;
constexpr int rounds = 150;
constexpr int framesPerRound = 4;

std::string nameFor(const std::string& what, int camera) {
  return what + " of camera " + std::to_string(camera);
}

std::string detectorOf(int camera) {
  ::VOD::DetectorInformation information;
  addClass(information, 1, nameFor("thing", camera));
  addAttributeType(information, 1, nameFor("kind", camera));
  return information.SerializeAsString();
}

std::string sceneWithAttribute() {
  ::VOD::Scene scene;
  addAttribute(addDetection(scene, 1), 1);
  return scene.SerializeAsString();
}

/** What must be true of every frame, counted while it arrives. */
struct Tally {
  std::atomic<int> frames = 0;
  std::atomic<int> misnamed = 0;
  std::atomic<int> late = 0;

  void check(const VOD::DetectionData& frame, int camera) {
    ++frames;
    for (const VOD::Data& detection : frame.detections) {
      const bool named = detection.className == nameFor("thing", camera) && detection.attributes.size() <= 1 &&
                         (detection.attributes.empty() || detection.attributes[0].typeName == nameFor("kind", camera));
      misnamed += named ? 0 : 1;
    }
  }
};

/** One life of a camera: its frames must not come once it is closed. */
struct Life {
  std::atomic<bool> closed = false;
};

class ManyCamerasAtOnce : public HandlerTest, public testing::WithParamInterface<bool> {
 protected:
  ManyCamerasAtOnce() {
    vod::host::recordCalls(false);
    vod::host::waitForCallbacks(GetParam());
    for (int camera = 1; camera <= lastCamera; ++camera) {
      vod::host::channel(camera - 1).detectorInformation(detectorOf(camera));
    }
  }

  std::shared_ptr<Life> bringToLife(int camera, bool wantsDetections) {
    auto life = std::make_shared<Life>();
    const std::set<std::string> classes =
        wantsDetections ? std::set<std::string>{nameFor("thing", camera)} : std::set<std::string>{};
    Handler::setup(
        camera,
        [this, life](std::unique_ptr<VOD::DetectionData> frame, int number) {
          tallies_[static_cast<std::size_t>(number)].check(*frame, number);
          if (life->closed) {
            ++tallies_[static_cast<std::size_t>(number)].late;
          }
        },
        classes);
    return life;
  }

  void liveAndDie(int camera) {
    for (int round = 0; round < rounds; ++round) {
      const auto first = bringToLife(camera, true);
      const auto second = bringToLife(camera, round % 3 != 0);
      Handler::getSupportedAttributes();
      Handler::teardown(camera);
      first->closed = true;
      second->closed = true;
    }
  }

  static void pushFrames(int camera) {
    const std::string scene = sceneWithAttribute();
    for (int round = 0; round < rounds; ++round) {
      for (int frame = 0; frame < framesPerRound; ++frame) {
        vod::host::channel(camera - 1).pushScene(scene);
      }
      if (camera != steadyCamera) {
        vod::host::channel(camera - 1).dropSubscriptions();
      }
      Handler::getDetectorInformation(camera);
    }
  }

  std::array<Tally, lastCamera + 1> tallies_;
};

TEST_P(ManyCamerasAtOnce, LoseNoFrameMistakeNoNameAndEndInTime) {
  sleep_.releaseAll();
  Handler::initialize(1);
  bringToLife(steadyCamera, true);
  std::vector<std::thread> threads;
  for (int camera = 1; camera <= lastCamera; ++camera) {
    threads.emplace_back(pushFrames, camera);
    if (camera != steadyCamera) {
      threads.emplace_back([this, camera] { liveAndDie(camera); });
    }
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  vod::host::drain();
  Handler::deinitialize();

  EXPECT_EQ(tallies_[steadyCamera].frames, rounds * framesPerRound) << "the steady camera gets every frame";
  for (int camera = 1; camera <= lastCamera; ++camera) {
    const Tally& tally = tallies_[static_cast<std::size_t>(camera)];
    EXPECT_EQ(tally.misnamed, 0) << camera;
    if (GetParam()) {
      EXPECT_EQ(tally.late, 0) << camera;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(OnAPlatformThatWaitsAndOneThatDoesNot, ManyCamerasAtOnce, testing::Bool());

using AttributesOfCameraOne = HandlerTest;

TEST_F(AttributesOfCameraOne, CanBeAskedForWhileItStreamsFromADetectorWhoseAttributesHaveNoValues) {
  vod::host::recordCalls(false);
  vod::host::channel(0).detectorInformation(detectorOf(1));
  const std::string name = nameFor("thing", 1);
  std::atomic<int> unnamed = 0;
  Handler::setup(1, [&unnamed](auto frame, int) { unnamed += frame->detections.at(0).attributes.size() == 1 ? 0 : 1; },
                 {name});
  std::thread asking([] {
    for (int i = 0; i < 500; ++i) {
      Handler::getSupportedAttributes();  // reads and replaces the names each time
    }
  });
  for (int i = 0; i < 500; ++i) {
    vod::host::channel(0).pushScene(sceneWithAttribute());
  }
  asking.join();
  vod::host::drain();
  EXPECT_EQ(unnamed, 0);
}

}  // namespace
}  // namespace tarn::test
