// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Scene bytes to record, compared with a second conversion.
//
// Input: the number of ids and the ids that have names, for classes, attribute types and attribute values; then the
// scene.

#include "detection-data/scene_conversion.h"
#include "fuzz_input.h"
#include "reference/scene_reference.h"

#include <tarnvod/video_object_detection.pb.h>

#include <algorithm>

namespace tarn::fuzz {
namespace {

constexpr std::uint8_t mostNames = 32;

/** Small ids and, with the highest bit set, ids spread over the whole range. */
std::uint32_t idFrom(Input& input) {
  const std::uint32_t byte = input.byte();
  return (byte & 0x80U) != 0 ? byte * 0x01010101U : byte;
}

test::ReferenceNames namesFrom(Input& input) {
  test::ReferenceNames names;
  for (int left = input.byte() % mostNames; left > 0; --left) {
    const std::uint32_t id = idFrom(input);
    names.classes[static_cast<std::int32_t>(id)] = "class " + std::to_string(id);
  }
  for (int left = input.byte() % mostNames; left > 0; --left) {
    const std::uint32_t id = idFrom(input);
    names.attributeTypes[id] = "type " + std::to_string(id);
  }
  for (int left = input.byte() % mostNames; left > 0; --left) {
    const std::uint32_t type = idFrom(input);
    const std::uint32_t value = idFrom(input);
    names.attributeValues[{type, value}] = "value " + std::to_string(value) + " of " + std::to_string(type);
  }
  return names;
}

/** A null table is an empty one, so both stand for no names. Values may have a name whose types have none. */
VOD::SceneNames tablesOf(const test::ReferenceNames& names, bool nullIfEmpty) {
  VOD::SceneNames tables;
  if (!names.classes.empty() || !nullIfEmpty) {
    tables.classes = std::make_shared<const VOD::ClassNames>(std::map<std::int32_t, std::string>(names.classes));
  }
  std::map<VOD::AttributeClassId, VOD::AttributeValueName> values;
  for (const auto& [id, name] : names.attributeValues) {
    values[{id.first, id.second}].name = name;
  }
  if (!names.attributeTypes.empty() || !values.empty() || !nullIfEmpty) {
    tables.attributes = std::make_shared<const VOD::AttributeNames>(
        std::map<std::uint32_t, std::string>(names.attributeTypes), std::move(values));
  }
  return tables;
}

std::vector<std::uint32_t> missingTypes;

void rememberMissing(std::uint32_t type) {
  missingTypes.push_back(type);
}

void compare(const test::ReferenceNames& names, bool nullIfEmpty, const std::string& bytes) {
  ::VOD::Scene scene;
  static_cast<void>(scene.ParseFromString(bytes));
  missingTypes.clear();
  const auto record = VOD::convertScene(scene, tablesOf(names, nullIfEmpty), rememberMissing);
  const test::ReferenceFrame expected = test::referenceFrame(bytes, names);
  require(test::identical(*record, expected.frame), "the record differs from the second conversion");
  require(missingTypes == expected.missingAttributeTypes, "other attribute types are missing");
}

}  // namespace
}  // namespace tarn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarn::fuzz;
  Input input(data, size);
  const tarn::test::ReferenceNames names = namesFrom(input);
  const std::string scene = input.rest();
  compare(names, scene.size() % 2 == 0, scene);
  return 0;
}
