// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Turns a video into a recording of the people in it, which the host platform replays as a camera.

#include "tarnvod/base/signal_flag.h"
#include "video-recorder/record.h"

#include <CLI/CLI.hpp>
#include <opencv2/core.hpp>
#include <opencv2/core/utils/logger.hpp>

#include <csignal>
#include <exception>
#include <iostream>

namespace {

tarn::command::SignalFlag isStopping = false;

void stop(int /*signal*/) {
  isStopping = true;
}

void addOptions(CLI::App& app, recorder::Options& options) {
  app.add_option("INPUT", options.input, "A video file, or the number of a camera of this computer")->required();
  app.add_option("--output", options.output, "The folder of the recording to make")->required()->type_name("DIR");
  app.add_flag("--mirror", options.isMirrored, "Swap left and right first");
  app.add_option("--camera", options.camera, "The camera that the recording stands for")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str()
      ->type_name("N");
  app.add_option("--from", options.firstFrame, "Pass over the first N frames")
      ->check(CLI::NonNegativeNumber)
      ->type_name("N");
  app.add_option("--frames", options.frames, "Stop after N frames")->check(CLI::PositiveNumber)->type_name("N");
  app.add_option("--smallest", options.smallestPerson, "Height of the smallest person to find; smaller is slower")
      ->check(CLI::Range(16, 1024))
      ->capture_default_str()
      ->type_name("PIXELS");
}

int run(const recorder::Options& options) {
  // One thread, so that the same video gives the same recording everywhere; failures are ours to report.
  cv::setNumThreads(1);
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  std::signal(SIGINT, stop);
  std::signal(SIGTERM, stop);
  const int frames = recorder::record(options, isStopping);
  std::cout << options.output.string() << ": " << frames << " frames\n";
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  recorder::Options options;
  CLI::App app("Makes a recording of the people in a video.", "tarnvod-video-recorder");
  addOptions(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  }
  try {
    return run(options);
  } catch (const std::exception& error) {
    std::cerr << "tarnvod-video-recorder: " << error.what() << "\n";
    return 1;
  }
}
