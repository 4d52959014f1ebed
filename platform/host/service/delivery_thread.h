// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_SERVICE_DELIVERY_THREAD_H
#define VOD_HOST_SERVICE_DELIVERY_THREAD_H

#include "lock.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <thread>

namespace vod::host {

/** A thread of the platform: runs tasks, which call callbacks, one after the other. */
class DeliveryThread {
 public:
  using Task = std::function<void()>;

  DeliveryThread();
  /** Waits for the running task and discards those that have not started. Must not be called on the thread itself. */
  ~DeliveryThread();
  DeliveryThread(const DeliveryThread&) = delete;
  DeliveryThread& operator=(const DeliveryThread&) = delete;

  void post(Task task);
  /** As `post`, after waiting until fewer tasks than the limit have not started. */
  void postWithin(std::size_t limit, Task task);
  /** The number of tasks that have not started. */
  std::size_t waiting();
  /**
   * Waits until every task posted before the call has returned or has been discarded.
   *
   * @return false when the limit has passed first
   */
  bool drain(std::chrono::milliseconds limit);
  /** Runs a task on the thread, after those already posted, and returns when it has. The thread must outlive the call.
   */
  void run(const Task& task);

 private:
  void loop();

  Mutex mutex_;
  std::condition_variable changed_;
  std::deque<Task> tasks_ TARNVOD_GUARDED_BY(mutex_);
  std::uint64_t posted_ TARNVOD_GUARDED_BY(mutex_) = 0;
  std::uint64_t done_ TARNVOD_GUARDED_BY(mutex_) = 0;
  bool ending_ TARNVOD_GUARDED_BY(mutex_) = false;
  // Last, so that it starts when all other members are initialised.
  std::thread thread_;
};

}  // namespace vod::host

#endif
