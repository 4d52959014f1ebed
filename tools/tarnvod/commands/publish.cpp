// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/allocator.h"
#include "base/errors.h"
#include "base/options.h"
#include "base/unit_options.h"
#include "cameras/camera_options.h"
#include "commands/subcommands.h"
#include "fleet/broker_options.h"
#include "fleet/fleet_options.h"
#include "fleet/publisher.h"
#include "metrics/metrics_server.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <memory>
#include <optional>

namespace tarn::command {
namespace {

constexpr std::uint64_t smallestSpool = 64U << 10U;

int publish(PublisherOptions& options, const std::optional<std::uint64_t>& spoolSize) {
  options.spoolLimit = spoolSize.value_or(options.spoolLimit);
  if (options.spoolLimit < smallestSpool) {
    throw UsageError("--spool-size: the spool needs at least 64K");
  }
  allocateFromOneArena();  // each camera's frames are made by a thread of its own
  Publisher(options).run();
  return success;
}

}  // namespace

Action definePublish(CLI::App& command) {
  const auto options = std::make_shared<PublisherOptions>();
  const auto spoolSize = std::make_shared<std::optional<std::uint64_t>>();
  addFleetName(command, "--site", options->site, "Name of the site, for topics and messages")->required();
  addFleetName(command, "--device", options->device, "Name of the device, different from all others of the site")
      ->required();
  command.add_option("--spool", options->spool, "Folder for frames that have not been sent")
      ->type_name("DIR")
      ->required();
  addByteSize(command, "--spool-size", *spoolSize,
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
  return [options, spoolSize] { return publish(*options, *spoolSize); };
}

}  // namespace tarn::command
