// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/spool_folder.h"

#include "base/errors.h"

#include <recording/recording.h>
#include <recording/segments.h>

#include <system_error>

namespace tarn::command {

namespace fs = std::filesystem;

fs::path createdSpoolFolder(fs::path folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    throw Failure(folder.string() + ": " + error.message());
  }
  return folder;
}

fs::path segmentFolder(const fs::path& folder, std::uint64_t segment) {
  return folder / vod::recording::segmentName(segment);
}

fs::path temporarySegmentFolder(const fs::path& folder) {
  return folder / ".segment-in-work";
}

void removeSegment(const fs::path& folder, std::uint64_t segment) {
  const fs::path name = segmentFolder(folder, segment);
  const fs::path temporary = temporarySegmentFolder(folder);
  std::error_code error;
  fs::remove_all(temporary, error);
  fs::rename(name, temporary, error);
  fs::remove_all(error ? name : temporary, error);
  if (error) {
    throw vod::recording::RecordingError(name.string() + ": " + error.message());
  }
}

std::uint64_t bytesIn(const fs::path& segment) {
  std::uint64_t bytes = 0;
  for (const auto& file : fs::directory_iterator(segment)) {
    bytes += file.file_size();
  }
  return bytes;
}

}  // namespace tarn::command
