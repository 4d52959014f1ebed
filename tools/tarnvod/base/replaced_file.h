// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_REPLACED_FILE_H
#define TARNVOD_COMMAND_REPLACED_FILE_H

#include <string>
#include <string_view>

namespace tarn::command {

/**
 * A file that takes its name only when it is complete: until then it stands under another name in the same folder, and a
 * file that had the name before keeps it. What is not committed is removed. A device or a pipe is written to directly.
 */
class ReplacedFile {
 public:
  /** @throw Failure  when the file cannot be made */
  explicit ReplacedFile(std::string path);
  ~ReplacedFile();
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  /** Where the bytes go for now: for libraries that write files themselves. */
  const std::string& temporaryPath() const { return temporary_; }

  /** Adds bytes, through a buffer. @throw Failure that names the file */
  void write(std::string_view bytes);

  /** Writes out what is left and gives the file its name. @throw Failure that names the file */
  void commit();

 private:
  void flush();
  [[noreturn]] void fail(int error) const;

  const std::string path_;
  std::string temporary_;
  std::string buffer_;
  int descriptor_ = -1;
  bool isDone_ = false;
};

}  // namespace tarn::command

#endif
