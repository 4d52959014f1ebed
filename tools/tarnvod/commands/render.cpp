// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/errors.h"
#include "base/files.h"
#include "base/options.h"
#include "base/text.h"
#include "commands/subcommands.h"
#include "drawing/drawing.h"
#include "recordings/recording_background.h"
#include "recordings/recording_summary.h"
#ifdef TARNVOD_WITH_VIEWER
#include "viewer/recordings_page.h"
#endif

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tarn::command {
namespace {

struct RenderOptions {
  std::vector<std::string> sources;
  std::string output;
  bool isPage = false;
  std::optional<std::uint64_t> frame;
  std::optional<std::string> detector;
  std::optional<std::string> background;
  std::optional<double> aspect;
  BoxOptions boxes;
};

constexpr const char* sceneFile = "a recording's folder or a file with one serialized VOD.Scene";

std::string nameOfSource(const std::string& source) {
  const auto path = std::filesystem::path(source).lexically_normal();
  return path.has_filename() ? path.filename().string() : path.parent_path().filename().string();
}

/** The image that was chosen, or else the recording's own, as an address; empty for none. */
std::string backgroundOf(const std::string& source, const RenderOptions& options) {
  const auto own = options.background ? std::nullopt : backgroundIn(source);
  return options.background ? svg::embeddedImage(*options.background) : own ? svg::embeddedImage(*own) : "";
}

std::string namesOf(const std::vector<std::string>& sources) {
  std::vector<std::string> names;
  std::transform(sources.begin(), sources.end(), std::back_inserter(names), nameOfSource);
  return joined(names, ", ");
}

/** The pictures of some sources, all in one style. */
class Renderer {
 public:
  explicit Renderer(const RenderOptions& options) : options_(options) {
    style_.boxes = options.boxes.convention();
    style_.aspect = options.aspect.value_or(style_.boxes.aspect().value_or(style_.aspect));
  }

  svg::Drawing draw(const std::string& source) {
    style_.background = backgroundOf(source, options_);
    if (!std::filesystem::is_directory(source)) {
      return drawSceneFile(source);
    }
    const SceneNames names = namesFor(source);
    return options_.frame
               ? drawFrameOf(source, names)
               : drawTracks(collectTracks(source, names, style_.boxes, damage_), nameOfSource(source), style_);
  }

  const DamageList& damage() const { return damage_; }

 private:
  SceneNames namesFor(const std::string& folder) {
    return options_.detector ? SceneNames(readDetectorBytes(*options_.detector)) : readSceneNames(folder, damage_);
  }

  svg::Drawing drawSceneFile(const std::string& file) const {
    ::VOD::Scene scene;
    if (!scene.ParseFromString(readFile(file, sceneFile))) {
      throw Failure(file + ": this is not a serialized VOD.Scene");
    }
    const SceneNames names = options_.detector ? SceneNames(readDetectorBytes(*options_.detector)) : SceneNames();
    return drawFrame(scene, names, nameOfSource(file), style_);
  }

  svg::Drawing drawFrameOf(const std::string& folder, const SceneNames& names) {
    std::optional<svg::Drawing> drawing;
    std::uint64_t frames = 0;
    const auto visit = [&](const ScannedScene& scanned) {
      frames = scanned.number;
      if (scanned.number == *options_.frame) {
        const std::string title = nameOfSource(folder) + ", frame " + std::to_string(scanned.number);
        drawing = drawFrame(scanned.scene, names, title, style_);
      }
      return !drawing;
    };
    scanRecording(folder, visit, damage_);
    if (!drawing) {
      throw Failure(folder + ": frame " + std::to_string(*options_.frame) + " does not exist; the last frame is " +
                    std::to_string(frames));
    }
    return *drawing;
  }

  const RenderOptions& options_;
  DrawingStyle style_;
  DamageList damage_;
};

int render(const RenderOptions& options) {
  Renderer renderer(options);
  std::vector<svg::Drawing> drawings;
  for (const std::string& source : options.sources) {
    drawings.push_back(renderer.draw(source));
  }
  writeFile(options.output, svg::picture(drawings, namesOf(options.sources)));
  failOnDamage(renderer.damage(), options.output + " shows what could be read");
  return success;
}

#ifdef TARNVOD_WITH_VIEWER

int renderPage(const RenderOptions& options) {
  if (options.sources.size() > mostRecordings) {
    throw UsageError("a page shows up to " + std::to_string(mostRecordings) + " recordings");
  }
  PageSetup setup{false, numbersOf(options.sources.size()), options.boxes.convention(), options.aspect, {}};
  int number = 0;
  for (const std::string& source : options.sources) {
    if (!std::filesystem::is_directory(source)) {
      throw Failure(source + ": a page shows recordings, and this is not a folder");
    }
    const std::string background = backgroundOf(source, options);
    ++number;
    if (!background.empty()) {
      setup.backgrounds[number] = background;
    }
  }
  const RecordingsPage page = recordingsPage(options.sources, setup, namesOf(options.sources));
  writeFile(options.output, page.html);
  failOnDamage(page.damage, options.output + " shows what could be read");
  return success;
}

void addPage(CLI::App& command, RenderOptions& options, const std::vector<CLI::Option*>& ofPictures) {
  CLI::Option* const page =
      command.add_flag("--html", options.isPage,
                       "Write the recordings as one HTML file, which plays them in a browser without a viewer");
  for (CLI::Option* const option : ofPictures) {
    page->excludes(option);
  }
}

#else

int renderPage(const RenderOptions&) {
  throw UsageError("this command was built without the viewer's page");
}

void addPage(CLI::App&, RenderOptions&, const std::vector<CLI::Option*>&) {}

#endif

}  // namespace

Action defineRender(CLI::App& command) {
  const auto options = std::make_shared<RenderOptions>();
  command
      .add_option("source", options->sources,
                  "Recordings' folders, or files with one serialized VOD.Scene each, drawn one below the other")
      ->type_name("DIR|FRAME ...")
      ->required();
  command.add_option("--output", options->output, "File to write the picture or page to")
      ->type_name("FILE")
      ->required();
  CLI::Option* const frame = command.add_option(
      "--frame", options->frame, "Draw frame N of the recordings, counted from 1, instead of the tracks");
  takesFrameNumbers(*frame);
  CLI::Option* const detector =
      command
          .add_option("--detector", options->detector,
                      "Detector information with the names of classes and attributes; default: the recording's")
          ->type_name("FILE");
  command
      .add_option("--background", options->background,
                  "PNG or JPEG image behind the boxes; default: a recording's background.jpg")
      ->type_name("FILE");
  addAspect(command, options->aspect);
  options->boxes.addTo(command);
  addPage(command, *options, {frame, detector});
  return [options] { return options->isPage ? renderPage(*options) : render(*options); };
}

}  // namespace tarn::command
