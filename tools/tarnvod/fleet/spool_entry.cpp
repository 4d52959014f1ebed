// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/spool_entry.h"

#include <sstream>

namespace tarn::command {

std::string encoded(const SpoolEntry& entry) {
  const FrameRange& frames = entry.frames;
  std::string bytes{static_cast<char>(entry.kind)};
  bytes += ' ' + std::to_string(frames.camera) + ' ' + frames.start + ' ' + std::to_string(frames.first) + ' ' +
           std::to_string(frames.last) + '\n';
  return bytes += entry.payload;
}

std::optional<SpoolEntry> decodedSpoolEntry(std::string_view bytes) {
  const std::size_t end = bytes.find('\n');
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  std::istringstream head{std::string(bytes.substr(0, end))};
  SpoolEntry entry;
  char kind = 0;
  FrameRange& frames = entry.frames;
  head >> kind >> frames.camera >> frames.start >> frames.first >> frames.last;
  const bool isFrame = kind == static_cast<char>(SpoolEntry::Kind::Frame);
  if (head.fail() || (!isFrame && kind != static_cast<char>(SpoolEntry::Kind::Dropped)) || frames.first > frames.last) {
    return std::nullopt;
  }
  entry.kind = isFrame ? SpoolEntry::Kind::Frame : SpoolEntry::Kind::Dropped;
  entry.payload = bytes.substr(end + 1);
  return entry;
}

}  // namespace tarn::command
