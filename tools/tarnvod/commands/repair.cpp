// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "base/text.h"
#include "commands/subcommands.h"
#include "recordings/recording_background.h"
#include "recordings/recording_output.h"
#include "recordings/scan_progress.h"

#include <CLI/CLI.hpp>
#include <recording/segments.h>
#include <tarnvod/video_object_detection.pb.h>

#include <memory>
#include <string>
#include <string_view>

namespace tarn::command {
namespace {

using vod::recording::Damage;

struct RepairOptions {
  std::string folder;
  std::string output;
};

/** Prints what is damaged as it is found, and counts it. */
class Report {
 public:
  void add(const Damage& damage) {
    ++count_;
    standardOutput().writeText(printable(vod::recording::toString(damage)) + '\n');
  }
  std::uint64_t count() const { return count_; }

 private:
  std::uint64_t count_ = 0;
};

/** The detector information, or nothing where there is none: the scenes are of use without it. */
std::string detectorInformationOf(const std::string& folder, Report& report) {
  const std::string file =
      (vod::recording::partsOf(folder).back() / vod::recording::detectorInformationFileName).string();
  try {
    std::string bytes = vod::recording::readDetectorInformation(folder);
    if (!::VOD::DetectorInformation().ParseFromString(bytes)) {
      report.add({file, 0, "not a serialized VOD.DetectorInformation; kept as it is"});
    }
    return bytes;
  } catch (const vod::recording::RecordingError&) {
    report.add({file, 0, "cannot be read; the classes have no names"});
    return {};
  }
}

/** Whether these bytes may be a scene with a time stamp or contents. */
bool looksLikeScene(std::string_view bytes) {
  ::VOD::Scene scene;
  return scene.ParseFromArray(bytes.data(), static_cast<int>(bytes.size())) &&
         (scene.timestamp() != 0 || !scene.detections().empty() || !scene.events().empty());
}

/** Adds the recording's background, if it has one. The scenes are of use without it. */
void addBackground(RecordingOutput& output, const std::string& folder, Report& report) {
  if (const auto background = backgroundIn(folder)) {
    try {
      output.addFile(*background);
    } catch (const Failure&) {
      report.add({background->string(), 0, "cannot be copied; left out"});
    }
  }
}

int repair(const RepairOptions& options) {
  vod::recording::CheckedReader reader(options.folder, looksLikeScene);
  Report report;
  RecordingOutput output(options.output, detectorInformationOf(options.folder, report), commonBoot({options.folder}));
  ScanProgress progress({options.folder});
  for (auto next = reader.next(); !std::holds_alternative<vod::recording::EndOfRecording>(next); next = reader.next()) {
    throwIfStopRequested();
    if (const auto* const damage = std::get_if<Damage>(&next)) {
      progress.hide();
      report.add(*damage);
      continue;
    }
    const auto& scene = std::get<vod::recording::CheckedScene>(next);
    if (::VOD::Scene().ParseFromString(scene.bytes)) {
      output.append(scene);
    } else {
      report.add({reader.fileOf(scene.part), scene.offset, "not a serialized VOD.Scene; left out"});
    }
    progress.show(scene.bytes.size());
  }
  progress.hide();
  addBackground(output, options.folder, report);
  output.commit();
  standardOutput().writeText("repaired " + output.summary() + "; " + counted(report.count(), "damage") + '\n');
  return success;
}

}  // namespace

Action defineRepair(CLI::App& command) {
  const auto options = std::make_shared<RepairOptions>();
  command.add_option("recording", options->folder, "The recording's folder, which stays as it is")
      ->type_name("DIR")
      ->required();
  command.add_option("--output", options->output, "Folder of the new recording")->type_name("DIR")->required();
  return [options] { return repair(*options); };
}

}  // namespace tarn::command
