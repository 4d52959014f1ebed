// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "reference/scene_reference.h"

#include <tarnvod/video_object_detection.pb.h>

#include <cstring>

namespace tarn::test {
namespace {

VOD::DetectionStatus statusOf(const ::VOD::Detection& detection) {
  if (detection.status() == 1) {
    return VOD::DetectionStatus::TrackedUnconfident;
  }
  if (detection.status() == 2) {
    return VOD::DetectionStatus::TrackedConfident;
  }
  return VOD::DetectionStatus::Untracked;
}

VOD::Attribute attributeOf(const ::VOD::Attribute& attribute, const ReferenceNames& names) {
  VOD::Attribute result(names.attributeTypes.at(attribute.type()), std::nullopt, std::nullopt);
  if (attribute.has_class_case() == ::VOD::Attribute::kClass) {
    const auto value = names.attributeValues.find({attribute.type(), attribute.class_()});
    if (value != names.attributeValues.end()) {
      result.className = value->second;
    }
  }
  if (attribute.has_score_case() == ::VOD::Attribute::kScore) {
    result.score = attribute.score();
  }
  return result;
}

VOD::Data dataOf(const ::VOD::Detection& detection, const ReferenceNames& names, std::vector<std::uint32_t>& missing) {
  VOD::Data data(detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4(),
                 detection.object_id(), names.classes.at(static_cast<std::int32_t>(detection.class_id())),
                 detection.score(), statusOf(detection), {}, {});
  for (const ::VOD::Attribute& attribute : detection.attributes()) {
    if (names.attributeTypes.count(attribute.type()) == 0) {
      missing.push_back(attribute.type());
    } else {
      data.attributes.push_back(attributeOf(attribute, names));
    }
  }
  for (const ::VOD::Classification& classification : detection.classifications()) {
    const auto name = names.classes.find(static_cast<std::int32_t>(classification.class_()));
    if (classification.has_class_case() == ::VOD::Classification::kClass && name != names.classes.end() &&
        classification.has_score_case() == ::VOD::Classification::kScore) {
      data.classifications.emplace_back(name->second, classification.score());
    }
  }
  return data;
}

bool sameBits(float left, float right) {
  return std::memcmp(&left, &right, sizeof(left)) == 0;
}

bool identical(const VOD::Data& left, const VOD::Data& right) {
  return sameBits(left.coord1, right.coord1) && sameBits(left.coord2, right.coord2) &&
         sameBits(left.coord3, right.coord3) && sameBits(left.coord4, right.coord4) &&
         left.objectId == right.objectId && left.className == right.className && left.score == right.score &&
         left.status == right.status && left.attributes == right.attributes &&
         left.classifications == right.classifications;
}

}  // namespace

ReferenceFrame referenceFrame(const std::string& scene, const ReferenceNames& names) {
  ::VOD::Scene message;
  static_cast<void>(message.ParseFromString(scene));  // what could be read of broken bytes counts
  ReferenceFrame result{VOD::DetectionData(message.timestamp(), {}, {}), {}};
  for (const ::VOD::Event& event : message.events()) {
    if (event.action() == 0 || event.action() == 1) {
      const std::vector<int> objectIds(event.object_ids().begin(), event.object_ids().end());
      const auto action = event.action() == 0 ? VOD::EventAction::Delete : VOD::EventAction::Connect;
      result.frame.events.emplace_back(action, event.object_id(), objectIds);
    }
  }
  for (const ::VOD::Detection& detection : message.detections()) {
    if (names.classes.count(static_cast<std::int32_t>(detection.class_id())) != 0) {
      result.frame.detections.push_back(dataOf(detection, names, result.missingAttributeTypes));
    }
  }
  return result;
}

bool identical(const VOD::DetectionData& left, const VOD::DetectionData& right) {
  if (left.timestamp != right.timestamp || left.events != right.events ||
      left.detections.size() != right.detections.size()) {
    return false;
  }
  for (std::size_t i = 0; i < left.detections.size(); ++i) {
    if (!identical(left.detections[i], right.detections[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace tarn::test
