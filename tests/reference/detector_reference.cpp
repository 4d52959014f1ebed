// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "reference/detector_reference.h"

#include <tarnvod/video_object_detection.pb.h>

#include <cctype>
#include <cstring>
#include <vector>

namespace tarn::test {
namespace {

std::string lowerCase(const std::string& name) {
  std::string result;
  for (const char byte : name) {
    result.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(byte))));
  }
  return result;
}

int chipNumber(const ::VOD::DetectorProperties& properties) {
  static const std::set<int> known = {1, 2, 3, 4, 5, 6, 7, 9};
  if (properties.has_inference_chip_case() != ::VOD::DetectorProperties::kInferenceChip) {
    return 0;
  }
  return known.count(properties.inference_chip()) != 0 ? static_cast<int>(properties.inference_chip()) : 0;
}

std::optional<VOD::FishEyeMountingPosition> mountingOf(const ::VOD::DetectorProperties& properties) {
  if (properties.has_fisheye_mounting_position_case() != ::VOD::DetectorProperties::kFisheyeMountingPosition) {
    return std::nullopt;
  }
  const int number = properties.fisheye_mounting_position();
  return static_cast<VOD::FishEyeMountingPosition>(number >= 1 && number <= 3 ? number : 0);
}

bool isReidRunning(const ::VOD::DetectorProperties& properties) {
  return properties.has_reid_status_case() == ::VOD::DetectorProperties::kReidStatus && properties.reid_status() == 1;
}

using Bits = std::vector<std::uint32_t>;

std::uint32_t bitsOf(float number) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof(bits));
  return bits;
}

/** The calibrations' bits per class; of classes with one name, the last one's. */
std::map<std::string, Bits> calibrationBits(const ::VOD::DetectorInformation& message) {
  std::map<std::string, Bits> result;
  for (const ::VOD::ObjectClass& objectClass : message.object_classes()) {
    Bits bits;
    for (const ::VOD::Calibration& calibration : objectClass.calibrations()) {
      bits.insert(bits.end(), {bitsOf(calibration.coefficient_c()), bitsOf(calibration.coefficient_a()),
                               bitsOf(calibration.coefficient_b())});
    }
    result[lowerCase(objectClass.name())] = bits;
  }
  return result;
}

std::map<std::string, Bits> calibrationBits(const VOD::DetectorInformation& model) {
  std::map<std::string, Bits> result;
  for (const auto& [name, calibrations] : model.getCalibrationsContainer()) {
    Bits& bits = result[name];
    for (const VOD::Calibration& calibration : calibrations) {
      bits.insert(bits.end(), {bitsOf(calibration.coefficientC), bitsOf(calibration.coefficientA),
                               bitsOf(calibration.coefficientB)});
    }
  }
  return result;
}

std::map<std::string, VOD::ObjectSchema> variantsOf(const ::VOD::DetectorInformation& message) {
  std::map<std::string, VOD::ObjectSchema> result;
  for (const ::VOD::ObjectClass& objectClass : message.object_classes()) {
    VOD::ObjectSchema schema;
    for (const std::uint32_t id : objectClass.attribute_type_ids()) {
      for (const ::VOD::AttributeType& type : message.attribute_types()) {
        if (type.id() != id) {
          continue;
        }
        std::vector<std::string> values;
        for (const ::VOD::AttributeClass& value : type.attribute_classes()) {
          values.push_back(value.name());
        }
        schema.attributes[type.name()] = values;
      }
    }
    result[objectClass.name()] = schema;
  }
  return result;
}

std::map<std::string, std::set<std::string>> supportedAttributesOf(const ::VOD::DetectorInformation& message) {
  std::map<std::string, std::set<std::string>> result;
  for (const ::VOD::AttributeType& type : message.attribute_types()) {
    for (const ::VOD::AttributeClass& value : type.attribute_classes()) {
      result[type.name()].insert(value.name());
    }
  }
  return result;
}

bool sameClasses(const std::map<std::string, int>& expected, const VOD::Classifications& model) {
  std::set<std::string> names;
  for (const auto& [name, id] : expected) {
    names.insert(name);
    if (model.getClassIdsToNamesMap({name}) != std::map<int, std::string>{{id, name}}) {
      return false;
    }
  }
  return model.getClassNames() == names && model.isEmpty() == names.empty() && model.areAllClassesSupported(names) &&
         model.getClassIdsToNamesMap(names) == classNamesById(expected, names);
}

}  // namespace

std::map<std::string, std::set<std::string>> ReferenceAttributes::supported() const {
  std::map<std::string, std::set<std::string>> result;
  for (const auto& [type, name] : types) {
    std::set<std::string> names;
    for (const auto& [id, value] : values) {
      if (id.first == type) {
        names.insert(value);
      }
    }
    result[name] = names;
  }
  return result;
}

::VOD::DetectorInformation parseDetector(const std::string& bytes) {
  ::VOD::DetectorInformation message;
  static_cast<void>(message.ParseFromString(bytes));  // what could be read of broken bytes counts
  return message;
}

std::map<std::string, int> classIdsByName(const ::VOD::DetectorInformation& message) {
  std::map<std::string, int> result;
  for (const ::VOD::ObjectClass& objectClass : message.object_classes()) {
    result.emplace(lowerCase(objectClass.name()), static_cast<int>(objectClass.id()));
  }
  return result;
}

std::map<int, std::string> classNamesById(const std::map<std::string, int>& idsByName,
                                          const std::set<std::string>& requested) {
  std::map<int, std::string> result;
  for (const std::string& name : requested) {
    if (const auto entry = idsByName.find(name); entry != idsByName.end()) {
      result[entry->second] = name;
    }
  }
  return result;
}

ReferenceAttributes attributesOf(const ::VOD::DetectorInformation& message) {
  ReferenceAttributes result;
  for (const ::VOD::AttributeType& type : message.attribute_types()) {
    result.types[type.id()] = type.name();
    for (const ::VOD::AttributeClass& value : type.attribute_classes()) {
      result.values[{type.id(), value.id()}] = value.name();
    }
  }
  return result;
}

std::optional<std::string> differenceFrom(const ::VOD::DetectorInformation& message,
                                          const VOD::DetectorInformation& model) {
  const ::VOD::DetectorProperties& properties = message.properties();
  if (model.getCameraNbr() != static_cast<std::int32_t>(properties.camera_nbr() + 1U)) {
    return "camera number";
  }
  if (model.getRotation() != static_cast<std::int32_t>(properties.image_rotation())) {
    return "rotation";
  }
  if (static_cast<int>(model.getComputeChip()) != chipNumber(properties)) {
    return "compute chip";
  }
  if (model.lookupFishEyeMountingPosition() != mountingOf(properties)) {
    return "mounting position";
  }
  if ((model.getReidStatus() == VOD::ReidStatus::REID_RUNNING) != isReidRunning(properties)) {
    return "re-identification";
  }
  if (calibrationBits(model) != calibrationBits(message)) {
    return "calibrations";
  }
  if (model.getObjectVariants() != variantsOf(message)) {
    return "object variants";
  }
  if (model.getSupportedAttributes() != supportedAttributesOf(message)) {
    return "supported attributes";
  }
  if (!sameClasses(classIdsByName(message), model.getClassifications())) {
    return "classifications";
  }
  return std::nullopt;
}

}  // namespace tarn::test
