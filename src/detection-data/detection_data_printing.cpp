// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/printing.h"

#include <tarnvod/detection_data.h>

namespace tarn::VOD {

std::ostream& operator<<(std::ostream& out, EventAction action) {
  return printing::printListedEnumerator(out, static_cast<int>(action), "Delete,Connect");
}

std::ostream& operator<<(std::ostream& out, DetectionStatus status) {
  return printing::printListedEnumerator(out, static_cast<int>(status),
                                         "Untracked,TrackedUnconfident,TrackedConfident");
}

std::ostream& operator<<(std::ostream& out, const Attribute& attribute) {
  return printing::Record(out, "Attribute")
      .member("typeName", attribute.typeName)
      .member("className", attribute.className)
      .member("score", attribute.score)
      .end();
}

std::ostream& operator<<(std::ostream& out, const Classification& classification) {
  return printing::Record(out, "Classification")
      .member("className", classification.className)
      .member("score", classification.score)
      .end();
}

std::ostream& operator<<(std::ostream& out, const VodEvent& event) {
  return printing::Record(out, "VodEvent")
      .member("action", event.action)
      .member("objectId", event.objectId)
      .member("objectIds", event.objectIds)
      .end();
}

std::ostream& operator<<(std::ostream& out, const Data& data) {
  return printing::Record(out, "Data")
      .member("coord1", data.coord1)
      .member("coord2", data.coord2)
      .member("coord3", data.coord3)
      .member("coord4", data.coord4)
      .member("objectId", data.objectId)
      .member("className", data.className)
      .member("score", data.score)
      .member("status", data.status)
      .member("attributes", data.attributes)
      .member("classifications", data.classifications)
      .end();
}

std::ostream& operator<<(std::ostream& out, const DetectionData& frame) {
  return printing::Record(out, "DetectionData")
      .member("timestamp", frame.timestamp)
      .member("detections", frame.detections)
      .member("events", frame.events)
      .end();
}

}  // namespace tarn::VOD
