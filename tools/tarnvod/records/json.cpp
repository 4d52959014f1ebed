// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/json.h"

#include "base/text.h"

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

template <typename Value>
Json orNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

template <typename Record, typename Convert>
Json arrayOf(const std::vector<Record>& records, Convert convert) {
  Json array = Json::array();
  for (const Record& record : records) {
    array.push_back(convert(record));
  }
  return array;
}

Json attributeJson(const VOD::Attribute& attribute) {
  return {
      {"typeName", attribute.typeName}, {"className", orNull(attribute.className)}, {"score", orNull(attribute.score)}};
}

Json classificationJson(const VOD::Classification& classification) {
  return {{"className", orNull(classification.className)}, {"score", orNull(classification.score)}};
}

Json detectionJson(const VOD::Data& detection) {
  return {{"coord1", detection.coord1},
          {"coord2", detection.coord2},
          {"coord3", detection.coord3},
          {"coord4", detection.coord4},
          {"objectId", detection.objectId},
          {"className", detection.className},
          {"score", detection.score},
          {"status", nameOf(detection.status)},
          {"attributes", arrayOf(detection.attributes, attributeJson)},
          {"classifications", arrayOf(detection.classifications, classificationJson)}};
}

Json calibrationJson(const VOD::Calibration& calibration) {
  return {{"coefficientC", calibration.coefficientC},
          {"coefficientA", calibration.coefficientA},
          {"coefficientB", calibration.coefficientB}};
}

Json classIdsJson(const VOD::Classifications& classifications) {
  Json ids = Json::object();
  for (const std::string& name : classifications.getClassNames()) {
    ids[name] = classifications.getClassIdsToNamesMap({name}).begin()->first;
  }
  return ids;
}

Json attributesPerClassJson(const std::map<std::string, VOD::ObjectSchema>& objectVariants) {
  Json schemas = Json::object();
  for (const auto& [className, schema] : objectVariants) {
    Json attributes = Json::object();
    for (const auto& [typeName, values] : schema.attributes) {
      attributes[typeName] = values;
    }
    schemas[className] = attributes;
  }
  return schemas;
}

Json supportedAttributesJson(const VOD::DetectorInformation& information) {
  Json attributes = Json::object();
  for (const auto& [typeName, values] : information.getSupportedAttributes()) {
    attributes[typeName] = values;
  }
  return attributes;
}

Json calibrationsJson(const VOD::DetectorInformation& information) {
  Json calibrations = Json::object();
  for (const auto& [className, list] : information.getCalibrationsContainer()) {
    calibrations[className] = arrayOf(list, calibrationJson);
  }
  return calibrations;
}

Json mountingJson(const std::optional<VOD::FishEyeMountingPosition>& position) {
  return position ? Json(nameOf(*position)) : Json(nullptr);
}

/** JSON text, valid UTF-8, with the control characters escaped that JSON allows in strings: U+007F to U+009F. */
std::string withoutRawControls(std::string text) {
  const auto isControl = [&](std::size_t index) {
    return text[index] == '\x7F' || (text[index] == '\xC2' && static_cast<unsigned char>(text[index + 1]) < 0xA0);
  };
  constexpr std::string_view digits = "0123456789abcdef";
  std::string result;
  std::size_t copied = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (isControl(index)) {
      result.append(text, copied, index - copied);
      index += text[index] == '\x7F' ? 0U : 1U;
      const auto code = static_cast<unsigned char>(text[index]);
      result.append("\\u00").append({digits[code >> 4U], digits[code & 0xFU]});
      copied = index + 1;
    }
  }
  return copied == 0 ? std::move(text) : result.append(text, copied);
}

}  // namespace

Json toJson(const VOD::VodEvent& event) {
  return {{"action", nameOf(event.action)},
          {"objectId", event.objectId},
          {"objectIds", arrayOf(event.objectIds, [](int id) { return Json(id); })}};
}

Json toJson(const VOD::DetectionData& frame, int camera) {
  return {{"camera", camera},
          {"timestamp", frame.timestamp},
          {"detections", arrayOf(frame.detections, detectionJson)},
          {"events", arrayOf(frame.events, [](const VOD::VodEvent& event) { return toJson(event); })}};
}

Json toJson(const VOD::DetectorInformation& information) {
  return {{"camera", information.getCameraNbr()},
          {"computeChip", nameOf(information.getComputeChip())},
          {"rotation", information.getRotation()},
          {"fishEyeMountingPosition", mountingJson(information.lookupFishEyeMountingPosition())},
          {"reidStatus", nameOf(information.getReidStatus())},
          {"classes", classIdsJson(information.getClassifications())},
          {"attributesPerClass", attributesPerClassJson(information.getObjectVariants())},
          {"supportedAttributes", supportedAttributesJson(information)},
          {"calibrations", calibrationsJson(information)}};
}

std::string oneLine(const Json& json) {
  return withoutRawControls(json.dump(-1, ' ', false, Json::error_handler_t::replace)) + '\n';
}

std::string indented(const Json& json) {
  return withoutRawControls(json.dump(2, ' ', false, Json::error_handler_t::replace)) + '\n';
}

}  // namespace tarn::command
