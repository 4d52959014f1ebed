// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "commands/watch_display.h"

#include "base/keyboard.h"
#include "base/output.h"
#include "base/terminal.h"
#include "records/frame_json.h"
#include "records/frame_text.h"

#include <optional>

namespace tarn::command {
namespace {

/** Frames on standard output, at once and one a line; all else on standard error. */
class LineDisplay : public WatchDisplay {
 public:
  explicit LineDisplay(bool json) : json_(json) {}

  void showFrame(const VOD::DetectionData& frame, int camera) override {
    if (json_) {
      line_.clear();
      appendFrameJson(line_, frame, camera);
      line_.append('\n');
      standardOutput().write(line_.text());
    } else {
      standardOutput().writeText(frameLine(frame, camera));
    }
  }
  void printStatusChange(const std::string& change) override { printMessage("tarnvod: " + change); }
  bool endRequested() override { return false; }
  void refresh(const WatchedCameras& /*cameras*/, Clock::time_point /*now*/) override {}
  void printAtEnd(const std::string& line) override { printMessage("tarnvod: " + line); }

 private:
  const bool json_;
  TextBuffer line_;  // keeps its memory from frame to frame
};

/** A table that is redrawn in place; each camera's line in it says how the camera is. */
class TableDisplay : public WatchDisplay {
 public:
  TableDisplay() : screen_(std::in_place, standardOutput()) {}

  void showFrame(const VOD::DetectionData& /*frame*/, int /*camera*/) override {}
  void printStatusChange(const std::string& /*change*/) override {}
  bool endRequested() override { return keyboard_.wasPressed('q'); }
  void refresh(const WatchedCameras& cameras, Clock::time_point now) override {
    if (now - drawnAt_ >= redrawPeriod) {
      screen_->draw(watchTable(cameras, screen_->size(), now));
      drawnAt_ = now;
    }
  }
  void printAtEnd(const std::string& line) override {
    screen_.reset();
    standardOutput().writeText(line + '\n');
  }

 private:
  static constexpr std::chrono::milliseconds redrawPeriod{100};

  Keyboard keyboard_;
  std::optional<Screen> screen_;
  Clock::time_point drawnAt_;
};

}  // namespace

std::unique_ptr<WatchDisplay> makeWatchDisplay(bool json) {
  if (!json && canRedraw(standardOutput())) {
    return std::make_unique<TableDisplay>();
  }
  return std::make_unique<LineDisplay>(json);
}

}  // namespace tarn::command
