// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_HANDLER_ON_RELEASE_H
#define TARNVOD_TESTS_HANDLER_ON_RELEASE_H

#include <functional>
#include <memory>
#include <utility>

namespace tarn::test {

/** Something that a callable captures; the action runs when the last copy is destroyed. */
inline std::shared_ptr<void> onRelease(std::function<void()> action) {
  return {nullptr, [action = std::move(action)](void*) { action(); }};
}

}  // namespace tarn::test

#endif
