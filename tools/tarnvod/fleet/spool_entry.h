// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SPOOL_ENTRY_H
#define TARNVOD_COMMAND_SPOOL_ENTRY_H

#include "fleet/frame_range.h"

#include <optional>
#include <string>
#include <string_view>

namespace tarn::command {

/** What waits in a spool: one frame, or the note that some were dropped. */
struct SpoolEntry {
  enum class Kind : char { Frame = 'f', Dropped = 'd' };

  Kind kind = Kind::Frame;
  FrameRange frames;    ///< of a frame, a range of one
  std::string payload;  ///< the message; empty for a note
};

/** The entry as bytes: a line with kind, camera, start, first and last number, and the payload. */
std::string encoded(const SpoolEntry& entry);

/** The entry of these bytes; none if they are not one. */
std::optional<SpoolEntry> decodedSpoolEntry(std::string_view bytes);

}  // namespace tarn::command

#endif
