// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/replaced_file.h"

#include "base/errors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::size_t bufferSize = 1U << 16U;

bool isWrittenDirectly(const std::string& path) {
  std::error_code ignored;  // what cannot be looked at cannot be opened either, which is reported then
  const auto type = std::filesystem::status(path, ignored).type();
  return type != std::filesystem::file_type::regular && type != std::filesystem::file_type::not_found;
}

}  // namespace

ReplacedFile::ReplacedFile(std::string path) : path_(std::move(path)) {
  const bool isDirect = isWrittenDirectly(path_);
  temporary_ = isDirect ? path_ : path_ + ".partial-" + std::to_string(::getpid());
  constexpr mode_t permissions = 0666;
  descriptor_ = ::open(temporary_.c_str(), O_WRONLY | O_CLOEXEC | (isDirect ? 0 : O_CREAT | O_TRUNC), permissions);
  if (descriptor_ < 0) {
    fail(errno);
  }
  isDone_ = isDirect;
}

ReplacedFile::~ReplacedFile() {
  if (descriptor_ >= 0) {
    ::close(descriptor_);
  }
  if (!isDone_) {
    ::unlink(temporary_.c_str());
  }
}

void ReplacedFile::write(std::string_view bytes) {
  buffer_ += bytes;
  if (buffer_.size() >= bufferSize) {
    flush();
  }
}

void ReplacedFile::commit() {
  flush();
  const bool isRenamed = isDone_ || (::fsync(descriptor_) == 0 && std::rename(temporary_.c_str(), path_.c_str()) == 0);
  if (!isRenamed || ::close(std::exchange(descriptor_, -1)) != 0) {
    fail(errno);
  }
  isDone_ = true;
}

void ReplacedFile::flush() {
  std::string_view rest = buffer_;
  while (!rest.empty()) {
    const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) {
      fail(errno);
    }
    rest.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
  }
  buffer_.clear();
}

void ReplacedFile::fail(int error) const {
  throw Failure(path_ + ": " + std::generic_category().message(error));
}

}  // namespace tarn::command
