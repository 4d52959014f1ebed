// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "messages/scene_filter.h"

#include "messages/wire_fields.h"

#include <tarnvod/video_object_detection.pb.h>

#include <utility>

namespace vod::host {

namespace {

constexpr std::uint32_t lengthDelimited = 2;
constexpr std::uint32_t detectionTag = (VOD::Scene::kDetectionsFieldNumber << 3U) | lengthDelimited;

/** Returns none when the field is not a detection. */
std::optional<VOD::Detection> readDetection(const Field& field) {
  VOD::Scene scene;
  if (!scene.ParseFromArray(field.bytes.data(), static_cast<int>(field.bytes.size()))) {
    return std::nullopt;
  }
  return std::move(*scene.mutable_detections(0));
}

bool isInside(const VOD::Detection& detection, const Region& region) {
  return region.contains((detection.coord_1() + detection.coord_3()) / 2,
                         (detection.coord_2() + detection.coord_4()) / 2);
}

}  // namespace

std::optional<FilteredScene> filterScene(const Frame& frame, const Region* region) {
  const std::string_view scene(reinterpret_cast<const char*>(frame.buffer), static_cast<std::size_t>(frame.length));
  FilteredScene result;
  std::string remaining;
  const std::size_t end = forEachField(scene, [&](const Field& field) {
    if (region == nullptr) {
      result.hasDetections |= field.tag == detectionTag;
      return true;
    }
    if (field.tag == detectionTag) {
      const auto detection = readDetection(field);
      if (!detection) {
        return false;
      }
      if (!isInside(*detection, *region)) {
        return true;
      }
      result.hasDetections = true;
    }
    remaining.append(field.bytes);
    return true;
  });
  if (end < scene.size()) {
    return std::nullopt;
  }
  if (remaining.size() < scene.size() && region != nullptr) {
    result.remaining = std::move(remaining);
  }
  return result;
}

std::optional<ChannelConfiguration> readChannelConfiguration(const std::string& bytes) {
  VOD::ChannelConfiguration message;
  if (!message.ParseFromString(bytes)) {
    return std::nullopt;
  }
  ChannelConfiguration configuration;
  if (message.has_roi_case() != VOD::ChannelConfiguration::HAS_ROI_NOT_SET) {
    const VOD::BoundingBox& box = message.roi();
    configuration.region = Region{box.coord_1(), box.coord_2(), box.coord_3(), box.coord_4()};
  }
  return configuration;
}

}  // namespace vod::host
