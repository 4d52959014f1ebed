// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "records/record_size.h"

#include "detection-data/record_members.h"

#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace tarn::command {
namespace {

// What a value holds outside of itself.

template <typename Value>
std::enable_if_t<std::is_arithmetic_v<Value> || std::is_enum_v<Value>, std::size_t> heldBy(Value /*value*/) {
  return 0;
}

std::size_t heldBy(const std::string& text) {
  return text.size();
}

template <typename Record, typename = decltype(VOD::MemberList<Record>::members)>
std::size_t heldBy(const Record& record);

template <typename Value>
std::size_t heldBy(const std::optional<Value>& value) {
  return value ? heldBy(*value) : 0;
}

template <typename Value>
std::size_t heldBy(const std::vector<Value>& values) {
  std::size_t bytes = values.size() * sizeof(Value);
  for (const Value& value : values) {
    bytes += heldBy(value);
  }
  return bytes;
}

template <typename Record, typename>
std::size_t heldBy(const Record& record) {
  std::size_t bytes = 0;
  VOD::visitMembers(record, [&bytes](const char* /*name*/, const auto& value) { bytes += heldBy(value); });
  return bytes;
}

}  // namespace

std::size_t sizeOf(const VOD::DetectionData& frame) {
  return sizeof frame + heldBy(frame);
}

}  // namespace tarn::command
