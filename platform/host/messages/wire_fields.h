// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_MESSAGES_WIRE_FIELDS_H
#define VOD_HOST_MESSAGES_WIRE_FIELDS_H

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/wire_format_lite.h>

#include <cstdint>
#include <string_view>

namespace vod::host {

/** One field of a serialized message: its tag, and its bytes including the tag, which form a message with one field.
 */
struct Field {
  std::uint32_t tag;
  std::string_view bytes;
};

/**
 * Calls `visit` with each field of a message until it returns false.
 *
 * @return the size of the message, or the offset of the first field that is malformed or for which `visit` returned
 * false
 */
template <typename Visit>
std::size_t forEachField(std::string_view message, Visit visit) {
  google::protobuf::io::CodedInputStream input(reinterpret_cast<const std::uint8_t*>(message.data()),
                                               static_cast<int>(message.size()));
  while (true) {
    const auto begin = static_cast<std::size_t>(input.CurrentPosition());
    const std::uint32_t tag = input.ReadTag();
    if (tag == 0) {
      return begin;
    }
    if (!google::protobuf::internal::WireFormatLite::SkipField(&input, tag)) {
      return begin;
    }
    const auto end = static_cast<std::size_t>(input.CurrentPosition());
    if (!visit(Field{tag, message.substr(begin, end - begin)})) {
      return begin;
    }
  }
}

}  // namespace vod::host

#endif
