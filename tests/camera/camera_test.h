// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_CAMERA_CAMERA_TEST_H
#define TARNVOD_TESTS_CAMERA_CAMERA_TEST_H

#include "camera/steered_time.h"
#include "handler/handler_test.h"

#include <tarnvod/camera.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::test {

using namespace std::chrono_literals;
using VOD::CameraRequest;
using VOD::CameraState;
using VOD::CameraStatus;

/** Keeps what a camera calls back with; usable from any thread. */
class CameraLog {
 public:
  VOD::Camera::FrameCallback onFrame();
  VOD::Camera::StateCallback onState();

  /** The class names of each frame that was delivered. */
  std::vector<std::vector<std::string>> frames() const;
  /** The frames since the last call of this function. */
  std::vector<std::vector<std::string>> takeFrames();
  std::vector<CameraStatus> reports() const;
  /** The states that were reported since the last call of this function. */
  std::vector<CameraState> takeStates();

 private:
  mutable std::mutex mutex_;
  std::vector<std::vector<std::string>> frames_;
  std::vector<CameraStatus> reports_;
  std::size_t takenReports_ = 0;
};

/** A `Camera` in the tests' time. */
class TestCamera : public VOD::detail::CameraHandle<SteeredTime> {
 public:
  TestCamera(int camera, const CameraRequest& request, VOD::Camera::FrameCallback onFrame,
             VOD::Camera::StateCallback onState = {})
      : CameraHandle(VOD::detail::CameraSetup(camera, request.classes, request.region), std::move(onFrame),
                     std::move(onState)) {}

  /** With a log for both callbacks. */
  TestCamera(int camera, const CameraRequest& request, CameraLog& log)
      : TestCamera(camera, request, log.onFrame(), log.onState()) {}
};

/** What the tests ask for, if it does not matter. */
CameraRequest people();

/** Cameras on the host platform of `HandlerTest`; the library's retry thread, if it was started, sleeps in their time. */
class CameraTest : public HandlerTest {
 protected:
  ~CameraTest() override;

  /** Starts the library's retry thread, as an application may that uses `Handler` too. */
  void startRetryThread();

  /** Lets time pass: for the cameras, and for the library's retry thread, whose period is a second. */
  void pass(SteeredTime::Duration duration);

  /** Lets time pass while a scene with a person arrives every 100 ms at those who are subscribed to the channel. */
  void passWithFrames(SteeredTime::Duration duration, int channel = 0);

  /** Takes the service down, and waits until the library has noticed. */
  static void takeServiceDown();

  /** Ends all subscriptions of camera 1, and waits until the library has noticed. */
  static void dropSubscriptions();

  /** Delivers a scene on the calling thread. */
  static void deliver(const std::vector<std::uint32_t>& classIds = {1}, int channel = 0);

  CameraLog camera_;

 private:
  std::optional<SteeredTime::Point> nextRetry_;
};

}  // namespace tarn::test

#endif
