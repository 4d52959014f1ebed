// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FILE_LOCK_H
#define TARNVOD_COMMAND_FILE_LOCK_H

#include <filesystem>

namespace tarn::command {

/** A lock on a file, which ends with this object or with the process, however that ends. */
class FileLock {
 public:
  /** Makes the file if it does not exist. @throw Failure when another process has the lock or the file cannot be made */
  explicit FileLock(const std::filesystem::path& file);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  int descriptor_ = -1;
};

}  // namespace tarn::command

#endif
