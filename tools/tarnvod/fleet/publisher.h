// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_PUBLISHER_H
#define TARNVOD_COMMAND_PUBLISHER_H

#include "base/changed_message.h"
#include "base/clock.h"
#include "base/options.h"
#include "base/service_manager.h"
#include "cameras/camera_choice.h"
#include "cameras/camera_options.h"
#include "fleet/broker_options.h"
#include "fleet/messages.h"
#include "fleet/published_camera.h"
#include "fleet/selection.h"
#include "fleet/sender.h"
#include "fleet/spool.h"
#include "metrics/liveness.h"
#include "metrics/metrics_server.h"
#include "records/envelope.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tarn::command {

struct PublisherOptions {
  CameraOptions cameras;
  Limits limits;
  BrokerOptions broker;
  std::string site;
  std::string device;
  std::string spool;                      ///< folder
  std::uint64_t spoolLimit = 64U << 20U;  ///< bytes
  SelectionOptions selection;
  std::string metrics;           ///< where they are served, as `MetricsServer` reads it; empty for nowhere
  bool keepUntilStored = false;  ///< frames stay in the spool until a collector has stored them
};

/**
 * Numbers the frames of a device's cameras and puts them into the spool, from which they are sent. The functions are for
 * one thread; frames come on threads of the platform, and are sent on a thread of this object.
 */
class Publisher {
 public:
  /**
   * @param options  have to outlive this object
   * @throw Failure, RecordingError  when the spool cannot be used
   */
  explicit Publisher(const PublisherOptions& options);

  /**
   * Returns when a signal asks for the end or a limit is reached, with all frames that have come in the spool and, if the
   * broker can be reached, sent within a few seconds.
   *
   * @throw Failure  when a camera does not exist, or metrics cannot be served
   */
  void run();

 private:
  void connectCameras();
  void serveMetrics();
  bool hasEnough() const;
  bool keepFrames();
  void keep(const NumberedFrame& numbered);
  std::string messageOf(const NumberedFrame& numbered) const;
  void keepCounts();
  PublishedCamera& cameraOf(int number);
  void tick();
  void noteOverflow();
  /** Thread-safe. */
  PublisherReport report(const std::string& state) const;
  void end();

  const PublisherOptions& options_;
  const Origin origin_;
  CameraChoice choice_;
  const Clock::time_point start_ = Clock::now();
  const std::int64_t startedAt_;  ///< by the wall clock, in microseconds
  Spool spool_;
  Sender sender_;
  ServiceManager manager_;
  Clock::time_point statusAt_;
  ChangedMessage spoolProblem_;
  std::vector<FrameRange> overflow_;
  NumberedFrames frames_;
  std::set<int> numbers_;
  std::deque<PublishedCamera> cameras_;  ///< after the queue, which their frames go to
  std::atomic<bool> hasCameras_{false};  ///< from then on the two above do not change
  Liveness liveness_;
  std::optional<MetricsServer> metrics_;  ///< last, because it reports all else
};

}  // namespace tarn::command

#endif
