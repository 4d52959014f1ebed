// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detection-data/record_members.h"
#include "support/printing.h"

#include <tarnvod/detection_data.h>

#include <utility>

namespace tarn::VOD {
namespace {

std::string_view nameOf(EventAction action) {
  switch (action) {
    case EventAction::Delete:
      return "Delete";
    case EventAction::Connect:
      return "Connect";
  }
  return {};
}

std::string_view nameOf(DetectionStatus status) {
  switch (status) {
    case DetectionStatus::Untracked:
      return "Untracked";
    case DetectionStatus::TrackedUnconfident:
      return "TrackedUnconfident";
    case DetectionStatus::TrackedConfident:
      return "TrackedConfident";
  }
  return {};
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
  return equalMembers(left, right);
}
bool operator==(const Classification& left, const Classification& right) {
  return equalMembers(left, right);
}
bool operator==(const VodEvent& left, const VodEvent& right) {
  return equalMembers(left, right);
}
bool operator==(const Data& left, const Data& right) {
  return equalMembers(left, right);
}
bool operator==(const DetectionData& left, const DetectionData& right) {
  return equalMembers(left, right);
}

std::ostream& operator<<(std::ostream& out, EventAction value) {
  return printing::printEnumerator(out, static_cast<int>(value), nameOf(value));
}
std::ostream& operator<<(std::ostream& out, DetectionStatus value) {
  return printing::printEnumerator(out, static_cast<int>(value), nameOf(value));
}

std::ostream& operator<<(std::ostream& out, const Attribute& record) {
  return printing::printRecord(out, record);
}
std::ostream& operator<<(std::ostream& out, const Classification& record) {
  return printing::printRecord(out, record);
}
std::ostream& operator<<(std::ostream& out, const VodEvent& record) {
  return printing::printRecord(out, record);
}
std::ostream& operator<<(std::ostream& out, const Data& record) {
  return printing::printRecord(out, record);
}
std::ostream& operator<<(std::ostream& out, const DetectionData& record) {
  return printing::printRecord(out, record);
}

}  // namespace tarn::VOD
