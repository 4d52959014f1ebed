// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/allocator.h"
#include "base/changed_message.h"
#include "base/errors.h"
#include "base/options.h"
#include "base/service_manager.h"
#include "base/stop_signal.h"
#include "base/unit_options.h"
#include "base/wall_clock.h"
#include "cameras/camera_choice.h"
#include "cameras/camera_options.h"
#include "commands/subcommands.h"
#include "fleet/broker_options.h"
#include "fleet/fleet_options.h"
#include "fleet/published_camera.h"
#include "fleet/publisher_metrics.h"
#include "fleet/sender.h"
#include "metrics/metrics_server.h"
#include "records/frame_json.h"

#include <CLI/CLI.hpp>
#include <recording/recording.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

constexpr std::uint64_t usualSpool = 64U << 20U;
constexpr std::uint64_t smallestSpool = 64U << 10U;
constexpr std::chrono::milliseconds tickPeriod{50};
constexpr std::chrono::seconds statusPeriod{10};
/** Enough for a short stall of the disk. */
constexpr QueueCapacity queueCapacity{256, 16U << 20U};

struct PublishOptions {
  CameraOptions cameras;
  Limits limits;
  BrokerOptions broker;
  std::string site;
  std::string device;
  std::string spool;
  std::optional<std::uint64_t> spoolLimit;
  SelectionOptions selection;
  std::string metrics;
  bool keepUntilStored = false;
};

/** Numbers the frames of a device's cameras and puts them into the spool, from which they are sent. */
class Publisher {
 public:
  explicit Publisher(const PublishOptions& options)
      : options_(options),
        origin_{options.site, options.device, newStartId()},
        spoolLimit_(options.spoolLimit.value_or(usualSpool)),
        choice_(options.cameras.cameras),
        spool_(options.spool, spoolLimit_),
        sender_(spool_, origin_, options.broker, options.keepUntilStored) {}

  void run() {
    connectCameras();
    serveMetrics();
    manager_.reportReady();
    while (!stopRequested() && !options_.limits.reachedBy(Clock::now() - start_) && !hasEnough()) {
      keepFrames();
      tick();
    }
    end();
  }

 private:
  /** Once it is known which; a service that does not answer then keeps none of the other work from being done. */
  void connectCameras() {
    if (hasCameras_) {
      return;
    }
    if (auto cameras = choice_.find(Clock::now())) {
      numbers_ = std::move(*cameras);
      for (const int number : numbers_) {
        cameras_.emplace_back(number, options_.cameras.request(), options_.selection, frames_);
      }
      hasCameras_ = true;
    }
  }

  void serveMetrics() {
    if (!options_.metrics.empty()) {
      metrics_.emplace(
          options_.metrics, [this] { return publisherMetrics(origin_, report("running")); }, liveness_);
    }
  }

  bool hasEnough() const {
    return options_.limits.frames && hasCameras_ &&
           std::all_of(cameras_.begin(), cameras_.end(),
                       [this](const auto& camera) { return camera.report().numbered >= *options_.limits.frames; });
  }

  /**
   * Waits for a frame, a tick at most, and keeps those that have come: no more than are kept in a tick, because they may come faster than
   * that.
   *
   * @return whether there were any
   */
  bool keepFrames() {
    const Clock::time_point end = Clock::now() + tickPeriod;
    auto numbered = frames_.popWithin(tickPeriod);
    const bool isSome = numbered.has_value();
    while (numbered) {
      keep(*numbered);
      numbered = Clock::now() < end ? frames_.popWithin(std::chrono::milliseconds(0)) : std::nullopt;
    }
    if (isSome) {
      sender_.wake();
    }
    return isSome;
  }

  void keep(const NumberedFrame& numbered) {
    const Envelope& envelope = numbered.envelope;
    const FrameRange range{envelope.camera, origin_.start, envelope.sequence, envelope.sequence};
    try {
      spool_.append({SpoolEntry::Kind::Frame, range, messageOf(numbered)});
      cameraOf(envelope.camera).noteKept(envelope.sequence);
      spoolProblem_.forget();
    } catch (const vod::recording::RecordingError& error) {
      spoolProblem_.print(error.what() + std::string("; frames are lost until there is room"));
      cameraOf(envelope.camera).noteOverflow(envelope.sequence);
    }
  }

  std::string messageOf(const NumberedFrame& numbered) const {
    return numbered.counts ? countsJson(*numbered.counts, origin_, numbered.envelope)
                           : frameJson(*numbered.frame, origin_, numbered.envelope);
  }

  /** Keeps the counts of seconds that are over. */
  void keepCounts() {
    const std::int64_t now = wallTimeNow().microseconds;
    for (PublishedCamera& camera : cameras_) {
      if (const auto counts = camera.takeCounts(now)) {
        keep(*counts);
        sender_.wake();
      }
    }
  }

  PublishedCamera& cameraOf(int number) {
    return cameras_[static_cast<std::size_t>(std::distance(numbers_.begin(), numbers_.find(number)))];
  }

  void tick() {
    const Clock::time_point now = Clock::now();
    manager_.reportAlive(now);
    liveness_.note(now);
    connectCameras();
    keepCounts();
    noteOverflow();
    const auto updates = std::count_if(cameras_.begin(), cameras_.end(), [](auto& camera) { return camera.update(); });
    if (updates > 0 || now - statusAt_ >= statusPeriod) {
      statusAt_ = now;
      sender_.setStatus(statusJson(origin_, report("running")));
    }
  }

  void noteOverflow() {
    for (PublishedCamera& camera : cameras_) {
      for (FrameRange range : camera.takeOverflow()) {
        range.start = origin_.start;
        addRange(overflow_, range);
      }
    }
    try {
      for (; !overflow_.empty(); overflow_.erase(overflow_.begin())) {
        spool_.append({SpoolEntry::Kind::Dropped, overflow_.front(), ""});
      }
    } catch (const vod::recording::RecordingError& error) {
      spoolProblem_.print(error.what() + std::string("; frames are lost until there is room"));
    }
  }

  /** Thread-safe. */
  PublisherReport report(const std::string& state) const {
    PublisherReport report;
    report.state = state;
    report.startedAt = startedAt_;
    if (hasCameras_) {
      std::transform(cameras_.begin(), cameras_.end(), std::back_inserter(report.cameras),
                     [](const PublishedCamera& camera) { return camera.report(); });
    }
    report.spool = spool_.figures();
    report.spoolLimit = spoolLimit_;
    report.sender = sender_.figures();
    report.keepsUntilStored = options_.keepUntilStored;
    return report;
  }

  void end() {
    for (PublishedCamera& camera : cameras_) {
      camera.end();
    }
    while (keepFrames()) {
    }
    for (PublishedCamera& camera : cameras_) {
      if (const auto counts = camera.takeLastCounts()) {
        keep(*counts);
      }
    }
    noteOverflow();
    sender_.finish([this] { return statusJson(origin_, report("stopped")); });
  }

  const PublishOptions& options_;
  const Origin origin_;
  const std::uint64_t spoolLimit_;
  CameraChoice choice_;
  const Clock::time_point start_ = Clock::now();
  const std::int64_t startedAt_ = wallTimeNow().microseconds;
  Spool spool_;
  Sender sender_;
  ServiceManager manager_;
  Clock::time_point statusAt_;
  ChangedMessage spoolProblem_;
  std::vector<FrameRange> overflow_;
  NumberedFrames frames_{queueCapacity};
  std::set<int> numbers_;
  std::deque<PublishedCamera> cameras_;  // after the queue, which their frames go to
  std::atomic<bool> hasCameras_{false};  ///< from then on the two above do not change
  Liveness liveness_;
  std::optional<MetricsServer> metrics_;  // last, because it reports all else
};

int publish(const PublishOptions& options) {
  if (options.spoolLimit && *options.spoolLimit < smallestSpool) {
    throw UsageError("--spool-size: the spool needs at least 64K");
  }
  allocateFromOneArena();  // each camera's frames are made by a thread of its own
  Publisher(options).run();
  return success;
}

}  // namespace

Action definePublish(CLI::App& command) {
  const auto options = std::make_shared<PublishOptions>();
  addFleetName(command, "--site", options->site, "Name of the site, for topics and messages")->required();
  addFleetName(command, "--device", options->device, "Name of the device, different from all others of the site")
      ->required();
  command.add_option("--spool", options->spool, "Folder for frames that have not been sent")
      ->type_name("DIR")
      ->required();
  addByteSize(command, "--spool-size", options->spoolLimit,
              "Bytes that the folder may take, like 256M (default 64M); the oldest frames go first");
  command.add_flag("--until-stored", options->keepUntilStored,
                   "Keep each frame until a collector has reported that it is stored");
  CLI::Option* changes = command.add_flag("--changes", options->selection.changesOnly,
                                          "Only frames with events or other objects than the one sent before");
  CLI::Option* every = command.add_option("--every", options->selection.every, "Only one of N frames");
  takesFrameNumbers(*every);
  every->excludes(changes);
  command
      .add_flag("--counts", options->selection.countsOnly,
                "Instead of frames, the objects of each class that were counted in each second")
      ->excludes(changes)
      ->excludes(every);
  addMetricsOption(command, options->metrics);
  addBrokerOptions(command, options->broker);
  addCameraOptions(command, options->cameras, "camera,--camera");
  addLimits(command, options->limits, "End after N frames of each camera");
  return [options] { return publish(*options); };
}

}  // namespace tarn::command
