// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/exports/frame_export.h"
#include "recordings/exports/mcap_file.h"
#include "recordings/exports/message_schema.h"

#include <algorithm>
#include <limits>

namespace tarn::command {
namespace {

constexpr std::uint16_t sceneChannel = 1;
constexpr std::uint16_t detectorChannel = 2;

std::uint64_t nanoseconds(std::uint64_t microseconds) {
  constexpr std::uint64_t factor = 1000;
  return std::min(microseconds, std::numeric_limits<std::uint64_t>::max() / factor) * factor;
}

std::uint64_t logTimeOf(const ScannedScene& scanned) {
  return nanoseconds(scanned.arrival && scanned.arrival->wallClock >= 0
                         ? static_cast<std::uint64_t>(scanned.arrival->wallClock)
                         : scanned.scene.timestamp());
}

class McapExport : public FrameExport {
 public:
  McapExport(const std::string& path, std::string detector) : file_(path), detector_(std::move(detector)) {
    file_.addChannel("/scenes", "VOD.Scene", messageSchema());
    file_.addChannel("/detector-information", "VOD.DetectorInformation", messageSchema());
  }

  void add(const ScannedScene& scanned) override {
    const std::uint64_t logged = logTimeOf(scanned);
    const std::uint64_t published = nanoseconds(scanned.scene.timestamp());
    if (!detectorIsWritten_) {
      file_.addMessage(detectorChannel, logged, published, detector_);
      detectorIsWritten_ = true;
    }
    file_.addMessage(sceneChannel, logged, published, scanned.bytes);
  }

  void finish() override { file_.finish(); }

 private:
  McapFile file_;
  const std::string detector_;
  bool detectorIsWritten_ = false;
};

}  // namespace

std::unique_ptr<FrameExport> makeMcapExport(const std::string& path, const std::string& detector) {
  return std::make_unique<McapExport>(path, detector);
}

}  // namespace tarn::command
