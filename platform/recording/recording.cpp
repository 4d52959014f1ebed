// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/recording.h"

#include "recording/segments.h"
#include "recording/session.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <vector>

namespace vod::recording {

std::string toString(const Damage& damage) {
  return damage.file + ": offset " + std::to_string(damage.offset) + ": " + damage.what;
}

std::ostream& operator<<(std::ostream& out, const Damage& damage) {
  return out << toString(damage);
}

namespace {

/** Several recordings are not one: without this, a missing file would be all that is reported. */
void refuseSession(const std::filesystem::path& folder) {
  const std::vector<std::filesystem::path> cameras = camerasOf(folder);
  if (!cameras.empty()) {
    throw RecordingError(folder.string() + ": holds the recordings of several cameras; name one of them, such as " +
                         cameras.front().string());
  }
}

}  // namespace

std::ifstream openFile(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(file, error);
  if (error == std::errc::no_such_file_or_directory) {
    refuseSession(file.parent_path());
  }
  if (error) {
    throw RecordingError(file.string() + ": " + error.message());
  }
  // Before it is opened: opening a FIFO waits for a writer.
  if (!std::filesystem::is_regular_file(status)) {
    throw RecordingError(file.string() + ": not a regular file");
  }
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw RecordingError(file.string() + ": " + std::generic_category().message(errno));
  }
  return stream;
}

namespace {

/** The last part with detector information that is not empty; the last one where none has any. */
std::filesystem::path partWithInformation(const std::vector<std::filesystem::path>& parts) {
  const auto hasAny = [](const std::filesystem::path& part) {
    std::error_code absent;
    const std::uintmax_t size = std::filesystem::file_size(part / detectorInformationFileName, absent);
    return !absent && size > 0;
  };
  const auto found = std::find_if(parts.rbegin(), parts.rend(), hasAny);
  return found != parts.rend() ? *found : parts.back();
}

}  // namespace

std::string readDetectorInformation(const std::filesystem::path& folder) {
  const std::string file = partWithInformation(partsOf(folder)) / detectorInformationFileName;
  std::ifstream stream = openFile(file);
  // One byte beyond the limit distinguishes a file of the greatest length from a longer one.
  std::string bytes;
  std::array<char, 4096> block{};
  do {
    stream.read(block.data(), block.size());
    bytes.append(block.data(), static_cast<std::size_t>(stream.gcount()));
  } while (stream && bytes.size() <= maximumMessageSize);
  if (stream.bad()) {
    throw RecordingError(file + ": cannot be read");
  }
  if (bytes.size() > maximumMessageSize) {
    throw RecordingError(file + ": longer than the " + std::to_string(maximumMessageSize) + " bytes allowed");
  }
  return bytes;
}

}  // namespace vod::recording
