// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/files.h"

#include "base/errors.h"
#include "base/replaced_file.h"
#include "base/text.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace tarn::command {

namespace {

constexpr std::uintmax_t greatestSize = 64'000'000;

void checkIsReadableWhole(const std::string& path, const std::string& whatItShouldBe) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    throw Failure(path + ": this is " + (is_directory(status) ? "a folder" : "not a regular file") + "; name " +
                  whatItShouldBe);
  }
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (!error && size > greatestSize) {
    throw Failure(path + ": " + byteSize(size) + " is more than the " + byteSize(greatestSize) + " allowed; name " +
                  whatItShouldBe);
  }
}

}  // namespace

std::string readFile(const std::string& path, const std::string& whatItShouldBe) {
  checkIsReadableWhole(path, whatItShouldBe);
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  // Copying nothing counts as a failure of the copy, not of the file.
  const bool isEmpty = file.is_open() && file.peek() == std::ifstream::traits_type::eof() && !file.bad();
  if (!isEmpty && !(bytes << file.rdbuf())) {
    throw Failure(path + ": " + std::generic_category().message(errno) + "; name " + whatItShouldBe);
  }
  return bytes.str();
}

void writeFile(const std::string& path, std::string_view contents) {
  ReplacedFile file(path);
  file.write(contents);
  file.commit();
}

}  // namespace tarn::command
