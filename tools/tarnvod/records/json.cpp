// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/json.h"

#include "base/text.h"
#include "detection-data/record_members.h"
#include "detector-information/model_members.h"

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

/** What records hold, as JSON; static members of a class can call each other in any order. */
struct Values {
  template <typename Value>
  static Json of(const Value& value) {
    if constexpr (std::is_enum_v<Value>) {
      return nameOf(value);
    } else if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, std::string>) {
      return value;
    } else {
      Json object = Json::object();
      addMembers(object, value);
      return object;
    }
  }

  template <typename Value>
  static Json of(const std::optional<Value>& value) {
    return value ? of(*value) : Json(nullptr);
  }

  template <typename Value>
  static Json of(const std::vector<Value>& values) {
    Json array = Json::array();
    for (const Value& value : values) {
      array.push_back(of(value));
    }
    return array;
  }

  template <typename Record>
  static void addMembers(Json& object, const Record& record) {
    VOD::visitMembers(record, [&object](const char* name, const auto& value) { object[name] = of(value); });
  }
};

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
    calibrations[className] = Values::of(list);
  }
  return calibrations;
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
  return Values::of(event);
}

Json toJson(const VOD::DetectionData& frame, int camera) {
  Json object{{"camera", camera}};
  Values::addMembers(object, frame);
  return object;
}

Json toJson(const VOD::DetectorInformation& information) {
  return {{"camera", information.getCameraNbr()},
          {"computeChip", nameOf(information.getComputeChip())},
          {"rotation", information.getRotation()},
          {"fishEyeMountingPosition", Values::of(information.lookupFishEyeMountingPosition())},
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
