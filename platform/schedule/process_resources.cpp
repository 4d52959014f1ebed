// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "schedule/process_resources.h"

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace vod::schedule {

namespace {

/** The number of entries of a folder; 0 if it cannot be read. */
std::size_t entriesOf(const char* folder) {
  std::error_code error;
  const std::filesystem::directory_iterator entries(folder, error);
  return error ? 0 : static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::size_t residentBytes() {
  std::ifstream file("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  file >> total >> resident;
  return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

std::size_t heapBytes() {
#if __GLIBC_PREREQ(2, 33)
  const struct mallinfo2 info = ::mallinfo2();
  const std::size_t used = info.uordblks + info.hblkhd;
  return used > 0 ? used : residentBytes();  // Another allocator has taken its place.
#else
  return residentBytes();
#endif
}

}  // namespace

ProcessResources processResources() {
  return {heapBytes(), residentBytes(), entriesOf("/proc/self/task"), entriesOf("/proc/self/fd")};
}

}  // namespace vod::schedule
