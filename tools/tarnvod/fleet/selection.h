// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SELECTION_H
#define TARNVOD_COMMAND_SELECTION_H

#include <tarnvod/detection_data.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace tarn::command {

/** Which frames are sent. */
struct SelectionOptions {
  std::uint64_t every = 1;   ///< one of so many
  bool changesOnly = false;  ///< only frames with events, or with other objects than the last one that was sent
  bool countsOnly = false;   ///< instead of frames, what was counted in each second
};

/** Chooses frames of one camera. Not thread-safe. */
class Selection {
 public:
  explicit Selection(const SelectionOptions& options) : options_(options) {}

  /** Whether the next frame is sent. The first one always is. */
  bool takes(const VOD::DetectionData& frame);

 private:
  /** Ids with classes. */
  using Objects = std::set<std::pair<std::uint32_t, std::string>>;

  const SelectionOptions options_;
  std::uint64_t seen_ = 0;
  std::optional<Objects> sent_;
};

}  // namespace tarn::command

#endif
