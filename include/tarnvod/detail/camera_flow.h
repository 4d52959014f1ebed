// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETAIL_CAMERA_FLOW_H
#define TARNVOD_DETAIL_CAMERA_FLOW_H

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace tarn::VOD::detail {

/**
 * Judges a camera's frames by when they arrive: whether they come as they should, and whether they can be complete. No
 * lock, no clock, no call of the library: whoever calls passes the time.
 *
 * A retry of the library that fails forgets the classes, and the retry that succeeds after it delivers frames without
 * detections, through the same callable. Two retries are at least a second apart. So a frame is complete when it has
 * detections, or when it follows another complete frame, or a set-up, by less than `lease`. An empty frame after a
 * longer pause is doubtful until the camera has been set up again. The time in which the application has a frame does
 * not count: the service waits then.
 *
 * Each set-up has a number, which the callable carries, so that frames of an attempt that failed are recognised.
 */
class CameraFlow {
 public:
  using Time = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;
  using Setup = std::uint32_t;

  /** How long a complete frame vouches for those after it: less than the shortest retry period of the library. */
  static constexpr std::chrono::milliseconds lease{750};
  /** From one failed attempt to the next. */
  static constexpr std::chrono::seconds retryPeriod{1};
  /** After so long with empty frames only the set-up is renewed, in case that no pause gave the loss away. */
  static constexpr std::chrono::seconds proofPeriod{10};

  explicit CameraFlow(Time now) : quietSince_(now), leaseStart_(now), proof_(now), lastTry_(now) {}

  // ---- Set-ups ----

  /** An attempt begins; until it ends, empty frames of it count as doubtful. */
  Setup beginSetup(Time now) {
    lastTry_ = now;
    undecided_ = ++setups_;
    return setups_;
  }

  void endSetup(bool success, Time now) {
    if (success) {
      firstTrusted_ = std::min(firstTrusted_, setups_);
      leaseStart_ = now;
      proof_ = now;
    } else {
      distrust();
    }
    undecided_ = none;
  }

  /** Frames are expected from now on. */
  void restartQuiet(Time now) { quietSince_ = now; }

  // ---- Frames ----

  /** A frame arrives; whether it is certain that it was made with all classes. */
  bool accept(Setup setup, bool hasDetections, Time now) {
    if (running_ == 0) {
      learnPause(now - quietSince_);
      if (now - leaseStart_ >= lease) {
        distrust();
      }
      quietSince_ = now;
    }
    if (hasDetections) {
      proven_ = setup;
      proof_ = now;
    }
    return setup == proven_ || (setup >= firstTrusted_ && setup != undecided_);
  }

  void beginCallback() { ++running_; }

  /** @param begin  when the frame arrived */
  void endCallback(Time begin, Time now) {
    --running_;
    quietSince_ = now;
    leaseStart_ = now;
    proof_ += now - begin;
  }

  // ---- Judgements ----

  /** No set-up vouches for empty frames. */
  bool isDoubtful() const { return firstTrusted_ > setups_ && proven_ == none; }

  bool isQuiet(Time now) const { return running_ == 0 && now - quietSince_ >= longestNormalPause(); }

  /** When to look again at a camera that receives: at once, when a lease or the patience ends. */
  Time nextLook(Time now) const {
    if (running_ > 0) {
      return now + lease;
    }
    return isDoubtful() ? now
                        : std::min({leaseStart_ + lease, quietSince_ + longestNormalPause(), proof_ + proofPeriod});
  }

  /** When to renew the set-up of a silent camera. */
  Time nextRenewal(Time now) const {
    if (running_ > 0) {
      return now + lease;
    }
    return isDoubtful() ? now : leaseStart_ + lease;
  }

  /** When to try again what failed. */
  Time nextTry() const { return lastTry_ + retryPeriod; }

 private:
  static constexpr Setup none = 0;

  void distrust() {
    firstTrusted_ = setups_ + 1;
    proven_ = none;
  }

  Duration longestNormalPause() const { return std::max<Duration>(lease, 3 * usualPause_); }

  /** One long pause does not make the next one usual; a service that is slow throughout is learned in a few frames. */
  void learnPause(Duration pause) {
    usualPause_ += (std::min<Duration>(pause, 2 * longestNormalPause()) - usualPause_) / 8;
  }

  // Set-ups are numbered from 1.
  Setup setups_ = 0;
  Setup undecided_ = none;
  Setup firstTrusted_ = 1;  ///< empty frames of earlier set-ups may have been made without classes
  Setup proven_ = none;     ///< unless it is of this one, whose last frame had detections or followed such a frame

  int running_ = 0;  ///< callbacks that have a frame now
  Time quietSince_;
  Time leaseStart_;
  Time proof_;  ///< when something last showed that the library knows the classes, plus the application's time since
  Time lastTry_;
  Duration usualPause_{0};
};

}  // namespace tarn::VOD::detail

#endif
