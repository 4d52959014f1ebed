// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REHEARSAL_PROCESS_RESOURCES_H
#define VOD_HOST_REHEARSAL_PROCESS_RESOURCES_H

#include <cstddef>

namespace vod::host {

/** What this process holds. */
struct ProcessResources {
  /** Bytes that have been allocated and not been freed; where the C library does not know, the resident memory. */
  std::size_t heap = 0;
  std::size_t threads = 0;
  std::size_t descriptors = 0;
};

ProcessResources processResources();

}  // namespace vod::host

#endif
