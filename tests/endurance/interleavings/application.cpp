// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "application.h"

#include <utility>

namespace tarn::test {
namespace {

constexpr int camera = 1;

using VOD::Handler;

}  // namespace

void Application::setUp() {
  isTornDown_ = false;
  Handler::setup(
      camera,
      [this, share = callables_](std::unique_ptr<VOD::DetectionData> frame, int /*camera*/) { receive(*frame); },
      {"human"});
}

void Application::receive(const VOD::DetectionData& frame) {
  const bool isComplete = frame.detections.size() == 1 && frame.detections.front().className == "human" &&
                          frame.detections.front().attributes.size() == 1;
  if (!isComplete) {
    fail_("a frame arrived without its person or the person's attribute");
  }
  ++frames_;
  if (onFrame_) {
    onFrame_();
  }
}

void Application::tearDown() {
  Handler::teardown(camera);
  isTornDown_ = true;
}

void Application::sendFrame() {
  bool mustNotArrive = false;
  int framesBefore = 0;
  platform_.sendFrame(camera, [&] {
    mustNotArrive = isTornDown_;
    framesBefore = frames_;
  });
  if (mustNotArrive && isTornDown_ && frames_ != framesBefore) {
    fail_("a frame that came after the teardown was delivered");
  }
}

void Application::drop() {
  platform_.drop(camera);
}

void Application::retry() {
  Handler::initialize(1);
  // A thread that was running before may be in the middle of its first round.
  Scheduler::waitUntil(Scheduler::sleepsAgain(2));
  Handler::deinitialize();
}

void Application::expectSubscribed() {
  if (platform_.subscriptions(camera) != 1) {
    fail_("the camera has " + std::to_string(platform_.subscriptions(camera)) + " subscriptions instead of one");
  }
  const int before = frames_;
  onFrame_ = nullptr;
  sendFrame();
  if (frames_ != before + 1) {
    fail_("the camera is subscribed, but its frames do not arrive");
  }
  if (callables_.use_count() != 2) {
    fail_("the library holds " + std::to_string(callables_.use_count() - 1) + " copies of the callable");
  }
}

void Application::expectNothingLeft() {
  if (platform_.notDeleted() != 0) {
    fail_("a subscriber is left after the teardown");
  }
  if (callables_.use_count() != 1) {
    fail_("a copy of the callable is left after the teardown");
  }
}

}  // namespace tarn::test
