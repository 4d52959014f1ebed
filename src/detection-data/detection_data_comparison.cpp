// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <tarnvod/detection_data.h>

#include <tuple>

namespace tarn::VOD {
namespace {

auto membersOf(const Attribute& attribute) {
  return std::tie(attribute.typeName, attribute.className, attribute.score);
}

auto membersOf(const Classification& classification) {
  return std::tie(classification.className, classification.score);
}

auto membersOf(const VodEvent& event) {
  return std::tie(event.action, event.objectId, event.objectIds);
}

auto membersOf(const Data& data) {
  return std::tie(data.coord1, data.coord2, data.coord3, data.coord4, data.objectId, data.className, data.score,
                  data.status, data.attributes, data.classifications);
}

auto membersOf(const DetectionData& frame) {
  return std::tie(frame.timestamp, frame.detections, frame.events);
}

}  // namespace

bool operator==(const Attribute& left, const Attribute& right) {
  return membersOf(left) == membersOf(right);
}
bool operator==(const Classification& left, const Classification& right) {
  return membersOf(left) == membersOf(right);
}
bool operator==(const VodEvent& left, const VodEvent& right) {
  return membersOf(left) == membersOf(right);
}
bool operator==(const Data& left, const Data& right) {
  return membersOf(left) == membersOf(right);
}
bool operator==(const DetectionData& left, const DetectionData& right) {
  return membersOf(left) == membersOf(right);
}

}  // namespace tarn::VOD
