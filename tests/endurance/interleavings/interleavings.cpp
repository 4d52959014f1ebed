// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Runs two or three threads through the library in every order, up to a number of deviations from the default one, and then
// in random orders. A failure is printed with the number that runs its schedule again.

#include "exploration.h"
#include "schedule.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>

namespace {

using namespace tarn::test;

struct Arguments {
  Plan plan;
  double randomSeconds = 0;
  std::vector<std::string> worlds;
  std::string api;
  std::optional<std::uint64_t> replay;
  std::optional<std::uint64_t> replaySeed;
  bool mustFail = false;
};

std::vector<std::string> worldNames() {
  std::vector<std::string> names;
  for (const World& world : worlds()) {
    names.push_back(world.name);
  }
  return names;
}

void addOptions(CLI::App& app, Arguments& arguments) {
  app.add_option("--world", arguments.worlds, "Only these worlds")->check(CLI::IsMember(worldNames()));
  app.add_option("--api", arguments.api, "Only the worlds of this class: Handler or Camera")
      ->check(CLI::IsMember({"Handler", "Camera"}));
  app.add_option("--deviations", arguments.plan.deviations, "All schedules with at most so many deviations")
      ->capture_default_str()
      ->check(CLI::Range(std::size_t{0}, DeviatingSchedule::mostDeviations));
  app.add_option("--random", arguments.plan.randomSchedules, "Then so many random schedules of each world");
  app.add_option("--random-seconds", arguments.randomSeconds, "Then random schedules for so long, over all worlds")
      ->check(CLI::Range(0.0, 86'400.0));
  app.add_option("--seed", arguments.plan.seed, "The first random schedule")->capture_default_str();
  app.add_option("--replay", arguments.replay, "Run the schedule of this number only");
  app.add_option("--replay-seed", arguments.replaySeed, "Run this random schedule only")->excludes("--replay");
  app.add_flag("--must-fail", arguments.mustFail,
               "Succeed only when a schedule fails, for a library with a known fault");
}

bool isWanted(const World& world, const Arguments& arguments) {
  const auto& names = arguments.worlds;
  const bool isNamed = names.empty() || std::find(names.begin(), names.end(), world.name) != names.end();
  return isNamed && (arguments.api.empty() || world.hasCamera == (arguments.api == "Camera"));
}

std::vector<World> chosenWorlds(const Arguments& arguments) {
  std::vector<World> chosen;
  std::copy_if(worlds().begin(), worlds().end(), std::back_inserter(chosen),
               [&arguments](const World& world) { return isWanted(world, arguments); });
  return chosen;
}

Outcome runWorld(const World& world, const Arguments& arguments) {
  if (arguments.replay) {
    return replay(world, {false, *arguments.replay});
  }
  if (arguments.replaySeed) {
    return replay(world, {true, *arguments.replaySeed});
  }
  return explore(world, arguments.plan);
}

std::string schedulesRun(const Outcome& outcome, const Arguments& arguments) {
  if (arguments.replay || arguments.replaySeed) {
    return "one schedule";
  }
  return std::to_string(outcome.systematic) + " schedules of --deviations " +
         std::to_string(arguments.plan.deviations) + ", " + std::to_string(outcome.random) + " random ones";
}

void print(const World& world, const Outcome& outcome, const Arguments& arguments) {
  std::cout << world.name << (world.hasCamera ? " (Camera): " : " (Handler): ") << schedulesRun(outcome, arguments);
  if (outcome.failure) {
    std::cout << ", then: " << *outcome.failure << "; run again with --world " << world.name
              << (outcome.failedSchedule.isRandom ? " --replay-seed " : " --replay ") << outcome.failedSchedule.number;
  }
  std::cout << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Runs small worlds of threads through the library in every order.");
  Arguments arguments;
  addOptions(app, arguments);
  CLI11_PARSE(app, argc, argv);

  const std::vector<World> chosen = chosenWorlds(arguments);
  arguments.plan.randomTime =
      std::chrono::milliseconds(static_cast<std::int64_t>(arguments.randomSeconds * 1000)) / chosen.size();
  bool hasFailed = false;
  for (const World& world : chosen) {
    const Outcome outcome = runWorld(world, arguments);
    print(world, outcome, arguments);
    hasFailed = hasFailed || outcome.failure;
    if (hasFailed && arguments.mustFail) {
      break;
    }
  }
  return hasFailed == arguments.mustFail ? EXIT_SUCCESS : EXIT_FAILURE;
}
