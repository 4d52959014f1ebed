// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/session.h"

#include "recording/recording.h"
#include "recording/segments.h"

#include <charconv>
#include <map>
#include <optional>
#include <string_view>
#include <system_error>

namespace vod::recording {
namespace {

constexpr std::string_view prefix = "camera-";

std::optional<int> cameraNumber(const std::string& name) {
  int number = 0;
  const char* const end = name.data() + name.size();
  if (name.compare(0, prefix.size(), prefix) != 0 ||
      std::from_chars(name.data() + prefix.size(), end, number).ptr != end || cameraFolderName(number) != name) {
    return std::nullopt;
  }
  return number;
}

bool holdsRecording(const std::filesystem::path& folder) {
  std::error_code ignored;  // what cannot be looked at is opened as a recording, which reports the reason
  return std::filesystem::exists(folder / scenesFileName, ignored) || partsOf(folder) != std::vector{folder};
}

}  // namespace

std::string cameraFolderName(int camera) {
  return std::string(prefix) + std::to_string(camera);
}

std::vector<std::filesystem::path> camerasOf(const std::filesystem::path& folder) {
  std::map<int, std::filesystem::path> cameras;
  std::error_code error;  // what cannot be listed is opened as a recording, which reports the reason
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const auto number = cameraNumber(entry->path().filename().string());
    if (number && entry->is_directory(error)) {
      cameras.emplace(*number, entry->path());
    }
  }
  std::vector<std::filesystem::path> recordings;
  if (!cameras.empty() && !holdsRecording(folder)) {
    for (auto& camera : cameras) {
      recordings.push_back(std::move(camera.second));
    }
  }
  return recordings;
}

}  // namespace vod::recording
