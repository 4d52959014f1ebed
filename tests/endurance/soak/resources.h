// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_ENDURANCE_SOAK_RESOURCES_H
#define TARNVOD_TESTS_ENDURANCE_SOAK_RESOURCES_H

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>

namespace tarn::test {

/** What this process holds of the system. */
struct Resources {
  std::int64_t residentKilobytes = 0;
  std::int64_t descriptors = 0;
  std::int64_t threads = 0;

  static Resources now() {
    namespace fs = std::filesystem;
    std::int64_t pages = 0;
    std::int64_t residentPages = 0;
    std::ifstream("/proc/self/statm") >> pages >> residentPages;
    const auto entries = [](const char* folder) {
      return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    };
    return {residentPages * ::sysconf(_SC_PAGESIZE) / 1024, entries("/proc/self/fd"), entries("/proc/self/task")};
  }
};

inline std::ostream& operator<<(std::ostream& out, const Resources& resources) {
  return out << resources.residentKilobytes << " kB resident, " << resources.descriptors << " descriptors, "
             << resources.threads << " threads";
}

}  // namespace tarn::test

#endif
