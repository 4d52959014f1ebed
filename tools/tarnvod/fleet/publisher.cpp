// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/publisher.h"

#include "base/stop_signal.h"
#include "base/wall_clock.h"
#include "fleet/fleet_options.h"
#include "fleet/publisher_metrics.h"
#include "records/frame_json.h"

#include <recording/recording.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::chrono::milliseconds tickPeriod{50};
constexpr std::chrono::seconds statusPeriod{10};
/** Enough for a short stall of the disk. */
constexpr QueueCapacity queueCapacity{256, 16U << 20U};

}  // namespace

Publisher::Publisher(const PublisherOptions& options)
    : options_(options),
      origin_{options.site, options.device, newStartId()},
      choice_(options.cameras.cameras),
      startedAt_(wallTimeNow().microseconds),
      spool_(options.spool, options.spoolLimit),
      sender_(spool_, origin_, options.broker, options.keepUntilStored),
      frames_(queueCapacity) {}

void Publisher::run() {
  connectCameras();
  serveMetrics();
  manager_.reportReady();
  while (!stopRequested() && !options_.limits.reachedBy(Clock::now() - start_) && !hasEnough()) {
    keepFrames();
    tick();
  }
  end();
}

/** Once it is known which; a service that does not answer then keeps none of the other work from being done. */
void Publisher::connectCameras() {
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

void Publisher::serveMetrics() {
  if (!options_.metrics.empty()) {
    metrics_.emplace(
        options_.metrics, [this] { return publisherMetrics(origin_, report("running")); }, liveness_);
  }
}

bool Publisher::hasEnough() const {
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
bool Publisher::keepFrames() {
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

void Publisher::keep(const NumberedFrame& numbered) {
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

std::string Publisher::messageOf(const NumberedFrame& numbered) const {
  return numbered.counts ? countsJson(*numbered.counts, origin_, numbered.envelope)
                         : frameJson(*numbered.frame, origin_, numbered.envelope);
}

/** Keeps the counts of seconds that are over. */
void Publisher::keepCounts() {
  const std::int64_t now = wallTimeNow().microseconds;
  for (PublishedCamera& camera : cameras_) {
    if (const auto counts = camera.takeCounts(now)) {
      keep(*counts);
      sender_.wake();
    }
  }
}

PublishedCamera& Publisher::cameraOf(int number) {
  return cameras_[static_cast<std::size_t>(std::distance(numbers_.begin(), numbers_.find(number)))];
}

void Publisher::tick() {
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

void Publisher::noteOverflow() {
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

PublisherReport Publisher::report(const std::string& state) const {
  PublisherReport report;
  report.state = state;
  report.startedAt = startedAt_;
  if (hasCameras_) {
    std::transform(cameras_.begin(), cameras_.end(), std::back_inserter(report.cameras),
                   [](const PublishedCamera& camera) { return camera.report(); });
  }
  report.spool = spool_.figures();
  report.spoolLimit = options_.spoolLimit;
  report.sender = sender_.figures();
  report.keepsUntilStored = options_.keepUntilStored;
  return report;
}

void Publisher::end() {
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

}  // namespace tarn::command
