// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "printing.h"

#include <tarnvod/detection_data.h>
#include <tarnvod/video_object_detection.pb.h>

#include <tuple>
#include <utility>

namespace VOD {

std::ostream& operator<<(std::ostream& out, Detection_DetectionStatus status) {
  return tarn::VOD::printing::printEnumerator(out, status, std::string(Detection_DetectionStatus_Name(status)));
}

std::ostream& operator<<(std::ostream& out, EventAction action) {
  return tarn::VOD::printing::printEnumerator(out, action, std::string(EventAction_Name(action)));
}

}  // namespace VOD

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

Attribute::Attribute(const std::string& typeName, std::optional<std::string> className,
                     std::optional<std::uint32_t> score)
    : typeName(typeName), className(std::move(className)), score(score) {}

Classification::Classification(std::optional<std::string> className, std::optional<std::uint32_t> score)
    : className(std::move(className)), score(score) {}

VodEvent::VodEvent(EventAction action, int objectId, std::vector<int> objectIds)
    : action(action), objectId(objectId), objectIds(std::move(objectIds)) {}

Data::Data(float coord1, float coord2, float coord3, float coord4, unsigned int objectId, const std::string& className,
           unsigned int score, DetectionStatus status, std::vector<Attribute> attributes,
           std::vector<Classification> classifications)
    : coord1(coord1),
      coord2(coord2),
      coord3(coord3),
      coord4(coord4),
      objectId(objectId),
      className(className),
      score(score),
      status(status),
      attributes(std::move(attributes)),
      classifications(std::move(classifications)) {}

DetectionData::DetectionData(std::uint64_t timestamp, std::vector<Data> detections, std::vector<VodEvent> events)
    : timestamp(timestamp), detections(std::move(detections)), events(std::move(events)) {}

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

std::ostream& operator<<(std::ostream& out, EventAction action) {
  return printing::printEnumerator(out, static_cast<int>(action), {"Delete", "Connect"});
}

std::ostream& operator<<(std::ostream& out, DetectionStatus status) {
  return printing::printEnumerator(out, static_cast<int>(status),
                                   {"Untracked", "TrackedUnconfident", "TrackedConfident"});
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
