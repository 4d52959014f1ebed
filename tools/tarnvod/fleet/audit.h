// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_AUDIT_H
#define TARNVOD_COMMAND_AUDIT_H

#include "base/database.h"
#include "fleet/frame_range.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/** The accounts of a collector's database. */
namespace tarn::command {

struct AuditOptions {
  std::int64_t late = 10'000'000;  ///< microseconds from arrival to storage above which a frame is late
  bool fromFirstStored = false;    ///< what the device numbered before the first frame that is stored does not count
};

/**
 * One camera's frames over all starts of its publisher. Each number that the device has used is stored, dropped, waiting
 * or missing.
 */
struct CameraAccount {
  std::string site;
  std::string device;
  int camera = 0;
  std::uint64_t starts = 0;
  std::uint64_t numbered = 0;
  std::uint64_t stored = 0;
  std::uint64_t dropped = 0;  ///< by the device, as it has reported
  std::uint64_t waiting = 0;  ///< behind what is stored of a publisher that runs
  std::uint64_t missing = 0;
  std::uint64_t late = 0;                    ///< stored, but late; only frames whose clock was set
  std::uint64_t repeated = 0;                ///< came again and were not stored again
  std::uint64_t conflicting = 0;             ///< other frames of a number that is stored; were not stored
  std::optional<std::int64_t> missingSince;  ///< arrival of the last frame before the first that is missing, if any
  std::vector<FrameRange> missingFrames;     ///< the first of them, at most `mostRanges`

  static constexpr std::size_t mostRanges = 100;
};

/** One account for each camera, in order of site, device and camera. @throw Failure when it is not such a database */
std::vector<CameraAccount> audit(const Database& database, const AuditOptions& options);

}  // namespace tarn::command

#endif
