// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_APPLICATION_H
#define TARNVOD_TESTS_ENDURANCE_INTERLEAVINGS_APPLICATION_H

#include "scheduler.h"
#include "scripted_platform.h"

#include <tarnvod/handler.h>

#include <functional>
#include <memory>

namespace tarn::test {

/** An application with one camera, number 1, and the platform that it runs on. */
class Application {
 public:
  explicit Application(Scheduler::Failure fail) : fail_(fail), platform_(fail) {}

  ScriptedPlatform& platform() { return platform_; }

  /** Sets the camera up. What runs in its callback, in addition to the checks, is up to the world. */
  void setUp();
  void whenFrameComes(std::function<void()> action) { onFrame_ = std::move(action); }

  void tearDown();
  void sendFrame();
  void drop();

  /** Lets the retry thread try once what is left to be retried, and stops it. */
  void retry();

  /** Fails unless the camera is subscribed once and its frames arrive complete. */
  void expectSubscribed();

  /** Fails unless nothing is left of the camera: no subscriber, no copy of a callable. */
  void expectNothingLeft();

 private:
  void receive(const VOD::DetectionData& frame);

  const Scheduler::Failure fail_;
  ScriptedPlatform platform_;
  std::function<void()> onFrame_;
  std::shared_ptr<int> callables_ = std::make_shared<int>();  ///< each copy of a callable holds a share
  int frames_ = 0;
  bool isTornDown_ = true;
};

}  // namespace tarn::test

#endif
