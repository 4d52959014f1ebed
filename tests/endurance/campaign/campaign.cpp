// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The fault campaign: worlds one after the other, each with other settings, until enough subscriptions were lost and
// recovered. Between two worlds everything happens at once.

#include "endurance/campaign/concurrent_phase.h"
#include "endurance/campaign/world.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

namespace {

using namespace tarn::test;

struct Options {
  std::uint64_t seed = std::random_device()();
  int losses = 10'000;
  double minutes = 0;
  int steps = 1500;
  std::string schedule;
  std::string played;
};

struct Result {
  Losses losses;
  int worlds = 0;
  std::int64_t steps = 0;
  std::int64_t frames = 0;
  std::int64_t framesAtOnce = 0;
};

Options parse(int argc, char** argv) {
  CLI::App app("Loses subscriptions in every way and sees them come back", "campaign");
  Options options;
  app.add_option("--seed", options.seed, "Replays the run of this seed; without it, another one each time");
  app.add_option("--losses", options.losses, "How many subscriptions must be dropped, and how many be recovered")
      ->check(CLI::PositiveNumber);
  app.add_option("--minutes", options.minutes, "Goes on for at least this long")->check(CLI::NonNegativeNumber);
  app.add_option("--steps", options.steps, "Steps in each world")->check(CLI::PositiveNumber);
  app.add_option("--schedule", options.schedule, "Writes the faults of the last world to this file, as a schedule");
  app.add_option("--play", options.played,
                 "Plays the faults of this schedule in one world, with a second for each step")
      ->excludes("--losses")
      ->excludes("--minutes")
      ->excludes("--steps");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::exit(app.exit(error));
  }
  return options;
}

void writeFaults(const Options& options, const World& world) {
  if (!options.schedule.empty()) {
    std::ofstream file(options.schedule);
    file << toText(world.faults()) << std::flush;
    if (!file) {
      throw std::runtime_error(options.schedule + ": cannot be written");
    }
  }
}

/** @param steps  does them in the world */
template <typename Steps>
void runWorld(const Options& options, const Choose& choose, Result& result, const Steps& steps) {
  World world(anySettings(choose));
  try {
    steps(world);
    world.end(choose);
  } catch (const Disagreement&) {
    std::cout << "the faults of this world, as a schedule with a second for each step:\n" << toText(world.faults());
    writeFaults(options, world);
    throw;
  }
  writeFaults(options, world);
  result.losses.happened += world.losses().happened;
  result.losses.dropped += world.losses().dropped;
  result.losses.recovered += world.losses().recovered;
  result.losses.abandoned += world.losses().abandoned;
  result.frames += world.frames();
  result.steps += world.steps();
  ++result.worlds;
}

/** Without the library's distributions, whose numbers differ from one standard library to the next. */
Choose seeded(std::uint64_t seed) {
  return [generator = std::make_shared<std::mt19937_64>(seed)](std::uint32_t bound) {
    return static_cast<std::uint32_t>((*generator)() % bound);
  };
}

/** Round after round of the schedule. */
Result play(const Options& options) {
  std::ifstream file(options.played);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  if (!file) {
    throw std::runtime_error(options.played + ": cannot be read");
  }
  const auto schedule = vod::schedule::parse(text, options.played);
  const Choose choose = seeded(options.seed);
  Result result;
  runWorld(options, choose, result, [&](World& world) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(schedule.length).count();
    for (auto i = seconds * schedule.rounds; i > 0; --i) {
      world.play(choose, schedule);
    }
  });
  return result;
}

Result run(const Options& options) {
  const auto begin = std::chrono::steady_clock::now();
  const auto minutes = std::chrono::duration<double, std::ratio<60>>(options.minutes);
  const Choose choose = seeded(options.seed);
  Result result;
  do {
    runWorld(options, choose, result, [&](World& world) {
      for (int i = 0; i < options.steps; ++i) {
        world.step(choose);
      }
    });
    result.framesAtOnce += everythingAtOnce(choose);
  } while (std::min(result.losses.dropped, result.losses.recovered) < options.losses ||
           std::chrono::steady_clock::now() - begin < minutes);
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  const Options options = parse(argc, argv);
  std::cout << "seed " << options.seed << std::endl;  // at once, whatever becomes of the run
  try {
    const Result result = options.played.empty() ? run(options) : play(options);
    std::cout << result.worlds << " worlds, " << result.steps << " steps, " << result.losses.happened
              << " subscriptions lost, " << result.losses.dropped
              << " of them dropped by the service: " << result.losses.recovered << " recovered, "
              << result.losses.abandoned << " torn down by the application before that; " << result.frames
              << " frames arrived as they must, and " << result.framesAtOnce << " while everything happened at once\n";
    return result.losses.happened == result.losses.recovered + result.losses.abandoned ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "seed " << options.seed << ": " << error.what() << '\n';
    return 1;
  }
}
