// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/options.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "cameras/camera_options.h"
#include "commands/subcommands.h"
#include "drawing/box.h"
#include "recordings/recorded_frames.h"
#include "viewer/live_view.h"
#include "viewer/view_server.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <charconv>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

namespace tarn::command {
namespace {

constexpr int defaultPort = 8090;
constexpr int greatestPort = 65535;
constexpr std::chrono::milliseconds tickPeriod{50};

struct ViewOptions {
  CameraOptions cameras;
  std::optional<std::string> recording;
  std::string address = "127.0.0.1";
  int port = defaultPort;
  BoxOptions boxes;
  std::optional<double> aspect;
};

Json boxesJson(const BoxConvention& boxes) {
  return {{"form", boxes.form == BoxConvention::Form::Size ? "size" : "corners"}, {"range", boxes.range}};
}

SharedText shared(std::string text) {
  return std::make_shared<const std::string>(std::move(text));
}

/** What the page has to know before it draws anything. */
SharedText setupText(const ViewOptions& options, const std::set<int>& cameras) {
  constexpr double usualAspect = 4.0 / 3.0;
  const BoxConvention boxes = options.boxes.convention();
  const double aspect = options.aspect.value_or(boxes.aspect().value_or(usualAspect));
  return shared(oneLine({{"mode", options.recording ? "recording" : "live"},
                         {"cameras", cameras},
                         {"boxes", boxesJson(boxes)},
                         {"aspect", static_cast<float>(aspect)},
                         {"version", TARNVOD_VERSION}}));
}

std::uint64_t numberIn(const ViewSite::Parameters& parameters, const std::string& name) {
  const auto found = parameters.find(name);
  std::uint64_t number = 0;
  if (found != parameters.end()) {
    const char* const end = found->second.data() + found->second.size();
    const auto [last, error] = std::from_chars(found->second.data(), end, number);
    if (error == std::errc{} && last == end) {
      return number;
    }
  }
  throw UsageError(name + " must be a number, 0 or more");
}

/** Tells where to look; scripts read this line. */
void begin(ViewServer& server) {
  server.start();
  standardOutput().write(server.site().url() + '\n');
}

int viewCameras(const ViewOptions& options) {
  EventHub hub;
  ViewServer server(options.address, options.port);
  server.site().add("/setup.json",
                    setupText(options, {options.cameras.cameras.begin(), options.cameras.cameras.end()}));
  server.stream(hub);
  LiveView view(options.cameras, hub);
  view.connect();
  begin(server);
  view.run();
  return success;
}

int viewRecording(const ViewOptions& options) {
  const RecordedFrames recording(*options.recording);
  ViewServer server(options.address, options.port);
  server.site().add("/setup.json", setupText(options, {1}));
  server.site().add("/recording.json", shared(oneLine(recording.overview())));
  server.site().add("/frames.json", [&recording](const ViewSite::Parameters& parameters) {
    return shared(oneLine(recording.frames(numberIn(parameters, "first"), numberIn(parameters, "count"))));
  });
  begin(server);
  while (!stopRequested()) {
    std::this_thread::sleep_for(tickPeriod);
  }
  return success;
}

int view(const ViewOptions& options) {
  if (options.recording) {
    return viewRecording(options);
  }
  if (options.cameras.cameras.empty()) {
    throw UsageError("name cameras with --camera, or a recording with --recording");
  }
  return viewCameras(options);
}

}  // namespace

Action defineView(CLI::App& command) {
  const auto options = std::make_shared<ViewOptions>();
  const auto cameraOptions = addCameraOptions(command, options->cameras);
  CLI::Option* recording =
      command.add_option("--recording", options->recording, "A recording's folder instead of cameras")
          ->type_name("DIR");
  for (CLI::Option* option : cameraOptions) {
    recording->excludes(option);
  }
  command
      .add_option("--port", options->port,
                  "Port of the page; 0 for any that is free, default " + std::to_string(defaultPort))
      ->type_name("N")
      ->check(CLI::Range(0, greatestPort));
  command
      .add_option("--address", options->address,
                  "Address of this machine at which the page is served; default 127.0.0.1, which only this machine "
                  "reaches")
      ->type_name("ADDRESS");
  options->boxes.addTo(command);
  addAspect(command, options->aspect);
  return [options] { return view(*options); };
}

}  // namespace tarn::command
