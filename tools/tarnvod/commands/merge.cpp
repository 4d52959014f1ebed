// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/output.h"
#include "commands/subcommands.h"
#include "recordings/recording_background.h"
#include "recordings/recording_output.h"
#include "recordings/recording_scan.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

struct MergeOptions {
  std::vector<std::string> folders;
  std::string output;
};

/** The detector information of all recordings, which has to be the same: the scenes name classes by its numbers. */
std::string commonDetectorInformation(const std::vector<std::string>& folders) {
  std::string common = vod::recording::readDetectorInformation(folders.front());
  for (const std::string& folder : folders) {
    if (vod::recording::readDetectorInformation(folder) != common) {
      throw Failure(folder + ": its detector information differs from that of " + folders.front() +
                    ", so that its scenes cannot stand in one recording");
    }
  }
  return common;
}

/** Adds the background of the first recording that has one. */
void addBackground(RecordingOutput& output, const std::vector<std::string>& folders) {
  for (const std::string& folder : folders) {
    if (const auto background = backgroundIn(folder)) {
      output.addFile(*background);
      return;
    }
  }
}

int merge(const MergeOptions& options) {
  RecordingOutput output(options.output, commonDetectorInformation(options.folders),
                         commonBoot({options.folders.begin(), options.folders.end()}));
  DamageList damage;
  for (const std::string& folder : options.folders) {
    const auto visit = [&](const vod::recording::CheckedScene& scene) {
      output.append(scene);
      return true;
    };
    scanBytes(folder, visit, damage);
  }
  addBackground(output, options.folders);
  output.commit();
  standardOutput().writeText("merged " + output.summary() + '\n');
  failOnDamage(damage, options.output + " holds what could be read");
  return success;
}

}  // namespace

Action defineMerge(CLI::App& command) {
  const auto options = std::make_shared<MergeOptions>();
  command.add_option("recordings", options->folders, "The recordings' folders, in order")
      ->type_name("DIR ...")
      ->required();
  command.add_option("--output", options->output, "Folder of the new recording")->type_name("DIR")->required();
  return [options] { return merge(*options); };
}

}  // namespace tarn::command
