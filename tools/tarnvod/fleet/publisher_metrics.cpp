// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/publisher_metrics.h"

#include "cameras/camera_metrics.h"
#include "metrics/metrics_text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <vector>

namespace tarn::command {
namespace {

void addCameras(MetricsText& text, const std::vector<CameraReport>& cameras) {
  std::vector<VOD::CameraStatus> statuses;
  std::transform(cameras.begin(), cameras.end(), std::back_inserter(statuses),
                 [](const CameraReport& camera) { return camera.status; });
  addCameraMetrics(text, statuses);
  text.beginCounter("tarnvod_publish_frames_numbered_total", "Frames that have a number and are in the spool.");
  for (const CameraReport& camera : cameras) {
    text.add(camera.numbered, labelsOf(camera.status));
  }
  text.beginCounter("tarnvod_publish_frames_overflowed_total",
                    "Numbered frames that were dropped because the disk did not keep up.");
  for (const CameraReport& camera : cameras) {
    text.add(camera.overflowed, labelsOf(camera.status));
  }
}

void addSpool(MetricsText& text, const PublisherReport& report) {
  text.gauge("tarnvod_spool_bytes", "Bytes that the spool takes on the disk.", report.spool.bytes);
  text.gauge("tarnvod_spool_limit_bytes", "Bytes that the spool may take.", report.spoolLimit);
  text.gauge("tarnvod_spool_waiting_entries", "Entries that are not settled: frames, and notes of dropped ones.",
             report.spool.waiting);
  text.counter("tarnvod_spool_frames_dropped_total", "Frames that were dropped because the spool was full.",
               report.spool.dropped);
  text.counter("tarnvod_spool_damaged_entries_total", "Entries that could not be read back.", report.spool.damaged);
}

void addBroker(MetricsText& text, const SenderFigures& sender) {
  text.gauge("tarnvod_publish_broker_connected", "Whether the broker is connected.", sender.isConnected ? 1 : 0);
  text.counter("tarnvod_publish_broker_connections_total", "How often the broker was reached.", sender.connections);
  text.counter("tarnvod_publish_entries_sent_total", "Entries of the spool that were sent, repetitions included.",
               sender.sent);
  text.counter("tarnvod_publish_entries_settled_total", "Entries that need not be kept any more.", sender.settled);
}

}  // namespace

std::string publisherMetrics(const Origin& origin, const PublisherReport& report) {
  MetricsText text;
  addBuildInfo(text);
  text.beginGauge("tarnvod_publish_info", "Site, device and start of the publisher; the value is always 1.");
  text.add(std::uint64_t{1}, {{"site", origin.site}, {"device", origin.device}, {"start", origin.start}});
  addCameras(text, report.cameras);
  addSpool(text, report);
  addBroker(text, report.sender);
  return text.text();
}

}  // namespace tarn::command
