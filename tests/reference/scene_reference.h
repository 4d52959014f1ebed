// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_REFERENCE_SCENE_REFERENCE_H
#define TARNVOD_TESTS_REFERENCE_SCENE_REFERENCE_H

#include <tarnvod/detection_data.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarn::test {

/** What the ids in a camera's scenes mean, in the plainest containers. */
struct ReferenceNames {
  std::map<std::int32_t, std::string> classes;
  std::map<std::uint32_t, std::string> attributeTypes;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::string> attributeValues;
};

/** What must come of a scene. */
struct ReferenceFrame {
  VOD::DetectionData frame;
  /** The attribute types without a name, one for each attribute that was dropped. */
  std::vector<std::uint32_t> missingAttributeTypes;
};

/** The record of a scene, converted a second time and as plainly as possible, to compare the library's with. */
ReferenceFrame referenceFrame(const std::string& scene, const ReferenceNames& names);

/** Whether two frames are the same to the bit: also where a number is none. */
bool identical(const VOD::DetectionData& left, const VOD::DetectionData& right);

}  // namespace tarn::test

#endif
