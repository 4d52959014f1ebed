// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/message_reader.h"

#include "fleet/messages.h"
#include "fleet/second_counter.h"
#include "fleet/topics.h"

#include <zlib.h>

#include <algorithm>
#include <iterator>
#include <limits>

namespace tarn::command {
namespace {

/** The deepest message, a frame with attributes, has five levels; others may come. */
constexpr int deepest = 16;
/** A database's integers have a sign. */
constexpr std::uint64_t greatestNumber = std::numeric_limits<std::int64_t>::max();

[[noreturn]] void refuseField() {
  throw Refusal("a field is missing or invalid");
}

/** Whether brackets outside of texts are nested too deeply, before anything is made of them. */
bool isTooDeep(std::string_view json) {
  int depth = 0;
  bool isText = false;
  for (std::size_t index = 0; index < json.size(); ++index) {
    const char byte = json[index];
    if (isText) {
      index += byte == '\\' ? 1U : 0U;
      isText = byte != '"';
    } else if (byte == '"') {
      isText = true;
    } else if (byte == '{' || byte == '[') {
      if (++depth > deepest) {
        return true;
      }
    } else if (byte == '}' || byte == ']') {
      --depth;
    }
  }
  return false;
}

Json parsed(std::string_view payload) {
  if (payload.size() > largestMessage) {
    throw Refusal("larger than a mebibyte");
  }
  if (isTooDeep(payload)) {
    throw Refusal("nested too deeply");
  }
  Json message = Json::parse(payload, nullptr, false);
  if (!message.is_object()) {
    throw Refusal("not a JSON object");
  }
  return message;
}

const Json& member(const Json& object, const char* name) {
  const auto found = object.is_object() ? object.find(name) : object.end();
  if (!object.is_object() || found == object.end()) {
    refuseField();
  }
  return *found;
}

std::uint64_t numberOf(const Json& object, const char* name, std::uint64_t greatest = greatestNumber) {
  const Json& value = member(object, name);
  if (!value.is_number_unsigned() || value.get<std::uint64_t>() > greatest) {
    refuseField();
  }
  return value.get<std::uint64_t>();
}

std::string textOf(const Json& object, const char* name) {
  const Json& value = member(object, name);
  if (!value.is_string()) {
    refuseField();
  }
  return value.get<std::string>();
}

void require(bool isValid) {
  if (!isValid) {
    refuseField();
  }
}

void requireNumberOrNull(const Json& object, const char* name) {
  const Json& value = member(object, name);
  require(value.is_number() || value.is_null());
}

void requireTextOrNull(const Json& object, const char* name) {
  const Json& value = member(object, name);
  require(value.is_string() || value.is_null());
}

void requireScoreOrNull(const Json& object) {
  require(member(object, "score").is_null() || numberOf(object, "score") <= greatestNumber);
}

void checkDetection(const Json& detection) {
  for (const char* coordinate : {"coord1", "coord2", "coord3", "coord4"}) {
    requireNumberOrNull(detection, coordinate);
  }
  numberOf(detection, "objectId");
  numberOf(detection, "score");
  textOf(detection, "className");
  textOf(detection, "status");
  const Json& attributes = member(detection, "attributes");
  require(attributes.is_array());
  for (const Json& attribute : attributes) {
    textOf(attribute, "typeName");
    requireTextOrNull(attribute, "className");
    requireScoreOrNull(attribute);
  }
}

void checkEvent(const Json& event) {
  textOf(event, "action");
  require(member(event, "objectId").is_number_integer());
  const Json& ids = member(event, "objectIds");
  require(ids.is_array() && std::all_of(ids.begin(), ids.end(), [](const Json& id) { return id.is_number_integer(); }));
}

void checkCounts(const Json& ofClass) {
  textOf(ofClass, "className");
  numberOf(ofClass, "objects");
  numberOf(ofClass, "most");
}

const Json& checkedArray(const Json& message, const char* name, void (*check)(const Json&)) {
  const Json& array = member(message, name);
  require(array.is_array());
  std::for_each(array.begin(), array.end(), check);
  return array;
}

std::string startOf(const Json& message) {
  std::string start = textOf(message, "start");
  constexpr std::size_t length = 16;
  require(start.size() == length && start.find_first_not_of("0123456789abcdef") == std::string::npos);
  return start;
}

/** Site, device and camera, which the topic names too: a broker's rules are about topics. */
Origin originOf(const Json& message, const FleetTopic& topic) {
  Origin origin{textOf(message, "site"), textOf(message, "device"), startOf(message)};
  const bool isOfTopic = origin.site == topic.site && origin.device == topic.device &&
                         (topic.camera == 0 || numberOf(message, "camera") == static_cast<std::uint64_t>(topic.camera));
  if (!isOfTopic) {
    throw Refusal("another camera than that of the topic");
  }
  return origin;
}

bool hasSchema(const Json& message, const char* schema) {
  const auto found = message.find("schema");
  return found != message.end() && *found == schema;
}

void requireSchema(const Json& message, const char* schema) {
  if (!hasSchema(message, schema)) {
    throw Refusal("another schema");
  }
}

CollectedFrame frameOf(const Json& message, const FleetTopic& topic, std::string_view payload) {
  const bool isOfCounts = hasSchema(message, countsSchema);
  if (!isOfCounts) {
    requireSchema(message, frameSchema);
  }
  CollectedFrame frame;
  frame.origin = originOf(message, topic);
  const std::uint64_t sequence = numberOf(message, "sequence");
  const Json& clockSet = member(message, "clockSet");
  require(sequence > 0 && clockSet.is_boolean());
  frame.envelope = {topic.camera, sequence, static_cast<std::int64_t>(numberOf(message, "arrival")),
                    clockSet.get<bool>()};
  frame.timestamp = numberOf(message, "timestamp", std::numeric_limits<std::uint64_t>::max());
  if (isOfCounts) {
    frame.counts = checkedArray(message, "classes", checkCounts);
  } else {
    frame.detections = checkedArray(message, "detections", checkDetection);
    frame.events = checkedArray(message, "events", checkEvent);
  }
  frame.checksum = static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const unsigned char*>(payload.data()), static_cast<uInt>(payload.size())));
  return frame;
}

CollectedNote noteOf(const Json& message, const FleetTopic& topic) {
  requireSchema(message, droppedSchema);
  CollectedNote note;
  note.origin = originOf(message, topic);
  note.frames = {topic.camera, note.origin.start, numberOf(message, "first"), numberOf(message, "last")};
  require(note.frames.first > 0 && note.frames.first <= note.frames.last);
  return note;
}

/** A text that is part of a key, which a database bounds. */
std::string shortTextOf(const Json& object, const char* name) {
  constexpr std::size_t longest = 500;
  std::string text = textOf(object, name);
  require(text.size() <= longest);
  return text;
}

CollectedCamera cameraOf(const Json& camera) {
  const auto number = static_cast<int>(numberOf(camera, "camera", std::numeric_limits<int>::max()));
  return {number, shortTextOf(camera, "state"), shortTextOf(camera, "reason"),
          static_cast<std::int64_t>(numberOf(camera, "since")), numberOf(camera, "numbered")};
}

CollectedStatus statusOf(const Json& message, const FleetTopic& topic, std::string_view payload) {
  requireSchema(message, statusSchema);
  CollectedStatus status{originOf(message, topic), textOf(message, "state"), {}, std::string(payload)};
  require(status.state == "running" || status.state == "stopped" || status.state == "gone");
  if (status.state != "gone") {
    const Json& cameras = member(message, "cameras");
    require(cameras.is_array());
    std::transform(cameras.begin(), cameras.end(), std::back_inserter(status.cameras), cameraOf);
  }
  return status;
}

}  // namespace

CollectedMessage readMessage(std::string_view topic, std::string_view payload) {
  const auto parts = parseTopic(topic);
  if (!parts) {
    throw Refusal("not a topic of a fleet");
  }
  const Json message = parsed(payload);
  switch (parts->kind) {
    case FleetTopic::Kind::Frames:
      return frameOf(message, *parts, payload);
    case FleetTopic::Kind::Dropped:
      return noteOf(message, *parts);
    case FleetTopic::Kind::Status:
      return statusOf(message, *parts, payload);
    case FleetTopic::Kind::Stored:
      break;
  }
  throw Refusal("not a topic of a fleet");
}

}  // namespace tarn::command
