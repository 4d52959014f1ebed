// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/event_signal.h"
#include "base/options.h"
#include "base/output.h"
#include "base/progress_bar.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "base/unit_options.h"
#include "cameras/raw_subscription.h"
#include "cameras/service.h"
#include "commands/subcommands.h"
#include "recordings/scene_sink.h"

#include <CLI/CLI.hpp>
#include <recording/recording.h>
#include <recording/segments.h>
#include <recording/session.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

constexpr QueueCapacity sceneQueueCapacity{256, 64U << 20U};
constexpr std::chrono::milliseconds sceneWait{50};

struct RecordOptions {
  std::vector<int> cameras;
  std::string folder;
  Limits limits;
  Keeping keeping;
};

/** Of one camera the folder itself, of several one in it for each. */
std::filesystem::path folderOf(int camera, const RecordOptions& options) {
  const std::filesystem::path folder = options.folder;
  return options.cameras.size() == 1 ? folder : folder / vod::recording::cameraFolderName(camera);
}

bool holdsSegments(const std::filesystem::path& folder) {
  return vod::recording::partsOf(folder) != std::vector<std::filesystem::path>{folder};
}

void checkHoldsNoRecording(const std::filesystem::path& folder) {
  for (const char* name :
       {vod::recording::detectorInformationFileName, vod::recording::scenesFileName, vod::recording::indexFileName}) {
    std::error_code ignored;  // what cannot be looked at cannot be written either, which is reported then
    if (std::filesystem::exists(folder / name, ignored)) {
      throw Failure(folder.string() + ": holds a recording already; name another folder");
    }
  }
}

/** Segments go on in a folder of segments; nothing else is written into a folder that holds a recording. */
void checkMayBeWritten(const std::filesystem::path& folder, const Keeping& keeping) {
  checkHoldsNoRecording(folder);
  if (!vod::recording::camerasOf(folder).empty()) {
    throw Failure(folder.string() + ": holds the recordings of several cameras already; name another folder");
  }
  if (!keeping.hasSegments() && holdsSegments(folder)) {
    throw Failure(folder.string() +
                  ": holds a recording of segments already; go on with --keep, --max-size or --ring, or name another "
                  "folder");
  }
}

/** The recordings of several cameras would be hidden by a recording next to them. */
void checkSession(const RecordOptions& options) {
  if (options.cameras.size() > 1) {
    checkHoldsNoRecording(options.folder);
    if (holdsSegments(options.folder)) {
      throw Failure(options.folder + ": holds a recording of segments already; name another folder");
    }
  }
}

/** Writes what the service sends of one camera, and subscribes again when the service drops the subscription. */
class CameraRecorder {
 public:
  CameraRecorder(int camera, const RecordOptions& options, std::shared_ptr<SceneQueue> scenes)
      : camera_(camera), folder_(folderOf(camera, options)), scenes_(std::move(scenes)) {
    subscription_.emplace(camera_, scenes_);
    sink_ = makeSink(folder_, subscription_->readDetectorInformation(), options.keeping);
    subscription_->subscribe();
  }

  int camera() const { return camera_; }
  SceneSink& sink() { return *sink_; }
  std::uint64_t received() const { return received_; }

  void add(ArrivedScene scene) {
    ++received_;
    sink_->add(std::move(scene));
  }

  void keepSubscribed(ProgressBar& bar) {
    if (subscription_ && subscription_->isDropped()) {
      report(bar,
             "the service dropped the subscription; trying again every " + std::to_string(retryPeriod.count()) + " s");
      subscription_.reset();
      triedAt_ = Clock::now();
    }
    if (!subscription_ && Clock::now() - triedAt_ >= retryPeriod) {
      subscribeAgain(bar);
    }
  }

  void end() { subscription_.reset(); }

  std::string summary(double seconds) const {
    return "recorded " + counted(sink_->frames(), "frame") + " of camera " + std::to_string(camera_) + " in " +
           fixed(seconds, 1) + " s, " + byteSize(sink_->bytes()) + ", to " + folder_.string() + '\n';
  }

 private:
  void subscribeAgain(ProgressBar& bar) {
    triedAt_ = Clock::now();
    try {
      subscription_.emplace(camera_, scenes_);
      subscription_->subscribe();
      report(bar, "subscribed again");
    } catch (const Failure&) {
      subscription_.reset();  // reported already; tried again later
    }
  }

  void report(ProgressBar& bar, const std::string& what) const {
    bar.hide();
    printMessage("tarnvod: camera " + std::to_string(camera_) + ": " + what);
  }

  const int camera_;
  const std::filesystem::path folder_;
  const std::shared_ptr<SceneQueue> scenes_;
  std::optional<RawSubscription> subscription_;
  std::unique_ptr<SceneSink> sink_;
  std::uint64_t received_ = 0;
  Clock::time_point triedAt_;
};

/** One session: all cameras, by the same clocks. */
class Recorder {
 public:
  explicit Recorder(const RecordOptions& options) : options_(options), bar_(options.limits) {
    checkSession(options);
    for (const int camera : options.cameras) {
      checkMayBeWritten(folderOf(camera, options), options.keeping);
      checkCameraExists(camera, channelCount());
    }
    for (const int camera : options.cameras) {
      cameras_.push_back(std::make_unique<CameraRecorder>(camera, options, scenes_));
    }
  }

  void run() {
    while (!isDone()) {
      if (auto scene = scenes_->popWithin(sceneWait)) {
        ++progress_.frames;
        progress_.bytes += scene->bytes.size();
        recorderOf(scene->camera).add(std::move(*scene));
      }
      const Clock::time_point now = Clock::now();
      if (now - lookedAt_ >= sceneWait) {
        lookAfterCameras();
        lookedAt_ = now;
      }
      progress_.elapsed = now - start_;
      bar_.show(progress_, now);
    }
    for (const auto& camera : cameras_) {
      camera->end();
    }
    bar_.hide();
  }

  /** @throw Failure when the recording is not what it should be */
  void summarize() const {
    for (const auto& camera : cameras_) {
      standardOutput().writeText(camera->summary(std::chrono::duration<double>(progress_.elapsed).count()));
    }
    if (scenes_->dropped() > 0) {
      throw Failure(options_.folder + ": " + counted(scenes_->dropped(), "frame") +
                    " missing; writing took too long, record to a faster disk");
    }
    for (const auto& camera : cameras_) {
      if (camera->received() == 0 && !stopRequested()) {
        throw Failure("camera " + std::to_string(camera->camera()) + ": no frame came");
      }
    }
  }

 private:
  bool isDone() const {
    return stopRequested() || options_.limits.reachedBy(progress_.elapsed) ||
           (options_.limits.frames && progress_.frames >= *options_.limits.frames);
  }

  CameraRecorder& recorderOf(int camera) {
    const auto isIt = [camera](const auto& recorder) { return recorder->camera() == camera; };
    return **std::find_if(cameras_.begin(), cameras_.end(), isIt);
  }

  void lookAfterCameras() {
    const bool isTriggered = takeEventSignal();
    const std::int64_t now = vod::recording::arrivalNow().monotonic;
    for (const auto& camera : cameras_) {
      camera->keepSubscribed(bar_);
      camera->sink().tick(now);
      if (isTriggered) {
        camera->sink().trigger(now);
      }
    }
  }

  const RecordOptions options_;
  ProgressBar bar_;
  const std::shared_ptr<SceneQueue> scenes_ = std::make_shared<SceneQueue>(sceneQueueCapacity);
  std::vector<std::unique_ptr<CameraRecorder>> cameras_;
  Progress progress_;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point lookedAt_;
};

int record(const RecordOptions& options) {
  if (options.keeping.ring && options.keeping.events.empty()) {
    throw UsageError("--ring needs an event that makes it keep something; name one with --on");
  }
  if (!options.keeping.ring && !options.keeping.events.empty()) {
    throw UsageError("--on belongs to --ring");
  }
  if (Triggers(options.keeping.events).hasSignal()) {
    installEventSignal();
  }
  Recorder recorder(options);
  recorder.run();
  recorder.summarize();
  return success;
}

void addKeeping(CLI::App& command, Keeping& keeping) {
  addDuration(command, "--keep", keeping.microseconds,
              "Keep at most this much recorded time, such as 24h, in segments; the oldest are deleted first");
  addByteSize(command, "--max-size", keeping.bytes,
              "Keep at most this many bytes, such as 256M, in segments; the oldest are deleted first");
  addDuration(command, "--ring", keeping.ring,
              "Keep only what surrounds events: this much time before each, such as 60s");
  addDuration(command, "--after", keeping.after, "How long to continue after an event; default 10s");
  command
      .add_option("--on", keeping.events,
                  "The events for --ring: class:NAME, deleted, connected, silence:TIME, signal (SIGUSR1)")
      ->type_name("EVENT ...");
}

}  // namespace

Action defineRecord(CLI::App& command) {
  const auto options = std::make_shared<RecordOptions>();
  takesCameraNumbers(*command
                          .add_option("--camera", options->cameras,
                                      "Cameras, counted from 1; each of several gets a folder of its own")
                          ->required());
  command.add_option("--output", options->folder, "Folder of the new recording")->type_name("DIR")->required();
  addLimits(command, options->limits, "End after N frames");
  addKeeping(command, options->keeping);
  return [options] { return record(*options); };
}

}  // namespace tarn::command
