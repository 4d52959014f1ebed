// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "viewer/background.h"

#include "base/errors.h"
#include "base/files.h"
#include "drawing/svg.h"

#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::uintmax_t largestFile = 16U << 20U;

/** The camera of `CAMERA=FILE`; nothing when the argument is a file only. */
std::optional<int> cameraOf(const std::string& argument) {
  int camera = 0;
  const char* const end = argument.data() + argument.size();
  const auto [last, error] = std::from_chars(argument.data(), end, camera);
  return error == std::errc{} && last != end && *last == '=' ? std::make_optional(camera) : std::nullopt;
}

}  // namespace

Background readBackground(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error) || std::filesystem::file_size(file, error) > largestFile) {
    throw Failure(file.string() + ": not a file of up to 16 MiB");
  }
  std::string bytes = readFile(file.string(), "a PNG or JPEG image");
  std::string type = svg::mediaTypeOf(file.string(), bytes);
  return {std::move(type), std::make_shared<const std::string>(std::move(bytes))};
}

std::map<int, Background> readBackgrounds(const std::vector<std::string>& arguments, const std::set<int>& cameras) {
  std::map<int, Background> backgrounds;
  for (const std::string& argument : arguments) {
    const auto named = cameraOf(argument);
    if (!named && cameras.size() != 1) {
      throw UsageError("--background: with several cameras, each file needs its camera: CAMERA=FILE");
    }
    const int camera = named.value_or(*cameras.begin());
    if (cameras.count(camera) == 0) {
      throw UsageError("--background: camera " + std::to_string(camera) + " is not viewed");
    }
    backgrounds[camera] = readBackground(named ? argument.substr(argument.find('=') + 1) : argument);
  }
  return backgrounds;
}

}  // namespace tarn::command
