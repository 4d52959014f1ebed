// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_MESSAGES_SCENE_FILTER_H
#define VOD_HOST_MESSAGES_SCENE_FILTER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vod::host {

/** A part of the image: corners, normalised to 0..1, with the origin at the top left. Its edges belong to it. */
struct Region {
  float left, top, right, bottom;
  bool contains(float x, float y) const { return left <= x && x <= right && top <= y && y <= bottom; }
};

/** A scene as a callback is about to get it; owned elsewhere. */
struct Frame {
  const std::uint8_t* buffer;
  std::int32_t length;
  /** Delivered to everyone as it is, without a look at the bytes. */
  bool verbatim;
};

inline Frame frameOf(const std::string& bytes) {
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size()), false};
}

/** What the service needs to know of a scene before it delivers it. */
struct FilteredScene {
  /** Whether there is a detection, in the region where one is given. */
  bool hasDetections = false;
  /** The scene without the detections outside the region; none when nothing has to be dropped. */
  std::optional<std::string> remaining;
};

/**
 * Looks for detections, and drops those whose centre is outside the region. Everything else stays byte for byte, in
 * order: fields that this schema does not know as well.
 *
 * @param region  null for the whole image
 * @return none when the bytes are no scene
 */
std::optional<FilteredScene> filterScene(const Frame& frame, const Region* region);

/** A serialized `VOD.ChannelConfiguration`, read. */
struct ChannelConfiguration {
  std::optional<Region> region;
};

/** Returns none when the bytes are no channel configuration. */
std::optional<ChannelConfiguration> readChannelConfiguration(const std::string& bytes);

}  // namespace vod::host

#endif
