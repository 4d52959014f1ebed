// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "service/delivery_thread.h"

#include <utility>

namespace vod::host {

DeliveryThread::DeliveryThread() : thread_([this] { loop(); }) {}

DeliveryThread::~DeliveryThread() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    changed_.notify_all();
  }
  thread_.join();
}

void DeliveryThread::post(Task task) {
  const std::lock_guard lock(mutex_);
  tasks_.push_back(std::move(task));
  ++posted_;
  changed_.notify_all();
}

bool DeliveryThread::drain(std::chrono::milliseconds limit) {
  std::unique_lock lock(mutex_);
  const std::uint64_t last = posted_;
  return changed_.wait_for(lock, limit, [&] { return done_ >= last || ending_; });
}

void DeliveryThread::run(const Task& task) {
  std::unique_lock lock(mutex_);
  tasks_.push_back(task);
  const std::uint64_t mine = ++posted_;
  changed_.notify_all();
  changed_.wait(lock, [&] { return done_ >= mine; });
}

void DeliveryThread::loop() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ending_ || !tasks_.empty(); });
    if (ending_) {
      return;
    }
    const Task task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    lock.lock();
    ++done_;
    changed_.notify_all();
  }
}

}  // namespace vod::host
