// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/frame_text.h"

#include "base/text.h"

#include <algorithm>
#include <vector>

namespace tarn::command {
namespace {

std::string attributeText(const VOD::Attribute& attribute, AttributeDetail detail) {
  const std::string value = attribute.className ? printable(*attribute.className) : "";
  if (detail == AttributeDetail::Values && !value.empty()) {
    return value;
  }
  std::string text = printable(attribute.typeName) + (value.empty() ? "" : ' ' + value);
  if (attribute.score && detail == AttributeDetail::Scores) {
    text += ' ' + std::to_string(*attribute.score);
  }
  return text;
}

std::string detectionText(const VOD::Data& detection) {
  std::string text = printable(detection.className) + ' ' + std::to_string(detection.objectId) + " score " +
                     std::to_string(detection.score) + ' ' + statusText(detection.status) + " [" + boxText(detection) +
                     ']';
  if (!detection.attributes.empty()) {
    text += " (" + attributesText(detection) + ')';
  }
  return text;
}

template <typename Record, typename Convert>
std::string listed(const std::vector<Record>& records, const char* separator, Convert convert) {
  std::vector<std::string> texts;
  std::transform(records.begin(), records.end(), std::back_inserter(texts), convert);
  return joined(texts, separator);
}

}  // namespace

std::string frameLine(const VOD::DetectionData& frame, int camera) {
  std::string line = "camera " + std::to_string(camera) + "  " + clockText(frame.timestamp) + "  " +
                     counted(frame.detections.size(), "object");
  if (!frame.detections.empty()) {
    line += ": " + listed(frame.detections, "; ", detectionText);
  }
  if (!frame.events.empty()) {
    line += "  | " + listed(frame.events, "; ", eventText);
  }
  return line + '\n';
}

std::string boxText(const VOD::Data& detection) {
  std::vector<std::string> numbers;
  for (const float number : {detection.coord1, detection.coord2, detection.coord3, detection.coord4}) {
    numbers.push_back(fixed(number, 3));
  }
  return joined(numbers, " ");
}

std::string attributesText(const VOD::Data& detection, AttributeDetail detail) {
  return listed(detection.attributes, ", ",
                [detail](const VOD::Attribute& attribute) { return attributeText(attribute, detail); });
}

std::string eventText(const VOD::VodEvent& event) {
  std::string text =
      (event.action == VOD::EventAction::Delete ? "deleted " : "connected ") + std::to_string(event.objectId);
  if (!event.objectIds.empty()) {
    text += " with " + listed(event.objectIds, ", ", [](int id) { return std::to_string(id); });
  }
  return text;
}

std::string statusText(VOD::DetectionStatus status) {
  switch (status) {
    case VOD::DetectionStatus::TrackedUnconfident:
      return "unconfident";
    case VOD::DetectionStatus::TrackedConfident:
      return "confident";
    case VOD::DetectionStatus::Untracked:
      break;
  }
  return "untracked";
}

}  // namespace tarn::command
