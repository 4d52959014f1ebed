// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETAIL_CALLBACK_SCOPE_H
#define TARNVOD_DETAIL_CALLBACK_SCOPE_H

#include <utility>

namespace tarn::VOD::detail {

/** Marks that the calling thread is inside of a callback of a camera, for as long as the object lives. */
class CallbackScope {
 public:
  explicit CallbackScope(const void* camera) : camera_(camera), outer_(std::exchange(innermost(), this)) {}
  ~CallbackScope() { innermost() = outer_; }
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;

  /** How many callbacks of this camera the calling thread is inside of. */
  static int depth(const void* camera) {
    int depth = 0;
    for (const CallbackScope* scope = innermost(); scope != nullptr; scope = scope->outer_) {
      depth += scope->camera_ == camera ? 1 : 0;
    }
    return depth;
  }

  /** Whether the calling thread is inside of a callback of any camera. */
  static bool isInsideAny() { return innermost() != nullptr; }

 private:
  static CallbackScope*& innermost() {
    thread_local CallbackScope* scope = nullptr;
    return scope;
  }

  const void* const camera_;
  CallbackScope* const outer_;
};

}  // namespace tarn::VOD::detail

#endif
