// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/frame_json.h"

#include "base/text.h"
#include "detection-data/record_members.h"
#include "records/json.h"

#include <nlohmann/json.hpp>

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

template <typename Integer>
std::enable_if_t<std::is_integral_v<Integer>> write(TextBuffer& text, Integer number) {
  text.append(number);
}

void write(TextBuffer& text, bool value) {
  text.append(value ? "true" : "false");
}

/** With the digits that read back as the same float, of which there can be several; these are the ones of all other JSON text. */
void write(TextBuffer& text, float number) {
  if (!std::isfinite(number)) {
    text.append("null");
    return;
  }
  std::array<char, 64> digits{};
  const char* const end = nlohmann::detail::to_chars(digits.data(), digits.data() + digits.size(), number);
  text.append({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

bool isPlain(char byte) {
  return byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\';
}

/** Names are almost always plain ASCII; the others are checked and escaped where all other JSON text is. */
void write(TextBuffer& text, const std::string& value) {
  if (std::all_of(value.begin(), value.end(), isPlain)) {
    text.append('"');
    text.append(value);
    text.append('"');
    return;
  }
  const std::string escaped = oneLine(Json(value));
  text.append({escaped.data(), escaped.size() - 1});
}

/** By name. */
template <typename Enumeration>
std::enable_if_t<std::is_enum_v<Enumeration>> write(TextBuffer& text, Enumeration value) {
  thread_local std::map<Enumeration, std::string> names;  // printing a name takes far longer than finding it
  const auto [entry, isNew] = names.try_emplace(value);
  if (isNew) {
    entry->second = nameOf(value);
  }
  write(text, entry->second);
}

template <typename Record, typename = decltype(VOD::MemberList<Record>::members)>
void write(TextBuffer& text, const Record& record);

template <typename Value>
void write(TextBuffer& text, const std::optional<Value>& value) {
  value ? write(text, *value) : text.append("null");
}

template <typename Value>
void write(TextBuffer& text, const std::vector<Value>& values) {
  text.append('[');
  bool isFirst = true;
  for (const Value& value : values) {
    if (!isFirst) {
      text.append(',');
    }
    isFirst = false;
    write(text, value);
  }
  text.append(']');
}

template <typename Value>
void writeMember(TextBuffer& text, std::string_view name, const Value& value) {
  text.append('"');
  text.append(name);
  text.append("\":");
  write(text, value);
}

template <typename Record>
void writeMembers(TextBuffer& text, const Record& record) {
  bool isFirst = true;
  VOD::visitMembers(record, [&](const char* name, const auto& value) {
    if (!isFirst) {
      text.append(',');
    }
    isFirst = false;
    writeMember(text, name, value);
  });
}

template <typename Record, typename>
void write(TextBuffer& text, const Record& record) {
  text.append('{');
  writeMembers(text, record);
  text.append('}');
}

template <typename Value>
void writeHeadMember(TextBuffer& text, std::string_view name, const Value& value) {
  writeMember(text, name, value);
  text.append(',');
}

void writeSchema(TextBuffer& text) {
  text.append("{\"schema\":\"");
  text.append(frameSchema);
  text.append("\",");
}

void writeFrame(TextBuffer& text, const VOD::DetectionData& frame, int camera) {
  writeHeadMember(text, "camera", camera);
  writeMembers(text, frame);
  text.append('}');
}

}  // namespace

void appendFrameJson(TextBuffer& text, const VOD::DetectionData& frame, int camera) {
  writeSchema(text);
  writeFrame(text, frame, camera);
}

void appendFrameJson(TextBuffer& text, const VOD::DetectionData& frame, const Origin& origin,
                     const Envelope& envelope) {
  writeSchema(text);
  writeHeadMember(text, "site", origin.site);
  writeHeadMember(text, "device", origin.device);
  writeHeadMember(text, "start", origin.start);
  writeHeadMember(text, "sequence", envelope.sequence);
  writeHeadMember(text, "arrival", envelope.arrival);
  writeHeadMember(text, "clockSet", envelope.clockSet);
  writeFrame(text, frame, envelope.camera);
}

std::string frameJson(const VOD::DetectionData& frame, int camera) {
  TextBuffer text;
  appendFrameJson(text, frame, camera);
  return std::string(text.text());
}

std::string frameJson(const VOD::DetectionData& frame, const Origin& origin, const Envelope& envelope) {
  TextBuffer text;
  appendFrameJson(text, frame, origin, envelope);
  return std::string(text.text());
}

}  // namespace tarn::command
