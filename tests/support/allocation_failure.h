// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_ALLOCATION_FAILURE_H
#define TARNVOD_TESTS_SUPPORT_ALLOCATION_FAILURE_H

#include <cstddef>

namespace tarn::test {

/** Whose allocations are meant. */
enum class Threads { Calling, All };

/**
 * Counts the allocations of a stretch of code and makes one of them throw `std::bad_alloc`. The program replaces
 * `operator new`; allocations of `malloc` are not seen. One object at a time:
 *
 * @code
 * for (std::size_t number = 1;; ++number) {
 *   AllocationFailure failure(number);
 *   tryIt();
 *   if (!failure.happened()) break;
 * }
 * @endcode
 *
 * Assertions allocate too, so keep them out of its life.
 */
class AllocationFailure {
 public:
  /** Only counts. */
  static constexpr std::size_t none = 0;

  /** Lets the allocation with this number, counted from 1 and from now on, fail; those before and after it succeed. */
  explicit AllocationFailure(std::size_t number, Threads threads = Threads::Calling);
  ~AllocationFailure();
  AllocationFailure(const AllocationFailure&) = delete;
  AllocationFailure& operator=(const AllocationFailure&) = delete;

  /** How many allocations were tried since this object was made. */
  std::size_t count() const;

  /** Whether the failure has happened. */
  bool happened() const { return number_ != none && count() >= number_; }

  /** Leaves out what the calling thread allocates until `resume`: for code that is not under test. */
  static void pause();
  static void resume();

 private:
  std::size_t number_;
};

}  // namespace tarn::test

#endif
