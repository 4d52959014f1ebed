// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "camera_link.h"
#include "command.h"
#include "errors.h"
#include "link_news.h"
#include "options.h"
#include "service.h"
#include "stop_signal.h"
#include "text.h"
#include "watch_display.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

/** Enough for a short stall of the reader. */
constexpr std::size_t arrivalQueueCapacity = 256;
constexpr std::chrono::milliseconds arrivalWait{50};

struct WatchOptions {
  std::vector<int> cameras;
  std::vector<std::string> classes;
  bool allClasses = false;
  std::optional<std::array<float, 4>> region;
  Limits limits;
  bool json = false;
};

/** The library's thread of retries, for as long as this lives. */
class RetryThread {
 public:
  RetryThread() { VOD::Handler::initialize(static_cast<int>(retryPeriod.count())); }
  ~RetryThread() { VOD::Handler::deinitialize(); }
  RetryThread(const RetryThread&) = delete;
  RetryThread& operator=(const RetryThread&) = delete;
};

Request requestOf(const WatchOptions& options) {
  Request request;
  request.classes.insert(options.classes.begin(), options.classes.end());
  if (options.region) {
    const auto& [a, b, c, d] = *options.region;
    request.region = VOD::VodChannelConfiguration{a, b, c, d};
  }
  return request;
}

/** Receives the cameras' frames and shows them until told to end. */
class Watch {
 public:
  explicit Watch(const WatchOptions& options) : limits_(options.limits), json_(options.json) {
    const std::set<int> numbers(options.cameras.begin(), options.cameras.end());
    const std::uint32_t channels = VOD::Handler::getNumberOfChannels();
    for (const int camera : numbers) {
      checkCameraExists(camera, channels);
      cameras_.emplace_back(camera, requestOf(options), queue_);
    }
    news_.resize(cameras_.size());
  }

  void run() {
    for (WatchedCamera& camera : cameras_) {
      camera.link.connect();
    }
    display_ = makeWatchDisplay(json_);
    while (!isDone()) {
      if (auto arrival = queue_->popWithin(arrivalWait)) {
        show(*arrival);
      }
      tick();
    }
    elapsed_ = Clock::now() - start_;
  }

  /** Tells what was seen. @throw Failure when a camera gave nothing at all */
  void summarize() {
    for (const WatchedCamera& camera : cameras_) {
      display_->tellAtEnd(watchSummary(camera, elapsed_));
    }
    if (queue_->dropped() > 0) {
      display_->tellAtEnd(counted(queue_->dropped(), "frame") + " could not be shown: the output took too long");
    }
    display_.reset();
    for (const WatchedCamera& camera : cameras_) {
      if (camera.statistics.frames() == 0 && !stopRequested()) {
        throw Failure("camera " + std::to_string(camera.link.camera()) + ": no frame came" +
                      (camera.link.problem(Clock::now()).empty() ? "" : "; " + camera.link.problem(Clock::now())));
      }
    }
  }

 private:
  bool hasEnough(const WatchedCamera& camera) const {
    return limits_.frames && camera.statistics.frames() >= *limits_.frames;
  }

  bool isDone() const {
    return stopRequested() || limits_.reachedBy(Clock::now() - start_) ||
           std::all_of(cameras_.begin(), cameras_.end(), [this](const auto& camera) { return hasEnough(camera); });
  }

  void show(const Arrival& arrival) {
    const auto camera = std::find_if(cameras_.begin(), cameras_.end(),
                                     [&](const WatchedCamera& each) { return each.link.camera() == arrival.camera; });
    if (hasEnough(*camera) || !camera->link.accept(arrival)) {
      return;
    }
    tellNews();
    camera->statistics.add(*arrival.frame, arrival.at);
    display_->showFrame(*arrival.frame, arrival.camera);
  }

  void tick() {
    const Clock::time_point now = Clock::now();
    for (WatchedCamera& camera : cameras_) {
      camera.link.tick(now);
    }
    tellNews();
    display_->refresh(cameras_, now);
  }

  void tellNews() {
    for (std::size_t index = 0; index < cameras_.size(); ++index) {
      if (const auto news = news_[index].next(cameras_[index].link, Clock::now())) {
        display_->tell(*news);
      }
    }
  }

  const Limits limits_;
  const bool json_;
  const std::shared_ptr<ArrivalQueue> queue_ = std::make_shared<ArrivalQueue>(arrivalQueueCapacity);
  WatchedCameras cameras_;
  std::vector<LinkNews> news_;
  std::unique_ptr<WatchDisplay> display_;
  const Clock::time_point start_ = Clock::now();
  Clock::duration elapsed_{0};
};

int watch(const WatchOptions& options) {
  const RetryThread retryThread;
  Watch session(options);
  session.run();
  session.summarize();
  return success;
}

}  // namespace

void addWatch(CLI::App& app, Action& action) {
  const auto options = std::make_shared<WatchOptions>();
  CLI::App* command = app.add_subcommand("watch", "Show what cameras see, as it comes");
  takesCameraNumbers(
      *command->add_option("--camera", options->cameras, "Cameras, counted from 1; several may be given")->required());
  auto* all = command->add_flag("--all-classes", options->allClasses,
                                "All classes that the detector knows; so it is when no class is named");
  command->add_option("--class", options->classes, "Only objects of these classes, named as 'tarnvod info' shows them")
      ->type_name("NAME ...")
      ->excludes(all);
  addFourNumbers(*command, "--roi", options->region,
                 "Region of interest, four numbers in the service's box convention");
  addLimits(*command, options->limits, "End after so many frames of each camera");
  command->add_flag("--json", options->json, "One JSON object a line for each frame");
  command->callback([options, &action] { action = [options] { return watch(*options); }; });
}

}  // namespace tarn::command
