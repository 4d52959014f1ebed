// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_REFERENCE_DETECTOR_REFERENCE_H
#define TARNVOD_TESTS_REFERENCE_DETECTOR_REFERENCE_H

#include "reference/scene_reference.h"

#include <tarnvod/detector_information.h>

#include <map>
#include <optional>
#include <set>
#include <string>

namespace VOD {
class DetectorInformation;
}

namespace tarn::test {

/** The attribute names of a detector, as they are kept for the frames of its camera and for the attribute query. */
struct ReferenceAttributes {
  std::map<std::uint32_t, std::string> types;
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::string> values;

  /** Attribute type name to value names; of types that share a name, the one with the greater id counts. */
  std::map<std::string, std::set<std::string>> supported() const;
};

// A second reading of the service's message, written as plainly as possible, to compare the library's with.

::VOD::DetectorInformation parseDetector(const std::string& bytes);
std::map<std::string, int> classIdsByName(const ::VOD::DetectorInformation& message);
std::map<int, std::string> classNamesById(const std::map<std::string, int>& idsByName,
                                          const std::set<std::string>& requested);
ReferenceAttributes attributesOf(const ::VOD::DetectorInformation& message);

/** The first member in which the library's model is not what the message says; nothing when it all agrees. */
std::optional<std::string> differenceFrom(const ::VOD::DetectorInformation& message,
                                          const VOD::DetectorInformation& model);

}  // namespace tarn::test

#endif
