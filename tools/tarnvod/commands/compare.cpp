// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/output.h"
#include "base/text.h"
#include "commands/subcommands.h"
#include "recordings/comparison.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <string>

namespace tarn::command {
namespace {

struct CompareOptions {
  std::string reference;
  std::string compared;
  ComparisonOptions comparison;
  BoxOptions boxes;
  std::optional<double> leastMota;
  std::optional<double> leastIdf1;
  bool json = false;
};

void failBelow(const char* name, const std::optional<double>& value, const std::optional<double>& least,
               const std::string& compared) {
  if (least && value && *value < *least) {
    throw Failure(compared + ": " + name + " is " + fixed(*value, 4) + ", less than " + fixed(*least, 4));
  }
}

/** @throw Failure  when the recordings differ by more than is accepted */
void judge(const CompareOptions& options, const Comparison& comparison) {
  failOnDamage(comparison.damage, "what could be read was compared");
  if (!options.leastMota && !options.leastIdf1 && !comparison.areEqual()) {
    throw Failure(options.compared + ": differs from " + options.reference);
  }
  const TrackingFigures total = comparison.total();
  failBelow("MOTA", total.mota(), options.leastMota, options.compared);
  failBelow("IDF1", total.idf1(), options.leastIdf1, options.compared);
}

int compare(CompareOptions options) {
  options.comparison.boxes = options.boxes.convention();
  const Comparison comparison = compareRecordings(options.reference, options.compared, options.comparison);
  if (options.json) {
    standardOutput().write(indented(toJson(comparison)));
  } else {
    standardOutput().writeText(comparisonText(comparison));
  }
  judge(options, comparison);
  return success;
}

}  // namespace

Action defineCompare(CLI::App& command) {
  const auto options = std::make_shared<CompareOptions>();
  command.add_option("A", options->reference, "The reference: a recording's folder")->type_name("DIR")->required();
  command.add_option("B", options->compared, "The recording to compare with it")->type_name("DIR")->required();
  command.add_flag("--json", options->json, "As one JSON object");
  command.add_option("--iou", options->comparison.threshold, "The least overlap of two boxes that match; default 0.5")
      ->type_name("X")
      ->check(CLI::Range(0.01, 1.0));
  command
      .add_option("--tolerance", options->comparison.tolerance,
                  "How far apart two frames of one moment may be, in seconds; default 0.05")
      ->type_name("S")
      ->check(CLI::NonNegativeNumber);
  command
      .add_option("--mota", options->leastMota, "Accept differences while MOTA over all classes is not less than this")
      ->type_name("X");
  command
      .add_option("--idf1", options->leastIdf1, "Accept differences while IDF1 over all classes is not less than this")
      ->type_name("X");
  options->boxes.addTo(command);
  return [options] { return compare(*options); };
}

}  // namespace tarn::command
