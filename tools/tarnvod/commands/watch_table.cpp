// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "commands/watch_table.h"

#include "base/text.h"
#include "records/frame_text.h"

#include <algorithm>
#include <string>

namespace tarn::command {
namespace {

constexpr std::size_t linesPerCamera = 3;  // its state, the column names, an empty line
constexpr std::size_t idColumns = 8;
constexpr std::size_t mostClassColumns = 16;
constexpr std::size_t scoreColumns = 6;
constexpr std::size_t statusColumns = 11;
constexpr std::size_t ageColumns = 8;

std::string secondsText(Clock::duration duration) {
  return fixed(std::chrono::duration<double>(duration).count(), 1) + " s";
}

std::string numbersText(const CameraStatistics& statistics, Clock::time_point now) {
  const std::size_t objects = statistics.latest() == nullptr ? 0 : statistics.latest()->detections.size();
  std::string text = "   " + fixed(statistics.rate(now), 1) + " frames/s   " + counted(statistics.frames(), "frame") +
                     "   " + counted(objects, "object") + "   " + counted(statistics.events(), "event");
  return statistics.lastEvent().empty() ? text : text + ", last: " + statistics.lastEvent();
}

Line stateLine(const WatchedCamera& camera, Clock::time_point now) {
  const Span title{"camera " + std::to_string(camera.number), Style::Bold};
  if (const std::string problem = problemOf(camera.camera.status(), now); !problem.empty()) {
    return {title, {"   " + problem, Style::Bad}};
  }
  if (camera.statistics.latest() == nullptr) {
    return {title, {"   set up, waiting for the first frame", Style::Warning}};
  }
  const Span age{"   last frame " + secondsText(now - camera.statistics.latestAt()) + " ago", Style::Good};
  return {title, age, {numbersText(camera.statistics, now)}};
}

Style styleOf(VOD::DetectionStatus status) {
  switch (status) {
    case VOD::DetectionStatus::TrackedConfident:
      return Style::Good;
    case VOD::DetectionStatus::TrackedUnconfident:
      return Style::Warning;
    case VOD::DetectionStatus::Untracked:
      break;
  }
  return Style::Dim;
}

/** The columns of a camera's table that are as wide as what stands in them. */
struct Columns {
  std::size_t className = 0;
  std::size_t box = 0;
  std::size_t attributes = 0;  ///< what is left of the screen
};

Columns columnsFor(const std::vector<VOD::Data>& detections, std::size_t screenColumns) {
  Columns columns{displayWidth("class"), displayWidth("box"), 0};
  for (const VOD::Data& detection : detections) {
    columns.className = std::max(columns.className, displayWidth(printable(detection.className)));
    columns.box = std::max(columns.box, displayWidth(boxText(detection)));
  }
  columns.className = std::min(columns.className, mostClassColumns);
  const std::size_t used =
      idColumns + 2 + columns.className + scoreColumns + 2 + statusColumns + 2 + columns.box + ageColumns + 2;
  columns.attributes = screenColumns > used ? screenColumns - used : 0;
  return columns;
}

Line headLine(const Columns& columns) {
  return {{fittedRight("object", idColumns) + "  " + fitted("class", columns.className) +
               fittedRight("score", scoreColumns) + "  " + fitted("status", statusColumns) + "  " +
               fitted("box", columns.box) + fittedRight("age", ageColumns) + "  attributes",
           Style::Dim}};
}

/** As much of the attributes as there is room for: names, values and scores; names and values; values. */
std::string fittingAttributes(const VOD::Data& detection, std::size_t columns) {
  for (const auto detail : {AttributeDetail::Scores, AttributeDetail::Names}) {
    const std::string text = attributesText(detection, detail);
    if (displayWidth(text) <= columns) {
      return text;
    }
  }
  return attributesText(detection, AttributeDetail::Values);
}

Line objectLine(const VOD::Data& detection, const CameraStatistics& statistics, const Columns& columns) {
  return {{fittedRight(std::to_string(detection.objectId), idColumns) + "  ", Style::Bold},
          {fitted(printable(detection.className), columns.className)},
          {fittedRight(std::to_string(detection.score), scoreColumns) + "  "},
          {fitted(statusText(detection.status), statusColumns) + "  ", styleOf(detection.status)},
          {fittedRight(boxText(detection), columns.box)},
          {fittedRight(secondsText(statistics.ageOf(detection.objectId)), ageColumns) + "  "},
          {fittingAttributes(detection, columns.attributes)}};
}

/** In the order of their ids, so that a row stays where it is from frame to frame. */
std::vector<VOD::Data> sortedById(std::vector<VOD::Data> detections) {
  std::stable_sort(detections.begin(), detections.end(),
                   [](const VOD::Data& left, const VOD::Data& right) { return left.objectId < right.objectId; });
  return detections;
}

void addObjects(std::vector<Line>& lines, const CameraStatistics& statistics, std::size_t rows,
                std::size_t screenColumns) {
  const auto detections = sortedById(statistics.latest()->detections);
  if (detections.empty()) {
    lines.push_back({{fittedRight("-", idColumns) + "  no objects", Style::Dim}});
    return;
  }
  const Columns columns = columnsFor(detections, screenColumns);
  lines.push_back(headLine(columns));
  const bool allFit = detections.size() <= rows;
  const std::size_t shown = allFit ? detections.size() : rows - 1;
  for (std::size_t index = 0; index < shown; ++index) {
    lines.push_back(objectLine(detections[index], statistics, columns));
  }
  if (!allFit) {
    const std::string more = "and " + std::to_string(detections.size() - shown) + " more";
    lines.push_back({{std::string(idColumns + 2, ' ') + more, Style::Dim}});
  }
}

/** Shows that what is in these lines is not up to date. */
void dim(std::vector<Line>& lines, std::size_t first) {
  for (std::size_t index = first; index < lines.size(); ++index) {
    for (Span& span : lines[index]) {
      span.style = Style::Dim;
    }
  }
}

}  // namespace

std::vector<Line> watchTable(const WatchedCameras& cameras, const TerminalSize& size, Clock::time_point now) {
  const std::size_t titleLines = 2;
  const std::size_t fixedLines = titleLines + linesPerCamera * cameras.size();
  const std::size_t freeLines = size.rows > fixedLines ? size.rows - fixedLines : 0;
  const std::size_t rowsPerCamera = std::max<std::size_t>(1, freeLines / cameras.size());
  std::vector<Line> lines{{{"tarnvod watch", Style::Bold}, {"   q or Ctrl-C ends", Style::Dim}}, {}};
  for (const WatchedCamera& camera : cameras) {
    lines.push_back(stateLine(camera, now));
    if (camera.statistics.latest() != nullptr) {
      const std::size_t firstRow = lines.size();
      addObjects(lines, camera.statistics, rowsPerCamera, size.columns);
      if (camera.camera.status().state != VOD::CameraState::Receiving) {
        dim(lines, firstRow);
      }
    }
    lines.emplace_back();
  }
  return lines;
}

std::string watchSummary(const WatchedCamera& camera, Clock::duration elapsed) {
  const CameraStatistics& statistics = camera.statistics;
  const double seconds = std::chrono::duration<double>(elapsed).count();
  std::uint64_t objects = 0;
  std::vector<std::string> classes;
  for (const auto& [name, count] : statistics.objectsByClass()) {
    objects += count;
    classes.push_back(printable(name) + ' ' + std::to_string(count));
  }
  return "camera " + std::to_string(camera.number) + ": " + counted(statistics.frames(), "frame") + " in " +
         fixed(seconds, 1) + " s, " + counted(objects, "object") +
         (classes.empty() ? "" : " (" + joined(classes, ", ") + ")") + ", " + counted(statistics.events(), "event") +
         ", " + counted(camera.camera.status().interruptions, "interruption");
}

}  // namespace tarn::command
