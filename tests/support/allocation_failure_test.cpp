// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/allocation_failure.h"

#include <gtest/gtest.h>

#include <future>
#include <new>
#include <thread>

namespace {

using tarn::test::AllocationFailure;
using tarn::test::Threads;

/** Calls through a volatile pointer are not optimised away. */
bool allocationSucceeds() {
  void* (*volatile allocate)(std::size_t) = operator new;
  try {
    operator delete(allocate(8));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

TEST(AnAllocationFailure, HitsOnlyTheAllocationWithItsNumber) {
  AllocationFailure failure(2);
  const bool first = allocationSucceeds();
  const bool happenedEarly = failure.happened();
  const bool second = allocationSucceeds();
  const bool third = allocationSucceeds();
  EXPECT_TRUE(first);
  EXPECT_FALSE(happenedEarly);
  EXPECT_FALSE(second);
  EXPECT_TRUE(third);
  EXPECT_TRUE(failure.happened());
}

TEST(AnAllocationFailure, OfTheCallingThreadSparesOthers) {
  bool succeeded = false;
  std::promise<void> armed;
  std::thread other([&succeeded, isArmed = armed.get_future()] {
    isArmed.wait();
    succeeded = allocationSucceeds();
  });
  {
    const AllocationFailure failure(1);
    armed.set_value();
    other.join();
  }
  EXPECT_TRUE(succeeded);
}

TEST(AnAllocationFailure, OfAllThreadsHitsOthers) {
  bool succeeded = true;
  {
    AllocationFailure failure(2, Threads::All);  // the first allocation is the thread's start
    std::thread([&] { succeeded = allocationSucceeds(); }).join();
  }
  EXPECT_FALSE(succeeded);
}

TEST(AnAllocationFailure, CountsOnly) {
  AllocationFailure failure(AllocationFailure::none);
  const bool succeeded = allocationSucceeds();
  const auto count = failure.count();
  EXPECT_TRUE(succeeded);
  EXPECT_EQ(count, 1U);
  EXPECT_FALSE(failure.happened());
}

}  // namespace
