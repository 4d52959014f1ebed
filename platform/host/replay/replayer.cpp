// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "replay/replayer.h"

#include <utility>

namespace vod::host {

Replayer::Replayer(Deliver deliver, Finish finish)
    : deliver_(std::move(deliver)), finish_(std::move(finish)), thread_([this] { loop(); }) {}

Replayer::~Replayer() {
  {
    const Lock lock(mutex_);
    ending_ = true;
    replay_ = 0;
    changed_.notify_all();
  }
  thread_.join();
}

void Replayer::start(int replay, std::unique_ptr<Playback> playback) {
  const Lock lock(mutex_);
  next_ = std::move(playback);
  replay_ = replay;
  ended_ = false;
  changed_.notify_all();
}

void Replayer::stop() {
  const Lock lock(mutex_);
  next_.reset();
  replay_ = 0;
  changed_.notify_all();
}

bool Replayer::waitForEnd(std::chrono::milliseconds limit) {
  Lock lock(mutex_);
  return changed_.wait_for(lock.forWaiting(), limit, [this]() TARNVOD_REQUIRES(mutex_) { return ended_; });
}

bool Replayer::isAtEnd() const {
  const Lock lock(mutex_);
  return ended_;
}

void Replayer::loop() {
  Lock lock(mutex_);
  while (true) {
    changed_.wait(lock.forWaiting(), [this]() TARNVOD_REQUIRES(mutex_) { return ending_ || next_ != nullptr; });
    if (ending_) {
      return;
    }
    const int replay = replay_;
    const std::unique_ptr<Playback> playback = std::move(next_);
    lock.unlock();
    play(replay, *playback);
    lock.lock();
    if (replay_ == replay) {
      ended_ = true;
      changed_.notify_all();
    }
  }
}

void Replayer::play(int replay, Playback& playback) {
  const auto start = std::chrono::steady_clock::now();
  while (const auto item = playback.next()) {
    if (!waitUntilDue(replay, start + item->due.value_or(std::chrono::microseconds(0)))) {
      return;
    }
    deliver_(replay, *item);
  }
  finish_();
}

bool Replayer::waitUntilDue(int replay, std::chrono::steady_clock::time_point due) {
  Lock lock(mutex_);
  return !changed_.wait_until(lock.forWaiting(), due, [&]() TARNVOD_REQUIRES(mutex_) { return replay_ != replay; });
}

}  // namespace vod::host
