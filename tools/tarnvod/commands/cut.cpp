// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/output.h"
#include "commands/subcommands.h"
#include "recordings/recording_background.h"
#include "recordings/recording_output.h"
#include "recordings/recording_scan.h"
#include "recordings/scene_record.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

namespace tarn::command {
namespace {

struct CutOptions {
  std::string folder;
  std::string output;
  double from = 0;
  double to = std::numeric_limits<double>::infinity();
};

/** As time stamps count it; beyond what they can count, the greatest of them. */
std::uint64_t microseconds(double seconds) {
  constexpr double longest = 1e13;
  return seconds < longest ? static_cast<std::uint64_t>(std::llround(seconds * 1e6))
                           : std::numeric_limits<std::uint64_t>::max();
}

int cut(const CutOptions& options) {
  const std::uint64_t from = microseconds(options.from);
  const std::uint64_t to = microseconds(options.to);
  if (from >= to) {
    throw UsageError("--from must be less than --to");
  }
  RecordingOutput output(options.output, vod::recording::readDetectorInformation(options.folder),
                         commonBoot({options.folder}));
  RecordingClock clock;
  DamageList damage;
  const auto visit = [&](const vod::recording::CheckedScene& scene) {
    clock.advanceTo(timestampOf(scene.bytes));
    if (clock.microseconds() >= from && clock.microseconds() < to) {
      output.append(scene);
    }
    return true;
  };
  scanBytes(options.folder, visit, damage);
  if (const auto background = backgroundIn(options.folder)) {
    output.addFile(*background);
  }
  output.commit();
  standardOutput().writeText("cut " + output.summary() + '\n');
  failOnDamage(damage, options.output + " holds what could be read");
  return success;
}

}  // namespace

Action defineCut(CLI::App& command) {
  const auto options = std::make_shared<CutOptions>();
  command.add_option("recording", options->folder, "The recording's folder")->type_name("DIR")->required();
  command.add_option("--from", options->from, "Start, in seconds from the first frame; default: the first frame")
      ->type_name("S")
      ->check(CLI::NonNegativeNumber);
  command
      .add_option("--to", options->to,
                  "End, exclusive, in seconds from the first frame; default: the end of the recording")
      ->type_name("S")
      ->check(CLI::NonNegativeNumber);
  command.add_option("--output", options->output, "Folder of the new recording")->type_name("DIR")->required();
  return [options] { return cut(*options); };
}

}  // namespace tarn::command
