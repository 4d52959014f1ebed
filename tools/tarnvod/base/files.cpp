// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/files.h"

#include "base/errors.h"

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

namespace tarn::command {

std::string readFile(const std::string& path, const std::string& whatItShouldBe) {
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
  std::ofstream file(path, std::ios::binary);
  file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  file.close();
  if (!file) {
    throw Failure(path + ": " + std::generic_category().message(errno));
  }
}

}  // namespace tarn::command
