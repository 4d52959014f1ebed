// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/file_lock.h"

#include "base/errors.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tarn::command {

FileLock::FileLock(const std::filesystem::path& file) {
  constexpr mode_t permissions = 0666;
  descriptor_ = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, permissions);
  if (descriptor_ < 0) {
    throw Failure(file.string() + ": " + std::generic_category().message(errno));
  }
  if (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    ::close(descriptor_);
    throw Failure(file.parent_path().string() + ": another process uses this folder");
  }
}

FileLock::~FileLock() {
  ::close(descriptor_);
}

}  // namespace tarn::command
