// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FLEET_MESSAGES_H
#define TARNVOD_COMMAND_FLEET_MESSAGES_H

#include "fleet/frame_range.h"
#include "fleet/sender_figures.h"
#include "fleet/spool.h"
#include "records/envelope.h"
#include "records/json.h"

#include <tarnvod/camera_status.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/** The messages of a fleet apart from frames, each with a JSON Schema of its name. */
namespace tarn::command {

inline constexpr const char* droppedSchema = "tarnvod.dropped/1";
inline constexpr const char* statusSchema = "tarnvod.status/1";
inline constexpr const char* storedSchema = "tarnvod.stored/1";

/** That the device has dropped frames. The start of the range may be an earlier one of the device. */
std::string droppedJson(const Origin& origin, const FrameRange& frames);

/** What of a device a collector has stored: frames, and notes that frames were dropped. */
struct StoredFrames {
  std::vector<FrameRange> frames;
  std::vector<FrameRange> dropped;
};

std::string storedJson(const std::string& site, const std::string& device, const StoredFrames& stored);
/** None if the text is not such a message. */
std::optional<StoredFrames> parseStored(std::string_view text);

/** A camera's part of the status. */
struct CameraReport {
  VOD::CameraStatus status;
  std::int64_t since = 0;        ///< when the state began, by the wall clock in microseconds
  std::uint64_t numbered = 0;    ///< the latest sequence number in the spool
  std::uint64_t overflowed = 0;  ///< numbered frames that were dropped because the disk did not keep up
  std::optional<VOD::DetectorInformation> detector;
};

/** How a publisher and its cameras are. */
struct PublisherReport {
  std::string state;           ///< "running" or "stopped"
  std::int64_t startedAt = 0;  ///< by the wall clock in microseconds
  std::vector<CameraReport> cameras;
  Spool::Figures spool;
  std::uint64_t spoolLimit = 0;  ///< bytes
  SenderFigures sender;
  bool keepsUntilStored = false;  ///< frames stay in the spool until a collector has stored them
};

std::string statusJson(const Origin& origin, const PublisherReport& report);

/** What the broker publishes in the publisher's place when that goes away without a word. */
std::string goneJson(const Origin& origin);

}  // namespace tarn::command

#endif
