// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_SCHEDULE_PROCESS_RESOURCES_H
#define VOD_SCHEDULE_PROCESS_RESOURCES_H

#include <cstddef>

namespace vod::schedule {

/** What this process holds. */
struct ProcessResources {
  /** Bytes that have been allocated and not been freed; where the C library does not know, the resident memory. */
  std::size_t heap = 0;
  /** Bytes of memory that are resident. */
  std::size_t resident = 0;
  std::size_t threads = 0;
  std::size_t descriptors = 0;
};

ProcessResources processResources();

}  // namespace vod::schedule

#endif
