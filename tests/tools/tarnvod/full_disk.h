// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_FULL_DISK_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_FULL_DISK_H

#include "process.h"

#include <string>
#include <vector>

namespace test {

/** Runs the command where no file can have more than so many blocks of 512 bytes, as on a disk that is full. */
inline Outcome runWithFilesUpTo(int blocks, const std::vector<std::string>& arguments,
                                const Environment& environment = {}) {
  const std::string script = "trap '' XFSZ; ulimit -f " + std::to_string(blocks) + "; exec \"$0\" \"$@\"";
  std::vector<std::string> words{"-c", script, command()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return Process("/bin/sh", words, environment).wait();
}

}  // namespace test

#endif
