// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/segments.h"

#include "recording/recording.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace vod::recording {
namespace {

constexpr std::string_view prefix = "segment-";
constexpr std::size_t digits = 6;

}  // namespace

std::string segmentName(std::uint64_t number) {
  const std::string text = std::to_string(number);
  return std::string(prefix) + std::string(digits - std::min(digits, text.size()), '0') + text;
}

std::optional<std::uint64_t> segmentNumber(const std::string& name) {
  std::uint64_t number = 0;
  const char* const end = name.data() + name.size();
  if (name.compare(0, prefix.size(), prefix) != 0 ||
      std::from_chars(name.data() + prefix.size(), end, number).ptr != end || segmentName(number) != name) {
    return std::nullopt;
  }
  return number;
}

std::vector<std::filesystem::path> partsOf(const std::filesystem::path& folder) {
  std::error_code ignored;  // what cannot be listed is opened as a plain recording, which reports the reason
  if (std::filesystem::exists(folder / scenesFileName, ignored)) {
    return {folder};
  }
  std::vector<std::pair<std::uint64_t, std::filesystem::path>> segments;
  for (std::filesystem::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
       entry.increment(ignored)) {
    if (const auto number = segmentNumber(entry->path().filename().string())) {
      segments.emplace_back(*number, entry->path());
    }
  }
  std::sort(segments.begin(), segments.end());
  std::vector<std::filesystem::path> parts;
  parts.reserve(segments.size());
  for (auto& segment : segments) {
    parts.push_back(std::move(segment.second));
  }
  return parts.empty() ? std::vector{folder} : parts;
}

}  // namespace vod::recording
