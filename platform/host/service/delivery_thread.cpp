// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "service/delivery_thread.h"

#include <utility>

namespace vod::host {

DeliveryThread::DeliveryThread() : thread_([this] { loop(); }) {}

DeliveryThread::~DeliveryThread() {
  {
    const Lock lock(mutex_);
    ending_ = true;
    changed_.notify_all();
  }
  thread_.join();
}

void DeliveryThread::post(Task task) {
  const Lock lock(mutex_);
  tasks_.push_back(std::move(task));
  ++posted_;
  changed_.notify_all();
}

void DeliveryThread::postWithin(std::size_t limit, Task task) {
  Lock lock(mutex_);
  changed_.wait(lock.forWaiting(), [&]() TARNVOD_REQUIRES(mutex_) { return tasks_.size() < limit || ending_; });
  tasks_.push_back(std::move(task));
  ++posted_;
  changed_.notify_all();
}

std::size_t DeliveryThread::waiting() {
  const Lock lock(mutex_);
  return tasks_.size();
}

bool DeliveryThread::drain(std::chrono::milliseconds limit) {
  Lock lock(mutex_);
  const std::uint64_t last = posted_;
  return changed_.wait_for(lock.forWaiting(), limit,
                           [&]() TARNVOD_REQUIRES(mutex_) { return done_ >= last || ending_; });
}

void DeliveryThread::run(const Task& task) {
  Lock lock(mutex_);
  tasks_.push_back(task);
  const std::uint64_t mine = ++posted_;
  changed_.notify_all();
  changed_.wait(lock.forWaiting(), [&]() TARNVOD_REQUIRES(mutex_) { return done_ >= mine; });
}

void DeliveryThread::loop() {
  Lock lock(mutex_);
  while (true) {
    changed_.wait(lock.forWaiting(), [this]() TARNVOD_REQUIRES(mutex_) { return ending_ || !tasks_.empty(); });
    if (ending_) {
      return;
    }
    const Task task = std::move(tasks_.front());
    tasks_.pop_front();
    changed_.notify_all();  // there is room for another one
    lock.unlock();
    task();
    lock.lock();
    ++done_;
    changed_.notify_all();
  }
}

}  // namespace vod::host
