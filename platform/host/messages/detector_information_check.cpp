// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "messages/detector_information_check.h"

#include "messages/wire_fields.h"
#include "recording/recording.h"

#include <tarnvod/video_object_detection.pb.h>

namespace vod::host {

std::string readValidDetectorInformation(const std::string& folder) {
  std::string bytes = recording::readDetectorInformation(folder);
  const std::size_t validSize = forEachField(bytes, [](const Field& field) {
    VOD::DetectorInformation message;
    return message.ParseFromArray(field.bytes.data(), static_cast<int>(field.bytes.size()));
  });
  if (validSize < bytes.size()) {
    const std::string file = std::filesystem::path(folder) / recording::detectorInformationFileName;
    throw recording::RecordingError(
        toString(recording::Damage{file, static_cast<std::int64_t>(validSize), "not valid detector information"}));
  }
  return bytes;
}

}  // namespace vod::host
