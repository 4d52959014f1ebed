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

/** The faults that are planned, and how many calls each has seen. Thread-safe. */
class FaultPlan {
 public:
  int add(const Fault& fault);
  void remove(int number);
  void clear();

  /**
   * Lets what is planned for this call happen, without a lock held.
   *
   * @return the code with which the call has to end, if it must not do its work
   */
  std::optional<int> meet(Function function, const std::function<void()>& bringServiceUp);

 private:
  struct Planned {
    int number;
    Fault fault;
    int calls = 0;
  };
  std::vector<Fault> count(Function function);

  Mutex mutex_;
  std::vector<Planned> planned_ TARNVOD_GUARDED_BY(mutex_);
  int lastNumber_ TARNVOD_GUARDED_BY(mutex_) = 0;
};

}  // namespace vod::host

#endif
