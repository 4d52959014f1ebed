// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CAMERA_LINK_H
#define TARNVOD_COMMAND_CAMERA_LINK_H

#include "cameras/bounded_queue.h"

#include <tarnvod/handler.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace tarn::command {

using Clock = std::chrono::steady_clock;

/** How often the library, and this command beside it, tries again what failed. */
inline constexpr std::chrono::seconds retryPeriod{1};

/** A frame on its way from the service's thread to the main thread. */
struct Arrival {
  int camera = 0;
  std::uint64_t setup = 0;  ///< under which set-up of the camera it was delivered
  Clock::time_point at;
  std::unique_ptr<VOD::DetectionData> frame;
};

using ArrivalQueue = BoundedQueue<Arrival>;

/** What to ask for; no classes are all that the detector knows. */
struct Request {
  std::set<std::string> classes;
  std::optional<VOD::VodChannelConfiguration> region;
};

/**
 * One camera's subscription: set up, watched, set up again where the library cannot know what was asked for.
 *
 * The library tells no one that the service dropped a subscription, so a link notices that frames stay away, and asks
 * the service whether it still answers. When a retry of the library fails, the classes that were asked for are
 * forgotten, and the retry that succeeds delivers frames without detections. A link therefore sets the camera up again
 * at the first frame after a silence in which a retry may have failed; for a live camera this changes the callback and
 * the classes only.
 */
class CameraLink {
 public:
  enum class State {
    Waiting,    ///< not set up yet: the service did not answer, or refused
    Receiving,  ///< set up
    Silent,     ///< set up, but frames stay away longer than they should
  };

  /** @param queue  shared with the service's thread, which may still hold a frame when this link is gone */
  CameraLink(int camera, Request request, std::shared_ptr<ArrivalQueue> queue);
  ~CameraLink();
  CameraLink(const CameraLink&) = delete;
  CameraLink& operator=(const CameraLink&) = delete;

  /** Sets up, or tries to. @throw Failure when the detector does not know a class that was asked for */
  void connect();

  /** Takes note of a frame; false when it must not be shown, since what was asked for may be missing in it. */
  bool accept(const Arrival& arrival);

  /** Takes note of the time; tries again what failed. */
  void tick(Clock::time_point now);

  int camera() const { return camera_; }
  State state() const { return state_; }
  /** Since when no frame has come; from the set-up on if there was none. */
  Clock::time_point silentSince() const { return lastSign_; }
  /** What is wrong, and what is done about it; empty while frames come. */
  std::string problem(Clock::time_point now) const;
  bool serviceAnswers() const { return serviceAnswers_; }
  /** Whether there were frames at all. */
  bool hasReceived() const { return received_; }
  int interruptions() const { return interruptions_; }
  Clock::duration lastInterruption() const { return lastInterruption_; }

 private:
  /** Finds out whether the service answers. */
  void ask(Clock::time_point now);
  Clock::duration longestNormalSilence() const;
  void learnInterval(Clock::duration interval);

  const int camera_;
  const Request request_;
  const std::shared_ptr<ArrivalQueue> queue_;
  State state_ = State::Waiting;
  bool serviceAnswers_ = false;
  bool received_ = false;
  int interruptions_ = 0;
  Clock::duration lastInterruption_{0};
  std::uint64_t setups_ = 0;
  /** Frames of set-ups before this one may lack the detections of classes that the library forgot. */
  std::uint64_t firstTrustedSetup_ = 0;
  Clock::time_point lastSign_;
  Clock::time_point lastTry_;
  Clock::duration usualInterval_{0};
};

}  // namespace tarn::command

#endif
