// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETAIL_WATCHED_CAMERA_H
#define TARNVOD_DETAIL_WATCHED_CAMERA_H

#include <tarnvod/camera_status.h>
#include <tarnvod/detail/camera_flow.h>
#include <tarnvod/detail/camera_setup.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace tarn::VOD::detail {

/**
 * All that is known of one camera: what was asked for, how its frames come, what the application is to learn of it.
 * Guarded by the watch's mutex, but for `setup`, which belongs to whoever has set `isBusy`.
 */
struct WatchedCamera {
  using Time = CameraFlow::Time;
  using FrameCallback = std::function<void(std::unique_ptr<DetectionData>)>;
  using StateCallback = std::function<void(const CameraStatus&)>;

  WatchedCamera(CameraSetup theSetup, FrameCallback frameCallback, StateCallback stateCallback, Time now)
      : setup(std::move(theSetup)),
        onFrame(std::move(frameCallback)),
        onState(std::move(stateCallback)),
        flow(now),
        isChanged(onState != nullptr) {
    status.camera = setup.camera();
  }

  /** Whether a frame that arrives is for the application; counts it. */
  bool accept(CameraFlow::Setup number, bool hasDetections, Time now) {
    ++status.framesReceived;
    if (!flow.accept(number, hasDetections, now)) {
      ++status.framesHeldBack;
      return false;
    }
    ++status.framesDelivered;
    endInterruption(now);
    status.lastFrame = now;
    if (status.state != CameraState::Receiving) {
      changeState(CameraState::Receiving, {});
    }
    return true;
  }

  /** The application has finished with a frame, or thrown. */
  void endFrame(bool succeeded, Time arrival, Time now) {
    flow.endCallback(arrival, now);
    status.longestCallback = std::max<std::chrono::nanoseconds>(status.longestCallback, now - arrival);
    if (!succeeded && !isThrowing_) {
      isChanged = onState != nullptr;
    }
    isThrowing_ = !succeeded;
  }

  /** When to look at the camera again. */
  Time nextStep(Time now) const {
    if (status.state == CameraState::Receiving) {
      return flow.nextLook(now);
    }
    if (status.state == CameraState::Silent) {
      return flow.nextRenewal(now);
    }
    return wasAttempted_ ? flow.nextTry() : now;
  }

  /** Whether frames have just stayed away for too long. */
  bool fallSilentIfQuiet(Time now) {
    const bool isNew = status.state == CameraState::Receiving && flow.isQuiet(now);
    if (isNew) {
      changeState(CameraState::Silent, "no frames come");  // as `attempt` says: short enough not to allocate
    }
    return isNew;
  }

  /** What the next attempt does with an earlier set-up: the first one cannot know its region. */
  Existing nextAttempt() {
    const bool isFirst = !std::exchange(wasAttempted_, true);
    return isFirst ? Existing::End : Existing::Keep;
  }

  /** An attempt has ended. */
  void take(SetupOutcome outcome, Time now) {
    const bool success = outcome.state == CameraState::Receiving;
    flow.endSetup(success, now);
    if (!success) {
      changeState(outcome.state, std::move(outcome.reason), std::move(outcome.refusedClasses));
    } else if (status.state != CameraState::Silent) {
      if (status.state != CameraState::Receiving) {
        flow.restartQuiet(now);
      }
      changeState(CameraState::Receiving, {});
    }
  }

  void noteException(const char* text) noexcept {
    ++status.callbackExceptions;
    try {
      status.lastException = text;
    } catch (const std::bad_alloc&) {
      status.lastException.clear();  // the count is all that is left of it
    }
  }

  CameraSetup setup;
  const FrameCallback onFrame;
  const StateCallback onState;
  CameraFlow flow;
  CameraStatus status{};

  int running = 0;           ///< callbacks of the application that run now
  bool isBusy = false;       ///< somebody sets it up at this moment, without the mutex
  bool isClosing = false;    ///< no callback begins any more
  bool isAbandoned = false;  ///< whoever is busy ends it
  bool isChanged;            ///< the application is to be called with the state
  Time nextReport = Time::min();

 private:
  void changeState(CameraState state, std::string reason, std::set<std::string> refusedClasses = {}) noexcept {
    if (status.state == state && status.reason == reason && status.refusedClasses == refusedClasses) {
      return;
    }
    if (status.state == CameraState::Receiving) {
      beginInterruption();
    }
    status.state = state;
    status.reason.swap(reason);
    status.refusedClasses.swap(refusedClasses);
    isChanged = onState != nullptr;
  }

  void beginInterruption() {
    if (status.lastFrame && !isInterrupted_) {
      isInterrupted_ = true;
      ++status.interruptions;
    }
  }

  void endInterruption(Time now) {
    if (std::exchange(isInterrupted_, false)) {
      status.lastInterruption = now - *status.lastFrame;
      status.longestInterruption = std::max(status.longestInterruption, status.lastInterruption);
    }
  }

  bool isInterrupted_ = false;
  bool isThrowing_ = false;
  bool wasAttempted_ = false;
};

}  // namespace tarn::VOD::detail

#endif
