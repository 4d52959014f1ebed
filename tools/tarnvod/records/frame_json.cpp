// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/frame_json.h"

#include "base/text.h"
#include "detection-data/record_members.h"
#include "records/json.h"

#include <nlohmann/json.hpp>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <type_traits>
#include <vector>

namespace tarn::command {
namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void write(Writer& writer, int number) {
  writer.Int(number);
}

void write(Writer& writer, std::uint32_t number) {
  writer.Uint(number);
}

void write(Writer& writer, std::uint64_t number) {
  writer.Uint64(number);
}

/** With the digits that read back as the same float; RapidJSON knows only those of a double. */
void write(Writer& writer, float number) {
  if (!std::isfinite(number)) {
    writer.Null();
    return;
  }
  std::array<char, 64> text{};
  const char* const end = nlohmann::detail::to_chars(text.data(), text.data() + text.size(), number);
  writer.RawValue(text.data(), static_cast<std::size_t>(end - text.data()), rapidjson::kNumberType);
}

/** Names are almost always printable ASCII; the others are checked and escaped where all other JSON text is. */
void write(Writer& writer, const std::string& text) {
  if (std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' ' && byte <= '~'; })) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    return;
  }
  const std::string escaped = oneLine(Json(text));
  writer.RawValue(escaped.data(), escaped.size() - 1, rapidjson::kStringType);
}

/** By name. */
template <typename Enumeration>
std::enable_if_t<std::is_enum_v<Enumeration>> write(Writer& writer, Enumeration value) {
  thread_local std::map<Enumeration, std::string> names;  // printing a name takes far longer than finding it
  const auto [entry, isNew] = names.try_emplace(value);
  if (isNew) {
    entry->second = nameOf(value);
  }
  write(writer, entry->second);
}

template <typename Record, typename = decltype(VOD::MemberList<Record>::members)>
void write(Writer& writer, const Record& record);

template <typename Value>
void write(Writer& writer, const std::optional<Value>& value) {
  value ? write(writer, *value) : static_cast<void>(writer.Null());
}

template <typename Value>
void write(Writer& writer, const std::vector<Value>& values) {
  writer.StartArray();
  for (const Value& value : values) {
    write(writer, value);
  }
  writer.EndArray();
}

template <typename Record>
void writeMembers(Writer& writer, const Record& record) {
  VOD::visitMembers(record, [&writer](const char* name, const auto& value) {
    writer.Key(name);
    write(writer, value);
  });
}

template <typename Record, typename>
void write(Writer& writer, const Record& record) {
  writer.StartObject();
  writeMembers(writer, record);
  writer.EndObject();
}

template <typename Value>
void write(Writer& writer, const char* name, const Value& value) {
  writer.Key(name);
  write(writer, value);
}

/** A frame's object; `writeHead` adds members behind the schema. */
template <typename WriteHead>
std::string frameObject(const VOD::DetectionData& frame, int camera, WriteHead writeHead) {
  rapidjson::StringBuffer buffer;
  Writer writer(buffer);
  writer.StartObject();
  writer.Key("schema");
  writer.String(frameSchema);
  writeHead(writer);
  write(writer, "camera", camera);
  writeMembers(writer, frame);
  writer.EndObject();
  return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace

std::string frameJson(const VOD::DetectionData& frame, int camera) {
  return frameObject(frame, camera, [](Writer&) {});
}

std::string frameJson(const VOD::DetectionData& frame, const Origin& origin, const Envelope& envelope) {
  return frameObject(frame, envelope.camera, [&](Writer& writer) {
    write(writer, "site", origin.site);
    write(writer, "device", origin.device);
    write(writer, "start", origin.start);
    write(writer, "sequence", envelope.sequence);
    writer.Key("arrival");
    writer.Int64(envelope.arrival);
    writer.Key("clockSet");
    writer.Bool(envelope.clockSet);
  });
}

}  // namespace tarn::command
