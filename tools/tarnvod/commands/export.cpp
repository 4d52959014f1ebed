// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "commands/subcommands.h"
#include "recordings/exports/frame_export.h"

#include <CLI/CLI.hpp>
#include <recording/recording.h>

#include <memory>
#include <optional>
#include <string>

namespace tarn::command {
namespace {

struct ExportOptions {
  std::string folder;
  std::string format;
  std::string output;
  std::optional<PixelSize> size;
  BoxOptions boxes;
};

/** "1920x1080". */
std::optional<PixelSize> parsePixelSize(const std::string& text) {
  const std::size_t times = text.find('x');
  PixelSize size;
  const bool isRead = times != std::string::npos && text.find('-') == std::string::npos &&
                      CLI::detail::lexical_cast(text.substr(0, times), size.width) &&
                      CLI::detail::lexical_cast(text.substr(times + 1), size.height);
  return isRead && size.width > 0 && size.height > 0 ? std::make_optional(size) : std::nullopt;
}

std::unique_ptr<FrameExport> makeExport(const ExportOptions& options, const SceneNames& names,
                                        const std::string& detector) {
  if (options.format == "mot") {
    if (!options.size) {
      throw UsageError("--format mot: the boxes are in pixels; name the picture's size with --size");
    }
    return makeMotExport(options.output, *options.size, options.boxes.convention());
  }
  if (options.format == "sqlite") {
    return makeSqliteExport(options.output, names);
  }
  return options.format == "mcap" ? makeMcapExport(options.output, detector) : makeCsvExport(options.output, names);
}

int exportRecording(const ExportOptions& options) {
  const std::string detector = vod::recording::readDetectorInformation(options.folder);
  const SceneNames names(detector);
  const auto exported = makeExport(options, names, detector);
  DamageList damage;
  const auto visit = [&](const ScannedScene& scanned) {
    exported->add(scanned);
    return true;
  };
  scanRecording(options.folder, visit, damage);
  exported->finish();
  failOnDamage(damage, options.output + " holds what could be read");
  return success;
}

}  // namespace

Action defineExport(CLI::App& command) {
  const auto options = std::make_shared<ExportOptions>();
  command.add_option("recording", options->folder, "The recording's folder")->type_name("DIR")->required();
  command.add_option("--format", options->format, "The format of the output")
      ->type_name("csv|mot|sqlite|mcap")
      ->check(CLI::IsMember({"csv", "mot", "sqlite", "mcap"}))
      ->required();
  command.add_option("--output", options->output, "The file to write; replaced when the export is complete")
      ->type_name("PATH")
      ->required();
  const auto parseSize = [options](const std::string& text) {
    options->size = parsePixelSize(text);
    if (!options->size) {
      throw CLI::ValidationError("--size", "'" + text + "' is not a size in pixels like 1920x1080");
    }
  };
  command.add_option_function<std::string>("--size", parseSize, "The picture's size in pixels, for the format mot")
      ->type_name("WxH");
  options->boxes.addTo(command);
  return [options] { return exportRecording(*options); };
}

}  // namespace tarn::command
