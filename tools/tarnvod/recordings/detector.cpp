// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/detector.h"

#include "base/errors.h"
#include "base/files.h"

#include <tarnvod/detector_information_file_reader.h>
#include <tarnvod/video_object_detection.pb.h>

namespace tarn::command {
namespace {

template <typename Key>
std::string nameOrNumber(const std::map<Key, std::string>& names, const Key& key, const char* noun,
                         std::uint32_t number) {
  const auto found = names.find(key);
  return found != names.end() ? found->second : noun + (' ' + std::to_string(number));
}

}  // namespace

/** The library accepts any bytes and uses what it can; a person who names the wrong file wants to know. */
std::string readDetectorBytes(const std::string& path) {
  std::string bytes = readFile(path, "a file such as a recording's detector-information.pb");
  ::VOD::DetectorInformation message;
  if (!message.ParseFromString(bytes) || message.object_classes().empty()) {
    throw Failure(path + ": this is not detector information; name a file such as a recording's " +
                  "detector-information.pb");
  }
  return bytes;
}

VOD::DetectorInformation readDetectorFile(const std::string& path) {
  readDetectorBytes(path);
  try {
    return VOD::DetectorInformationFileReader(path).parseDetectorInformation();
  } catch (const char* problem) {
    throw Failure(path + ": " + problem);
  }
}

SceneNames::SceneNames(const std::string& bytes) {
  ::VOD::DetectorInformation message;
  static_cast<void>(message.ParsePartialFromString(bytes));  // of damaged bytes, the names before the damage
  for (const auto& objectClass : message.object_classes()) {
    classes_.emplace(objectClass.id(), objectClass.name());
  }
  for (const auto& type : message.attribute_types()) {
    attributes_[type.id()] = type.name();
    for (const auto& value : type.attribute_classes()) {
      values_[{type.id(), value.id()}] = value.name();
    }
  }
}

std::string SceneNames::className(std::uint32_t id) const {
  return nameOrNumber(classes_, id, "class", id);
}

std::string SceneNames::attributeName(std::uint32_t type) const {
  return nameOrNumber(attributes_, type, "attribute", type);
}

std::string SceneNames::attributeValue(std::uint32_t type, std::uint32_t value) const {
  return nameOrNumber(values_, {type, value}, "value", value);
}

}  // namespace tarn::command
