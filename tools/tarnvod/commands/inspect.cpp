// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/output.h"
#include "base/report.h"
#include "commands/subcommands.h"
#include "recordings/recording_summary.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace tarn::command {
namespace {

struct InspectOptions {
  std::string folder;
  bool json = false;
};

int inspect(const InspectOptions& options) {
  const RecordingSummary summary = summarizeRecording(options.folder);
  if (options.json) {
    standardOutput().write(indented(toJson(summary)));
  } else {
    printReport(summaryText(summary));
  }
  failOnDamage(summary.damage, "the summary covers what could be read");
  return success;
}

}  // namespace

Action defineInspect(CLI::App& command) {
  const auto options = std::make_shared<InspectOptions>();
  command.add_option("recording", options->folder, "The recording's folder")->type_name("DIR")->required();
  command.add_flag("--json", options->json, "Print one JSON object");
  return [options] { return inspect(*options); };
}

}  // namespace tarn::command
