// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_CAMPAIGN_ARRIVALS_H
#define TARNVOD_TESTS_ENDURANCE_CAMPAIGN_ARRIVALS_H

#include "endurance/campaign/registry_model.h"

#include <tarnvod/handler.h>

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace tarn::test {

/**
 * The frames that the world's callables received, each with the number of its callable. What the next one to be called
 * shall do once it has noted its frame can be set before: call the handler, stand at a gate, throw.
 */
class Arrivals {
 public:
  /** A new callable, and its number. */
  std::pair<int, VOD::DetectionCallback> makeCallback() {
    const int number = ++lastCallback_;
    return {number, [state = state_, number](std::unique_ptr<VOD::DetectionData> frame, int camera) {
              const auto action = state->note({number, camera, std::move(*frame)});
              if (action) {
                action();
              }
            }};
  }

  void nextOneDoes(std::function<void()> action) {
    const std::lock_guard lock(state_->mutex);
    state_->next = std::move(action);
  }

  /** What has arrived since this was last asked for. */
  std::vector<ExpectedFrame> take() {
    const std::lock_guard lock(state_->mutex);
    return std::exchange(state_->frames, {});
  }

 private:
  struct State {
    std::function<void()> note(ExpectedFrame frame) {
      const std::lock_guard lock(mutex);
      frames.push_back(std::move(frame));
      return std::exchange(next, nullptr);
    }

    std::mutex mutex;
    std::vector<ExpectedFrame> frames;
    std::function<void()> next;
  };

  int lastCallback_ = noCallback;
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace tarn::test

#endif
