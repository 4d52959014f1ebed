// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_MESSAGES_SCENE_FILTER_H
#define VOD_HOST_MESSAGES_SCENE_FILTER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace vod::host {

/** A part of the image, including its edges; normalised to 0..1, with the origin at the top left. */
struct Region {
  float left, top, right, bottom;
  bool contains(float x, float y) const { return left <= x && x <= right && top <= y && y <= bottom; }
};

/** A scene as it is passed to a callback. Does not own the buffer. */
struct Frame {
  const std::uint8_t* buffer;
  std::int32_t length;
  /** Delivered unchanged to every subscriber; the bytes are not examined. */
  bool verbatim;
};

inline Frame frameOf(const std::string& bytes) {
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), static_cast<std::int32_t>(bytes.size()), false};
}

/** The result of filtering a scene. */
struct FilteredScene {
  /** Whether there is a detection, in the region where one is given. */
  bool hasDetections = false;
  /** The scene without the detections outside the region; none when there are none to drop. */
  std::optional<std::string> remaining;
};

/**
 * Looks for detections, and drops those whose centre is outside the region. All other fields, unknown ones included,
 * keep their bytes and their order.
 *
 * @param region  null for the whole image
 * @return none when the bytes are not a scene
 */
std::optional<FilteredScene> filterScene(const Frame& frame, const Region* region);

/** The contents of a `VOD.ChannelConfiguration`. */
struct ChannelConfiguration {
  std::optional<Region> region;
};

/** Returns none when the bytes are not a channel configuration. */
std::optional<ChannelConfiguration> readChannelConfiguration(const std::string& bytes);

}  // namespace vod::host

#endif
