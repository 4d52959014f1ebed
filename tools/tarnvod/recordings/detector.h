// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_DETECTOR_H
#define TARNVOD_COMMAND_DETECTOR_H

#include <tarnvod/detector_information.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace tarn::command {

/** One serialized `VOD.DetectorInformation`. @throw Failure when the file cannot be read or is something else */
std::string readDetectorBytes(const std::string& path);

/** The same, as the library's model. @throw Failure as above */
VOD::DetectorInformation readDetectorFile(const std::string& path);

/** The names behind the ids of raw scenes, as the detector gives them; an unknown id is named "class 7". */
class SceneNames {
 public:
  SceneNames() = default;
  /** @param bytes  one serialized `VOD.DetectorInformation`; where it is damaged, what can be read of it counts */
  explicit SceneNames(const std::string& bytes);

  std::string className(std::uint32_t id) const;
  std::string attributeName(std::uint32_t type) const;
  std::string attributeValue(std::uint32_t type, std::uint32_t value) const;
  bool knowsClass(std::uint32_t id) const { return classes_.count(id) != 0; }

 private:
  std::map<std::uint32_t, std::string> classes_;
  std::map<std::uint32_t, std::string> attributes_;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::string> values_;
};

}  // namespace tarn::command

#endif
