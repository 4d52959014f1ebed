// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * A queue between the service's threads and the application's, for applications that would rather fetch frames than be
 * called. All of it is in this header.
 */

#ifndef TARNVOD_FRAME_QUEUE_H
#define TARNVOD_FRAME_QUEUE_H

#include <tarnvod/handler.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tarn::VOD {

/** A frame that was waiting in a queue. */
struct QueuedFrame {
  std::unique_ptr<DetectionData> frame;  ///< the frame, which belongs to whoever fetched it; never null
  int camera = 0;                        ///< the camera that it is from, counted from 1
};

/** Which frame a queue gives up when a frame arrives for which it has no room. */
enum class FrameQueuePolicy {
  KeepLatest,  ///< at most one frame of each camera waits: a newer one takes its place, and its place in the line. When
               ///< more cameras than the capacity have one waiting, the one that has waited longest is dropped
  DropOldest,  ///< the frame that has waited longest, of whichever camera
  DropNewest,  ///< the frame that arrives
};

/** What became of a camera's frames. */
struct FrameCounts {
  std::uint64_t delivered = 0;  ///< fetched by the application
  std::uint64_t dropped = 0;    ///< given up: no room, replaced by a newer one, or the queue was closed
};

/**
 * A bounded queue of frames: cameras that are given its callback fill it, the application empties it.
 *
 * @code
 * tarn::VOD::FrameQueue queue{16, tarn::VOD::FrameQueuePolicy::DropOldest};
 * tarn::VOD::Camera entrance(1, {"human"}, queue.callback(1));
 * tarn::VOD::Camera street(2, {"car"}, queue.callback(2));
 * while (const std::optional<tarn::VOD::QueuedFrame> next = queue.pop()) {
 *   std::cout << "camera " << next->camera << ": " << *next->frame << '\n';
 * }
 * @endcode
 *
 * All functions are thread-safe; any number of threads may fetch, and each frame goes to one of them. None blocks on
 * the service. The service's thread never waits for room: it takes a lock that is only held to move one pointer in or
 * out (with `KeepLatest` also to look through the waiting frames), and what it drops is released without that lock. No
 * memory is requested for a frame, apart from the counts of a camera that was not seen before.
 *
 * Queue and subscriptions may end in either order. The callbacks share what they need and stay valid without the queue:
 * frames that arrive after `close` or after the queue's end are dropped. A queue does not end by itself when its
 * cameras are torn down; `close` it to wake those who wait. As with any object, no other thread may be inside of one of
 * its functions when it is destroyed: close it, wait for those threads, then destroy it.
 */
class FrameQueue {
 public:
  /** Room for a few cameras' frames while the application is busy for a moment. */
  static constexpr std::size_t defaultCapacity = 8;

  /**
   * Makes an empty, open queue. All its room is taken from memory now.
   *
   * @param capacity  the number of frames that may wait
   * @param policy    what to drop when there is no room
   * @throw std::invalid_argument  when the capacity is 0
   * @throw std::bad_alloc, std::length_error  when there is not so much memory
   */
  explicit FrameQueue(std::size_t capacity = defaultCapacity, FrameQueuePolicy policy = FrameQueuePolicy::DropOldest)
      : state_(std::make_shared<State>(capacity, policy)) {}

  FrameQueue(const FrameQueue&) = delete;
  FrameQueue& operator=(const FrameQueue&) = delete;

  /** Closes the queue and releases the frames that still wait. */
  ~FrameQueue() { state_->end(); }

  /**
   * A callback for `Handler::setup` that puts each frame into this queue. One may serve many cameras. It stays valid
   * when the queue is gone, and throws nothing: should memory run out for the counts of a new camera, its frame is
   * dropped uncounted.
   *
   * @throw std::bad_alloc  when memory runs out
   */
  DetectionCallback callback() const {
    return
        [state = state_](std::unique_ptr<DetectionData> frame, int camera) { state->push(std::move(frame), camera); };
  }

  /**
   * A callback for a `Camera`, with the number that its frames are to have in this queue; otherwise as above.
   *
   * @throw std::bad_alloc  when memory runs out
   */
  std::function<void(std::unique_ptr<DetectionData>)> callback(int camera) const {
    return [state = state_, camera](std::unique_ptr<DetectionData> frame) { state->push(std::move(frame), camera); };
  }

  /**
   * Waits for a frame and takes it out. May be called from a callback only if another thread fills this queue.
   *
   * @return the frame that has waited longest; nothing when the queue is closed and empty
   */
  std::optional<QueuedFrame> pop() {
    std::unique_lock lock(state_->mutex);
    state_->changed.wait(lock, [this] { return state_->isReady(); });
    return state_->take();
  }

  /**
   * Takes a frame out if one waits. May be called from a callback.
   *
   * @return the frame that has waited longest; nothing when none waits
   */
  std::optional<QueuedFrame> tryPop() {
    const std::lock_guard lock(state_->mutex);
    return state_->take();
  }

  /**
   * Waits for a frame for a limited time, and takes it out.
   *
   * @param duration  how long to wait at most; 0 or less does not wait, more than a year counts as a year
   * @return the frame that has waited longest; nothing when none came in time, or the queue is closed and empty
   */
  template <typename Rep, typename Period>
  std::optional<QueuedFrame> popFor(const std::chrono::duration<Rep, Period>& duration) {
    using Clock = std::chrono::steady_clock;
    // In floating point, because the longest duration of a type does not fit into the clock's own.
    using Seconds = std::chrono::duration<double>;
    const Seconds bounded = std::clamp<Seconds>(duration, Seconds::zero(), std::chrono::hours(24 * 365));
    const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(bounded);

    std::unique_lock lock(state_->mutex);
    state_->changed.wait_until(lock, deadline, [this] { return state_->isReady(); });
    return state_->take();
  }

  /**
   * Ends the queue: from now on frames that arrive are dropped, those that wait can still be fetched, and whoever waits
   * for more is woken. May be called from a callback, and again.
   */
  void close() { state_->close(); }

  /** Whether the queue was closed. */
  bool isClosed() const {
    const std::lock_guard lock(state_->mutex);
    return state_->closed;
  }

  /** The number of frames that wait. */
  std::size_t size() const {
    const std::lock_guard lock(state_->mutex);
    return state_->size;
  }

  /**
   * What became of the frames so far, by camera; cameras without a frame are not there. Frames that still wait are in
   * neither count.
   */
  std::map<int, FrameCounts> counts() const {
    const std::lock_guard lock(state_->mutex);
    return state_->counts;
  }

 private:
  /** What queue and callbacks share. The frames that wait are a ring: `size` slots from `first` on. */
  struct State {
    State(std::size_t capacity, FrameQueuePolicy rule) : policy(rule), slots(checked(capacity)) {}

    static std::size_t checked(std::size_t capacity) {
      if (capacity == 0) {
        throw std::invalid_argument("The capacity of a frame queue must be at least 1.");
      }
      return capacity;
    }

    void push(std::unique_ptr<DetectionData> frame, int camera) noexcept {
      {
        const std::lock_guard lock(mutex);
        FrameCounts* const count = findCounts(camera);
        if (count == nullptr) {
          return;
        }
        frame = store(std::move(frame), camera, *count);
      }
      changed.notify_one();  // without the lock, so that whoever wakes need not wait for it
      // Here `frame` is what had to go: the service's thread releases it while the lock is free.
    }

    FrameCounts* findCounts(int camera) noexcept {
      try {
        return &counts[camera];
      } catch (const std::bad_alloc&) {
        return nullptr;  // the platform, which is written in C, could do nothing with an exception
      }
    }

    /** Puts the frame in and gives back the frame that had to go instead, if any: possibly the same. */
    std::unique_ptr<DetectionData> store(std::unique_ptr<DetectionData> frame, int camera,
                                         FrameCounts& count) noexcept {
      const bool isFull = size == slots.size();
      if (closed || (isFull && policy == FrameQueuePolicy::DropNewest)) {
        ++count.dropped;
        return frame;
      }
      if (QueuedFrame* const older = policy == FrameQueuePolicy::KeepLatest ? findWaiting(camera) : nullptr) {
        ++count.dropped;
        return std::exchange(older->frame, std::move(frame));
      }
      QueuedFrame oldest;
      if (isFull) {
        oldest = takeFirst();
        ++counts.find(oldest.camera)->second.dropped;
      }
      slots[(first + size++) % slots.size()] = {std::move(frame), camera};
      return std::move(oldest.frame);
    }

    QueuedFrame* findWaiting(int camera) noexcept {
      for (std::size_t place = 0; place < size; ++place) {
        QueuedFrame& waiting = slots[(first + place) % slots.size()];
        if (waiting.camera == camera) {
          return &waiting;
        }
      }
      return nullptr;
    }

    bool isReady() const noexcept { return size > 0 || closed; }

    std::optional<QueuedFrame> take() noexcept {
      if (size == 0) {
        return std::nullopt;
      }
      std::optional<QueuedFrame> taken = takeFirst();
      ++counts.find(taken->camera)->second.delivered;
      return taken;
    }

    QueuedFrame takeFirst() noexcept {
      QueuedFrame taken = std::move(slots[first]);
      first = (first + 1) % slots.size();
      --size;
      return taken;
    }

    void close() {
      {
        const std::lock_guard lock(mutex);
        closed = true;
      }
      changed.notify_all();
    }

    /** Closes, and releases what waits although callbacks may keep this state for long. */
    void end() {
      close();
      std::vector<QueuedFrame> rest;
      const std::lock_guard lock(mutex);
      rest.swap(slots);
      size = 0;
    }

    const FrameQueuePolicy policy;
    std::mutex mutex;
    std::condition_variable changed;  ///< a frame arrived, or the queue was closed

    // Guarded by the mutex.
    std::vector<QueuedFrame> slots;
    std::size_t first = 0;
    std::size_t size = 0;
    bool closed = false;
    std::map<int, FrameCounts> counts;
  };

  const std::shared_ptr<State> state_;
};

}  // namespace tarn::VOD

#endif
