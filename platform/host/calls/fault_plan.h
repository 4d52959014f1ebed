// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_CALLS_FAULT_PLAN_H
#define VOD_HOST_CALLS_FAULT_PLAN_H

#include "lock.h"

#include <vod_host.h>

#include <functional>
#include <optional>
#include <vector>

namespace vod::host {

/** The planned faults, and the number of calls that each has counted. Thread-safe. */
class FaultPlan {
 public:
  int add(const Fault& fault);
  void remove(int number);
  void clear();

  /**
   * Applies the faults that are planned for this call, with no lock held.
   *
   * @return the code that the call returns instead of doing its work, if any
   */
  std::optional<int> apply(Function function, const std::function<void()>& bringServiceUp);

 private:
  struct Planned {
    int number;
    Fault fault;
    int calls = 0;
  };
  std::vector<Fault> countCall(Function function);

  Mutex mutex_;
  std::vector<Planned> planned_ TARNVOD_GUARDED_BY(mutex_);
  int lastNumber_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace vod::host

#endif
