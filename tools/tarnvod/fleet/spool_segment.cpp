// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/spool_segment.h"

#include <fcntl.h>
#include <google/protobuf/io/coded_stream.h>
#include <unistd.h>

namespace tarn::command {

SpoolSegment::SpoolSegment(const std::filesystem::path& folder, std::uint64_t number)
    : number_(number),
      index_(folder),
      scenes_(::open((folder / vod::recording::scenesFileName).c_str(), O_RDONLY | O_CLOEXEC)) {}

SpoolSegment::~SpoolSegment() {
  if (scenes_ >= 0) {
    ::close(scenes_);
  }
}

std::optional<std::string> SpoolSegment::read(std::uint64_t entry) {
  const auto place = index_.at(entry);
  if (!place || place->length > vod::recording::maximumMessageSize) {
    return std::nullopt;
  }
  const auto prefix = google::protobuf::io::CodedOutputStream::VarintSize32(place->length);
  std::string bytes(place->length, '\0');
  const auto start = static_cast<off_t>(place->offset + prefix);
  const ssize_t count = ::pread(scenes_, bytes.data(), bytes.size(), start);
  const bool isWhole = count == static_cast<ssize_t>(bytes.size());
  return isWhole && matches(*place, bytes) ? std::make_optional(std::move(bytes)) : std::nullopt;
}

}  // namespace tarn::command
