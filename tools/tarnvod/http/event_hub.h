// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * Server-sent events on their way to browsers. Publishing never waits: each browser has a bounded queue of its own, and
 * one that does not keep up loses the oldest frames.
 */

#ifndef TARNVOD_COMMAND_EVENT_HUB_H
#define TARNVOD_COMMAND_EVENT_HUB_H

#include "base/lock.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::command {

/** An event in its text form, shared by all browsers. */
using EventText = std::shared_ptr<const std::string>;

/**
 * @param json          the event's data, on one line without a line end
 * @param milliseconds  of the command's clock, when the event was; the page measures delays with it
 */
EventText makeEvent(std::string_view name, std::string_view json, std::int64_t milliseconds);

/** How a connection sleeps while it has nothing to send. Both are called with the stream's lock held. */
struct EventWaiter {
  std::function<void()> sleep;  ///< on the thread that reads
  std::function<void()> wake;   ///< on any thread, once after each `sleep`
};

/** What is still to be sent to one browser. Its functions are thread-safe. */
class EventStream {
 public:
  /** The most that waits for a browser that does not keep up. */
  struct Capacity {
    std::size_t frames;
    std::size_t bytes;
  };

  EventStream(Capacity capacity, EventWaiter waiter) : capacity_(capacity), waiter_(std::move(waiter)) {}

  /** Adds a frame; the oldest ones are dropped where there is no room, and the frame itself where it never fits. */
  void pushFrame(EventText frame);
  /** Replaces a state that was not sent yet. */
  void setState(EventText state);
  /** Ends the stream; what was not sent yet is dropped. */
  void close();

  /**
   * Copies what comes next: the number of dropped frames, when it has changed, as an event `dropped`; the state; the
   * frames. Puts the reader to sleep when there is nothing.
   *
   * @return the number of bytes copied; 0 when the reader sleeps; nothing when the stream has ended
   */
  std::optional<std::size_t> read(char* buffer, std::size_t size);

 private:
  /** The next event; null when there is none. */
  EventText next() TARNVOD_REQUIRES(mutex_);
  void dropOldest() TARNVOD_REQUIRES(mutex_);
  void wake() TARNVOD_REQUIRES(mutex_);

  const Capacity capacity_;
  const EventWaiter waiter_;
  Mutex mutex_;
  std::deque<EventText> frames_ TARNVOD_GUARDED_BY(mutex_);
  std::size_t frameBytes_ TARNVOD_GUARDED_BY(mutex_) = 0;
  EventText state_ TARNVOD_GUARDED_BY(mutex_);
  EventText current_ TARNVOD_GUARDED_BY(mutex_);  ///< partly sent
  std::size_t currentSent_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::uint64_t dropped_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::uint64_t droppedReported_ TARNVOD_GUARDED_BY(mutex_) = 0;
  bool sleeping_ TARNVOD_GUARDED_BY(mutex_) = false;
  bool closed_ TARNVOD_GUARDED_BY(mutex_) = false;
};

/** Publishes events to every browser that listens. Its functions are thread-safe. */
class EventHub {
 public:
  static constexpr std::size_t mostBrowsers = 8;
  /** A few seconds of frames of a few cameras. */
  static constexpr EventStream::Capacity capacityPerBrowser{64, 2U << 20U};

  /** A stream for one more browser, which counts until the caller releases it; null when there are too many. */
  std::shared_ptr<EventStream> join(EventWaiter waiter);
  void publishFrame(const EventText& frame);
  /** Also for browsers that join later. */
  void publishState(const EventText& state);
  /** What was before, for browsers that join later only. */
  void setPast(const EventText& past);
  /** Ends all streams, and those of browsers that join later. */
  void close();

 private:
  /** Those that are still in use. */
  std::vector<std::shared_ptr<EventStream>> streams();

  Mutex mutex_;
  std::vector<std::weak_ptr<EventStream>> streams_ TARNVOD_GUARDED_BY(mutex_);
  EventText state_ TARNVOD_GUARDED_BY(mutex_);
  EventText past_ TARNVOD_GUARDED_BY(mutex_);
  bool closed_ TARNVOD_GUARDED_BY(mutex_) = false;
};

}  // namespace tarn::command

#endif
