// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/options.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "cameras/camera_choice.h"
#include "cameras/camera_group.h"
#include "cameras/camera_options.h"
#include "commands/subcommands.h"
#include "commands/watch_display.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <string>

namespace tarn::command {
namespace {

struct WatchOptions {
  CameraOptions cameras;
  Limits limits;
  bool json = false;
};

/** Receives the cameras' frames and shows them until it is asked to end. */
class Watch {
 public:
  explicit Watch(const WatchOptions& options)
      : limits_(options.limits),
        json_(options.json),
        group_(awaitCameras(options.cameras.cameras, options.limits), options.cameras.request()) {}

  void run() {
    group_.connect();
    display_ = makeWatchDisplay(json_);
    while (!isDone() && !isAskedToEnd()) {
      if (auto arrival = group_.next()) {
        show(*arrival);
      }
      tick();
    }
    elapsed_ = Clock::now() - start_;
  }

  /** Prints what was seen. @throw Failure  when a camera sent no frame */
  void summarize() {
    for (const WatchedCamera& camera : group_.cameras()) {
      display_->printAtEnd(watchSummary(camera, elapsed_));
    }
    if (group_.dropped() > 0) {
      display_->printAtEnd(counted(group_.dropped(), "frame") + " could not be shown: the output took too long");
    }
    display_.reset();
    for (const WatchedCamera& camera : group_.cameras()) {
      if (camera.statistics.frames() == 0 && !wasAskedToEnd_) {
        const std::string problem = problemOf(camera.camera.status(), Clock::now());
        throw Failure("camera " + std::to_string(camera.number) + ": no frame came" +
                      (problem.empty() ? "" : "; " + problem));
      }
    }
  }

 private:
  bool hasEnough(const WatchedCamera& camera) const {
    return limits_.frames && camera.statistics.frames() >= *limits_.frames;
  }

  bool isAskedToEnd() {
    wasAskedToEnd_ = stopRequested() || display_->endRequested();
    return wasAskedToEnd_;
  }

  bool isDone() const {
    return limits_.reachedBy(Clock::now() - start_) ||
           std::all_of(group_.cameras().begin(), group_.cameras().end(),
                       [this](const auto& camera) { return hasEnough(camera); });
  }

  void show(const Arrival& arrival) {
    WatchedCamera& camera = group_.cameraOf(arrival);
    if (hasEnough(camera)) {
      return;
    }
    reportStatusChanges();
    camera.statistics.add(*arrival.frame, arrival.at);
    display_->showFrame(*arrival.frame, arrival.camera);
  }

  void tick() {
    const Clock::time_point now = Clock::now();
    reportStatusChanges();
    display_->refresh(group_.cameras(), now);
  }

  void reportStatusChanges() {
    group_.reportStatusChanges([this](const std::string& change) { display_->printStatusChange(change); });
  }

  const Limits limits_;
  const bool json_;
  CameraGroup group_;
  std::unique_ptr<WatchDisplay> display_;
  const Clock::time_point start_ = Clock::now();
  Clock::duration elapsed_{0};
  bool wasAskedToEnd_ = false;
};

int watch(const WatchOptions& options) {
  Watch session(options);
  session.run();
  session.summarize();
  return success;
}

}  // namespace

Action defineWatch(CLI::App& command) {
  const auto options = std::make_shared<WatchOptions>();
  addCameraOptions(command, options->cameras, "camera,--camera");
  addLimits(command, options->limits, "End after N frames of each camera");
  command.add_flag("--json", options->json, "Print each frame as a JSON object on a line");
  return [options] { return watch(*options); };
}

}  // namespace tarn::command
