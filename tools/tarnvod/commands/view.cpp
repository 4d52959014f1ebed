// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/options.h"
#include "base/output.h"
#include "base/stop_signal.h"
#include "cameras/camera_choice.h"
#include "cameras/camera_options.h"
#include "commands/subcommands.h"
#include "http/http_server.h"
#include "metrics/metrics_server.h"
#include "metrics/metrics_text.h"
#include "recordings/recorded_frames.h"
#include "recordings/recording_background.h"
#include "records/box.h"
#include "viewer/background.h"
#include "viewer/kept_frames.h"
#include "viewer/live_view.h"
#include "viewer/page_setup.h"
#include "viewer/viewer_page.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::command {
namespace {

constexpr int defaultPort = 8090;
constexpr int greatestPort = 65535;
constexpr std::chrono::milliseconds tickPeriod{50};
constexpr std::uint64_t latestTime = std::numeric_limits<std::int64_t>::max();

struct ViewOptions {
  std::vector<std::string> names;  ///< camera numbers, or recordings' folders
  CameraOptions cameras;
  std::vector<std::string> recordings;
  std::string address = "127.0.0.1";
  int port = defaultPort;
  BoxOptions boxes;
  std::optional<double> aspect;
  std::vector<std::string> backgrounds;
};

using Backgrounds = std::map<int, Background>;

SharedText shared(std::string text) {
  return std::make_shared<const std::string>(std::move(text));
}

std::string pathOfBackground(int camera) {
  return "/background-" + std::to_string(camera);
}

void addSetup(HttpSite& site, const ViewOptions& options, const std::set<int>& cameras,
              const Backgrounds& backgrounds) {
  addPage(site);
  PageSetup setup{options.recordings.empty(), cameras, options.boxes.convention(), options.aspect, {}};
  for (const auto& [camera, background] : backgrounds) {
    setup.backgrounds[camera] = pathOfBackground(camera);
    site.add(pathOfBackground(camera), background.type, background.bytes);
  }
  site.add("/setup.json", shared(setupJson(setup)));
}

std::uint64_t numberIn(const HttpSite::Parameters& parameters, const std::string& name) {
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

/** Prints the page's address; scripts read this line. */
void begin(HttpServer& server) {
  server.start();
  standardOutput().write(server.site().url() + '\n');
}

int viewCameras(const ViewOptions& options) {
  const std::set<int> cameras = awaitCameras(options.cameras.cameras, {});
  const Backgrounds backgrounds = readBackgrounds(options.backgrounds, cameras);
  EventHub hub;
  KeptFrames kept;
  Liveness liveness;
  LiveView view(cameras, options.cameras.request(), hub, kept);
  HttpServer server(options.address, options.port);
  addSetup(server.site(), options, cameras, backgrounds);
  addMetrics(
      server.site(), [&view] { return view.metrics(); }, liveness);
  server.stream(hub);
  server.site().add("/past.json", [&kept](const HttpSite::Parameters& parameters) {
    return shared(kept.since(static_cast<std::int64_t>(std::min(numberIn(parameters, "from"), latestTime))));
  });
  view.connect();
  begin(server);
  view.run(liveness);
  return success;
}

/** The pictures that were named, or else those that the recordings have. */
Backgrounds backgroundsOf(const ViewOptions& options) {
  if (!options.backgrounds.empty()) {
    return readBackgrounds(options.backgrounds, numbersOf(options.recordings.size()));
  }
  Backgrounds backgrounds;
  for (std::size_t place = 0; place < options.recordings.size(); ++place) {
    if (const auto file = backgroundIn(options.recordings[place])) {
      backgrounds[static_cast<int>(place) + 1] = readBackground(*file);
    }
  }
  return backgrounds;
}

/** The recording that a request names by its number; the first, when it names none. */
const RecordedFrames& recordingOf(const std::vector<std::unique_ptr<RecordedFrames>>& recordings,
                                  const HttpSite::Parameters& parameters) {
  constexpr const char* name = "recording";
  const std::uint64_t number = parameters.count(name) == 0 ? 1 : numberIn(parameters, name);
  if (number < 1 || number > recordings.size()) {
    throw UsageError("there are " + std::to_string(recordings.size()) + " recordings");
  }
  return *recordings[static_cast<std::size_t>(number) - 1];
}

/** A viewer of recordings has nothing to report but that it runs. */
std::string metricsOfRecordings() {
  MetricsText text;
  addBuildInfo(text);
  return text.text();
}

int viewRecordings(const ViewOptions& options) {
  std::vector<std::unique_ptr<RecordedFrames>> recordings;
  for (const std::string& folder : options.recordings) {
    recordings.push_back(std::make_unique<RecordedFrames>(folder));
  }
  const Backgrounds backgrounds = backgroundsOf(options);
  Liveness liveness;
  HttpServer server(options.address, options.port);
  addSetup(server.site(), options, numbersOf(options.recordings.size()), backgrounds);
  for (std::size_t place = 0; place < recordings.size(); ++place) {
    server.site().add(pathOfOverview(static_cast<int>(place) + 1), shared(oneLine(recordings[place]->overview())));
  }
  server.site().add("/frames.json", [&recordings](const HttpSite::Parameters& parameters) {
    const RecordedFrames& recording = recordingOf(recordings, parameters);
    return shared(recording.frames(numberIn(parameters, "first"), numberIn(parameters, "count")).json);
  });
  addMetrics(server.site(), metricsOfRecordings, liveness);
  begin(server);
  while (!stopRequested()) {
    liveness.note(Clock::now());
    std::this_thread::sleep_for(tickPeriod);
  }
  return success;
}

std::optional<int> cameraNumber(const std::string& name) {
  int number = 0;
  const char* const end = name.data() + name.size();
  const auto [last, error] = std::from_chars(name.data(), end, number);
  return error == std::errc{} && last == end && number > 0 ? std::make_optional(number) : std::nullopt;
}

/** The options with what was named without one: `view DIR DIR`, `view 1 2`. */
ViewOptions withNames(ViewOptions options) {
  for (const std::string& name : options.names) {
    if (const auto camera = cameraNumber(name)) {
      options.cameras.cameras.push_back(*camera);
    } else {
      options.recordings.push_back(name);
    }
  }
  const CameraOptions& cameras = options.cameras;
  if (options.recordings.size() > mostRecordings) {
    throw UsageError("up to " + std::to_string(mostRecordings) + " recordings can be viewed at a time");
  }
  if (!options.recordings.empty() && !(cameras.cameras.empty() && cameras.classes.empty() && !cameras.region)) {
    throw UsageError("a recording is viewed without options of cameras");
  }
  return options;
}

int view(const ViewOptions& given) {
  const ViewOptions options = withNames(given);
  return options.recordings.empty() ? viewCameras(options) : viewRecordings(options);
}

}  // namespace

Action defineView(CLI::App& command) {
  const auto options = std::make_shared<ViewOptions>();
  const auto cameraOptions = addCameraOptions(command, options->cameras);
  command.add_option("names", options->names, "Recordings' folders, or camera numbers; without, all cameras")
      ->type_name("DIR|N");
  CLI::Option* recording = command
                               .add_option("--recording", options->recordings,
                                           "Recordings' folders instead of cameras; several are shown in step")
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
  command
      .add_option("--background", options->backgrounds,
                  "PNG or JPEG image behind the boxes; of several cameras or recordings, N=FILE; a recording's own is "
                  "background.jpg in its folder")
      ->type_name("FILE");
  options->boxes.addTo(command);
  addAspect(command, options->aspect);
  return [options] { return view(*options); };
}

}  // namespace tarn::command
