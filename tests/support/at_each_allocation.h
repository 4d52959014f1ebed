// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_AT_EACH_ALLOCATION_H
#define TARNVOD_TESTS_SUPPORT_AT_EACH_ALLOCATION_H

#include "support/allocation_failure.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>

namespace tarn::test {

/**
 * Tries a call again and again, each time with the next allocation failing, until none fails; after each failure looks
 * whether all is well. The call may get through without the allocation: `std::stable_sort` does.
 */
inline void atEachAllocation(
    const std::function<void()>& call, const std::function<void()>& expectAllWell = [] {}) {
  std::size_t number = 0;
  bool failed = true;
  bool everThrew = false;
  while (failed) {
    ++number;
    bool threw = false;
    {
      const AllocationFailure failure(number);
      try {
        call();
      } catch (const std::bad_alloc&) {
        threw = true;
      }
      failed = failure.happened();
    }
    EXPECT_TRUE(failed || !threw) << "allocation " << number;
    everThrew = everThrew || threw;
    expectAllWell();
  }
  EXPECT_TRUE(everThrew) << "nothing was allocated at all";
}

}  // namespace tarn::test

#endif
