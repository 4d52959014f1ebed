// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_LIVE_VIEW_H
#define TARNVOD_COMMAND_LIVE_VIEW_H

#include "cameras/camera_group.h"
#include "http/event_hub.h"
#include "metrics/liveness.h"
#include "viewer/kept_frames.h"
#include "viewer/live_history.h"

#include <deque>
#include <map>
#include <string>

namespace tarn::command {

/** Gives what cameras see to browsers, as it comes. */
class LiveView {
 public:
  /** @throw Failure when the service has no such camera */
  LiveView(const std::set<int>& cameras, const VOD::CameraRequest& request, EventHub& hub, KeptFrames& kept)
      : group_(cameras, request), hub_(hub), kept_(kept) {}

  /** Sets the cameras up, or tries to. @throw Failure when a detector does not know a class that was asked for */
  void connect() { group_.connect(); }

  /** Takes in frames until the command shall end. */
  void run(Liveness& liveness);

  /** What Prometheus reads. Thread-safe once `connect` has returned. */
  std::string metrics() const;

 private:
  /** A line about a camera that went away or came back. */
  struct StatusChange {
    Clock::time_point at;
    std::string text;
  };

  void show(const Arrival& arrival);
  void reportStatusChanges(Clock::time_point now);
  void publishState(Clock::time_point now);
  Json state(Clock::time_point now) const;
  /** What joining pages are sent of the last minute. */
  Json past(Clock::time_point now);

  CameraGroup group_;
  EventHub& hub_;
  KeptFrames& kept_;
  std::deque<StatusChange> statusChanges_;
  std::map<int, LiveHistory> histories_;  ///< by camera
  Clock::time_point publishedAt_;
};

}  // namespace tarn::command

#endif
