// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/options.h"
#include "base/output.h"
#include "base/progress_bar.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "cameras/raw_subscription.h"
#include "cameras/service.h"
#include "commands/subcommands.h"

#include <CLI/CLI.hpp>
#include <recording/recording.h>
#include <recording/recording_writer.h>
#include <tarnvod/handler.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace tarn::command {
namespace {

constexpr std::size_t sceneQueueCapacity = 256;
constexpr std::chrono::milliseconds sceneWait{50};

struct RecordOptions {
  int camera = 0;
  std::string folder;
  Limits limits;
};

void checkHoldsNoRecording(const std::filesystem::path& folder) {
  for (const char* name :
       {vod::recording::detectorInformationFileName, vod::recording::scenesFileName, vod::recording::indexFileName}) {
    std::error_code ignored;  // what cannot be looked at cannot be written either, and that is told then
    if (std::filesystem::exists(folder / name, ignored)) {
      throw Failure(folder.string() + ": holds a recording already; name another folder");
    }
  }
}

/** Writes what the service sends, and subscribes again when the service drops the subscription. */
class Recorder {
 public:
  explicit Recorder(const RecordOptions& options) : options_(options), bar_(options.limits) {
    checkHoldsNoRecording(options.folder);
    checkCameraExists(options.camera, channelCount());
    subscription_.emplace(options.camera, scenes_);
    writer_.emplace(options.folder, subscription_->readDetectorInformation());
    subscription_->subscribe();
  }

  void run() {
    while (!isDone()) {
      if (const auto scene = scenes_->popWithin(sceneWait)) {
        writer_->append(scene->bytes, scene->arrival);
        ++progress_.frames;
        progress_.bytes += scene->bytes.size();
      } else {
        // Only now: what came before the drop has been written.
        keepSubscribed();
      }
      const Clock::time_point now = Clock::now();
      progress_.elapsed = now - start_;
      bar_.show(progress_, now);
    }
    subscription_.reset();
    bar_.hide();
  }

  /** @throw Failure when the recording is not what it should be */
  void summarize() const {
    const double seconds = std::chrono::duration<double>(progress_.elapsed).count();
    standardOutput().writeText("recorded " + counted(progress_.frames, "frame") + " of camera " +
                               std::to_string(options_.camera) + " in " + fixed(seconds, 1) + " s, " +
                               byteSize(progress_.bytes) + ", to " + options_.folder + '\n');
    if (scenes_->dropped() > 0) {
      throw Failure(options_.folder + ": " + counted(scenes_->dropped(), "frame") +
                    " missing; writing took too long, record to a faster disk");
    }
    if (progress_.frames == 0 && !stopRequested()) {
      throw Failure("camera " + std::to_string(options_.camera) + ": no frame came");
    }
  }

 private:
  bool isDone() const {
    return stopRequested() || options_.limits.reachedBy(progress_.elapsed) ||
           (options_.limits.frames && progress_.frames >= *options_.limits.frames);
  }

  void keepSubscribed() {
    if (subscription_ && subscription_->isDropped()) {
      tell("the service dropped the subscription; trying again every " + std::to_string(retryPeriod.count()) + " s");
      subscription_.reset();
      triedAt_ = Clock::now();
    }
    if (!subscription_ && Clock::now() - triedAt_ >= retryPeriod) {
      subscribeAgain();
    }
  }

  void subscribeAgain() {
    triedAt_ = Clock::now();
    try {
      subscription_.emplace(options_.camera, scenes_);
      subscription_->subscribe();
      tell("subscribed again");
    } catch (const Failure&) {
      subscription_.reset();  // told already; tried again later
    }
  }

  void tell(const std::string& news) {
    bar_.hide();
    tellUser("tarnvod: camera " + std::to_string(options_.camera) + ": " + news);
  }

  const RecordOptions options_;
  ProgressBar bar_;
  const std::shared_ptr<SceneQueue> scenes_ = std::make_shared<SceneQueue>(sceneQueueCapacity);
  std::optional<RawSubscription> subscription_;
  std::optional<vod::recording::RecordingWriter> writer_;
  Progress progress_;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point triedAt_;
};

int record(const RecordOptions& options) {
  Recorder recorder(options);
  recorder.run();
  recorder.summarize();
  return success;
}

}  // namespace

Action defineRecord(CLI::App& command) {
  const auto options = std::make_shared<RecordOptions>();
  takesCameraNumbers(*command.add_option("--camera", options->camera, "The camera, counted from 1")->required());
  command.add_option("--output", options->folder, "The folder that becomes the recording")
      ->type_name("DIR")
      ->required();
  addLimits(command, options->limits, "End after N frames");
  return [options] { return record(*options); };
}

}  // namespace tarn::command
