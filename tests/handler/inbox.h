// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_HANDLER_INBOX_H
#define TARNVOD_TESTS_HANDLER_INBOX_H

#include <tarnvod/handler.h>

#include <memory>
#include <mutex>
#include <vector>

namespace tarn::test {

struct Received {
  int camera;
  VOD::DetectionData frame;
};

/** Keeps the frames that its callback receives. Its callbacks stay usable when it is gone. */
class Inbox {
 public:
  VOD::DetectionCallback callback() const {
    return [state = state_](std::unique_ptr<VOD::DetectionData> frame, int camera) {
      const std::lock_guard lock(state->mutex);
      state->received.push_back({camera, std::move(*frame)});
    };
  }

  std::vector<Received> received() const {
    const std::lock_guard lock(state_->mutex);
    return state_->received;
  }

  std::size_t size() const { return received().size(); }

  /** The last frame; fails the test by an exception when there is none. */
  VOD::DetectionData last() const { return received().at(size() - 1).frame; }

  void clear() {
    const std::lock_guard lock(state_->mutex);
    state_->received.clear();
  }

 private:
  struct State {
    std::mutex mutex;
    std::vector<Received> received;
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace tarn::test

#endif
