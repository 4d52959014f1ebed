// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * Server-sent events on their way to browsers. Whoever publishes never waits: each browser has a bounded queue of its
 * own, and one that does not keep up loses the oldest frames.
 */

#ifndef TARNVOD_COMMAND_EVENT_HUB_H
#define TARNVOD_COMMAND_EVENT_HUB_H

#include "records/json.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {

/** An event as it is written, shared by all browsers. */
using EventText = std::shared_ptr<const std::string>;

EventText makeEvent(const std::string& name, const Json& data);

/** What one browser has still to be sent. Its functions are thread-safe. */
class EventStream {
 public:
  explicit EventStream(std::size_t capacity) : capacity_(capacity) {}

  /** Adds a frame; the oldest goes when there is no room. */
  void pushFrame(EventText frame);
  /** Replaces a state that was not sent yet. */
  void setState(EventText state);
  /** From now on there is nothing more to be sent. */
  void close();

  /**
   * Waits until there is something to be sent and takes all of it: how many frames were dropped, when that has changed,
   * as an event `dropped`; the state; the frames. Nothing when the stream was closed.
   */
  std::optional<std::string> take();

 private:
  const std::size_t capacity_;
  std::mutex mutex_;
  std::condition_variable changed_;

  // Guarded by the mutex.
  std::deque<EventText> frames_;
  EventText state_;
  std::uint64_t dropped_ = 0;
  std::uint64_t droppedTold_ = 0;
  bool closed_ = false;
};

/** Gives events to every browser that looks. Its functions are thread-safe. */
class EventHub {
 public:
  static constexpr std::size_t mostBrowsers = 8;
  /** Some seconds of a few cameras' frames. */
  static constexpr std::size_t framesPerBrowser = 64;

  /** A stream for one more browser, which has joined until it lets go of it; null when there are too many. */
  std::shared_ptr<EventStream> join();
  void publishFrame(const EventText& frame);
  /** Also for those who join later. */
  void publishState(const EventText& state);
  /** Ends all streams, and those of whoever joins later. */
  void close();

 private:
  /** Those that still look. */
  std::vector<std::shared_ptr<EventStream>> streams();

  std::mutex mutex_;

  // Guarded by the mutex.
  std::vector<std::weak_ptr<EventStream>> streams_;
  EventText state_;
  bool closed_ = false;
};

}  // namespace tarn::command

#endif
