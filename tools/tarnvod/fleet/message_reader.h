// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_MESSAGE_READER_H
#define TARNVOD_COMMAND_MESSAGE_READER_H

#include "fleet/frame_range.h"
#include "records/envelope.h"
#include "records/json.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/** What others send on the topics of a fleet, checked: anybody may have sent it. */
namespace tarn::command {

/** A message that is not one of a fleet; `what` is one of a few texts, which are counted. */
class Refusal : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/** A frame, or the counts of a second. Of the JSON arrays, everything that is stored has been checked. */
struct CollectedFrame {
  Origin origin;
  Envelope envelope;
  std::uint64_t timestamp = 0;
  Json detections;
  Json events;
  Json counts;                 ///< of classes; empty for a frame
  std::uint32_t checksum = 0;  ///< of the message
};

/** That frames were dropped by the device. */
struct CollectedNote {
  Origin origin;
  FrameRange frames;
};

/** A camera's part of a status. */
struct CollectedCamera {
  int camera = 0;
  std::string state;
  std::string reason;
  std::int64_t since = 0;
  std::uint64_t numbered = 0;
};

struct CollectedStatus {
  Origin origin;
  std::string state;
  std::vector<CollectedCamera> cameras;
  std::string text;  ///< the whole message
};

using CollectedMessage = std::variant<CollectedFrame, CollectedNote, CollectedStatus>;

/** The largest message that is read, in bytes. */
inline constexpr std::size_t largestMessage = 1U << 20U;

/**
 * Reads a message. Takes memory in proportion to the payload, of at most `largestMessage` bytes, however it is nested.
 *
 * @throw Refusal  when topic and payload are not a valid message of a fleet, or do not belong together
 */
CollectedMessage readMessage(std::string_view topic, std::string_view payload);

}  // namespace tarn::command

#endif
