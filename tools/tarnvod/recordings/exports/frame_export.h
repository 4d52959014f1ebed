// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FRAME_EXPORT_H
#define TARNVOD_COMMAND_FRAME_EXPORT_H

#include "base/replaced_file.h"
#include "recordings/detector.h"
#include "recordings/recording_scan.h"
#include "records/box.h"

#include <cstdint>
#include <memory>
#include <string>

/** A recording in the formats of other tools. */
namespace tarn::command {

/** Writes one frame after the other; never holds more than a few. */
class FrameExport {
 public:
  FrameExport() = default;
  virtual ~FrameExport() = default;
  FrameExport(const FrameExport&) = delete;
  FrameExport& operator=(const FrameExport&) = delete;

  virtual void add(const ScannedScene& scanned) = 0;
  /** Completes the file and gives it its name. Without this call no file is left. */
  virtual void finish() = 0;
};

/** A picture's size in pixels. */
struct PixelSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

/** One line for each detection and each event. */
std::unique_ptr<FrameExport> makeCsvExport(const std::string& path, const SceneNames& names);

/** The text format of the MOTChallenge: one line for each detection, in pixels. */
std::unique_ptr<FrameExport> makeMotExport(const std::string& path, const PixelSize& size, const BoxConvention& boxes);

/** A database with one table for each kind of record. */
std::unique_ptr<FrameExport> makeSqliteExport(const std::string& path, const SceneNames& names);

/** The scenes as they came, with their schema. @param detector  the serialized description of the detector */
std::unique_ptr<FrameExport> makeMcapExport(const std::string& path, const std::string& detector);

}  // namespace tarn::command

#endif
