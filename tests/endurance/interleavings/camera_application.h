// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_CAMERA_APPLICATION_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_CAMERA_APPLICATION_H

#include "scheduled_time.h"
#include "scheduler.h"
#include "scripted_platform.h"

#include <tarnvod/camera.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace tarn::test {

/** An application with a `Camera` of number 1, and the platform that it runs on. */
class CameraApplication {
 public:
  explicit CameraApplication(Scheduler::Failure fail) : fail_(fail), platform_(fail) {}

  ScriptedPlatform& platform() { return platform_; }

  /** Makes the camera; an earlier one has ended. */
  void make() { owned_ = made(); }

  /** Makes another one of the same number and ends it. */
  void makeAndEndSecond() { end(made()); }

  /** Ends the camera, if there is one. */
  void end() { end(std::exchange(owned_, {})); }

  void sendFrame() {
    platform_.sendFrame(number, [] {});
  }
  void drop() { platform_.drop(number); }

  /** What runs in each callback, in addition to the checks. */
  void whenFrameComes(std::function<void()> action) { onFrame_ = std::move(action); }
  void whenStateComes(std::function<void()> action) { onState_ = std::move(action); }

  /** Fails unless the camera's frames come, at the latest after its thread has tried a few times. */
  void expectFrames() {
    constexpr int tries = 8;
    for (int i = 0; i < tries; ++i) {
      const int before = frames_;
      sendFrame();
      if (frames_ != before) {
        return;
      }
      Scheduler::waitUntil(Scheduler::sleepsAgain(1));
    }
    fail_("the camera's frames do not come again");
  }

  /** Waits until nothing is left of the cameras: no subscriber, no copy of a callback. */
  void awaitNothingLeft() {
    Scheduler::waitUntil([this] { return platform_.notDeleted() == 0 && callbacks_.use_count() == 1; });
  }

  bool hasCamera() const { return owned_.camera != nullptr; }

 private:
  using Camera = VOD::detail::CameraHandle<ScheduledTime>;
  static constexpr int number = 1;

  /** A camera, and whether its destructor has returned. */
  struct Owned {
    std::unique_ptr<Camera> camera;
    std::shared_ptr<bool> isOver;
  };

  Owned made() {
    const auto isOver = std::make_shared<bool>(false);
    const auto onFrame = [this, isOver, share = callbacks_](std::unique_ptr<VOD::DetectionData> frame) {
      receive(*frame, *isOver);
    };
    const auto onState = [this, isOver, share = callbacks_](const VOD::CameraStatus&) {
      runCallback(onState_, *isOver);
    };
    return {std::make_unique<Camera>(VOD::detail::CameraSetup(number, {"human"}, {}), onFrame, onState), isOver};
  }

  static void end(Owned ending) {
    if (ending.camera) {
      ending.camera.reset();
      *ending.isOver = true;
    }
  }

  void receive(const VOD::DetectionData& frame, const bool& isOver) {
    if (frame.detections.size() != 1 || frame.detections.front().className != "human") {
      fail_("a frame was delivered without its person");
    }
    ++frames_;
    runCallback(onFrame_, isOver);
  }

  void runCallback(const std::function<void()>& action, const bool& isOver) {
    Scheduler::point();
    if (isOver) {
      fail_("a callback runs although the destructor has returned");
    }
    if (action) {
      action();
    }
  }

  const Scheduler::Failure fail_;
  ScriptedPlatform platform_;
  std::function<void()> onFrame_;
  std::function<void()> onState_;
  std::shared_ptr<int> callbacks_ = std::make_shared<int>();  ///< each copy of a callback holds a share
  Owned owned_;
  int frames_ = 0;
};

}  // namespace tarn::test

#endif
