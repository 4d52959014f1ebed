// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/stop_signal.h"
#include "base/text.h"
#include "drawing/drawing.h"

#include <algorithm>
#include <array>

namespace tarn::command {
namespace {

using svg::element;
using svg::number;

constexpr double labelSize = 12;

struct Point {
  double x = 0;
  double y = 0;
};

/** Where an object stands: the middle of its box's lower edge. */
Point footOf(const TrackPoint& point, const Canvas& canvas) {
  return {canvas.x((point.box.left + point.box.right) / 2), canvas.y(point.box.bottom)};
}

std::string pathOf(const std::vector<Point>& points) {
  std::string path;
  for (const Point& point : points) {
    path += (path.empty() ? "M" : "L") + number(point.x) + " " + number(point.y);
  }
  // A single point is drawn as a dot: a line that ends where it starts.
  return points.size() == 1 ? path + "h0" : path;
}

/** The stretches of a track in which the object was seen without a longer gap. */
std::vector<std::vector<Point>> stretchesOf(const Track& track, const Canvas& canvas) {
  std::vector<std::vector<Point>> stretches;
  for (const TrackPoint& point : track.points) {
    if (point.beginsStretch) {
      stretches.emplace_back();
    }
    stretches.back().push_back(footOf(point, canvas));
  }
  return stretches;
}

std::string drawPath(const std::vector<Point>& points, const char* cls, const std::string& colour) {
  return element("path", {{"d", pathOf(points)}, {"class", cls}, {"stroke", colour}});
}

std::string drawStretches(const Track& track, const Canvas& canvas) {
  const std::string colour = svg::colourOf(track.objectId);
  const auto stretches = stretchesOf(track, canvas);
  std::string content;
  for (std::size_t index = 0; index < stretches.size(); ++index) {
    if (index > 0) {
      content += drawPath({stretches[index - 1].back(), stretches[index].front()}, "unseen", colour);
    }
    content += element("path", {{"d", pathOf(stretches[index])}, {"class", "casing"}});
    content += drawPath(stretches[index], "track", colour);
  }
  return content;
}

std::string drawEnds(const Track& track, const Canvas& canvas) {
  const std::string colour = svg::colourOf(track.objectId);
  const auto circle = [&](const Point& at, const std::string& fill, double radius) {
    return element("circle", {{"cx", number(at.x)},
                              {"cy", number(at.y)},
                              {"r", number(radius)},
                              {"fill", fill},
                              {"stroke", fill == colour ? "#fff" : colour},
                              {"stroke-width", fill == colour ? "1.2" : "2"}});
  };
  return circle(footOf(track.points.front(), canvas), "#fff", 3.6) +
         circle(footOf(track.points.back(), canvas), colour, 5);
}

/** Dotted lines from where an object was lost to where it was seen again under another id. */
std::string drawConnections(const Tracks& tracks, const Canvas& canvas) {
  std::map<std::uint32_t, const Track*> byId;
  for (const Track& track : tracks.tracks) {
    byId[track.objectId] = &track;
  }
  std::string content;
  for (const auto& [id, other] : tracks.connected) {
    const auto one = byId.find(id);
    const auto two = byId.find(other);
    if (one == byId.end() || two == byId.end() || one == two) {
      continue;
    }
    const bool inOrder = one->second->points.front().seconds <= two->second->points.front().seconds;
    const Track& earlier = *(inOrder ? one : two)->second;
    const Track& later = *(inOrder ? two : one)->second;
    content += drawPath({footOf(earlier.points.back(), canvas), footOf(later.points.front(), canvas)}, "unseen",
                        svg::colourOf(later.objectId));
  }
  return content;
}

/** Places labels so that none covers another. */
class LabelPlacer {
 public:
  explicit LabelPlacer(const Canvas& canvas) : canvas_(canvas) {}

  /** A label next to one of the points, the first that has room; nothing when there is none. */
  std::string place(const std::vector<Point>& points, const std::string& label, const std::string& colour) {
    const double width = svg::textWidth(label, labelSize);
    for (const Point& point : points) {
      for (const Point offset : {Point{9, 4}, Point{-9 - width, 4}, Point{-width / 2, -9}, Point{-width / 2, 18}}) {
        const Box box{point.x + offset.x, point.y + offset.y - labelSize, point.x + offset.x + width,
                      point.y + offset.y + 2};
        if (isFree(box)) {
          taken_.push_back(box);
          return element("text",
                         {{"x", number(box.left)},
                          {"y", number(box.bottom - 2)},
                          {"class", "label"},
                          {"font-size", number(labelSize)},
                          {"style", "fill:" + colour}},
                         svg::escaped(label));
        }
      }
    }
    return {};
  }

 private:
  bool isFree(const Box& box) const {
    const bool isInside =
        box.left >= canvas_.x(0) && box.right <= canvas_.x(1) && box.top >= canvas_.y(0) && box.bottom <= canvas_.y(1);
    return isInside && std::none_of(taken_.begin(), taken_.end(), [&](const Box& other) {
             return box.left < other.right && other.left < box.right && box.top < other.bottom &&
                    other.top < box.bottom;
           });
  }

  const Canvas canvas_;
  std::vector<Box> taken_;
};

std::string drawLabels(const Tracks& tracks, const Canvas& canvas) {
  LabelPlacer placer(canvas);
  std::string content;
  for (const Track& track : tracks.tracks) {
    throwIfStopRequested();
    const std::vector<Point> candidates{footOf(track.points.back(), canvas), footOf(track.points.front(), canvas),
                                        footOf(track.points[track.points.size() / 2], canvas)};
    content += placer.place(candidates, std::to_string(track.objectId), svg::colourOf(track.objectId));
  }
  return content;
}

/** Lines can leave the picture where the detector's boxes do; they are cut at its edge. */
std::string clipped(const Canvas& canvas, const std::string& content) {
  return element("svg",
                 {{"x", number(canvas.left)},
                  {"y", number(canvas.top)},
                  {"width", number(canvas.width)},
                  {"height", number(canvas.height)},
                  {"viewBox", number(canvas.left) + " " + number(canvas.top) + " " + number(canvas.width) + " " +
                                  number(canvas.height)}},
                 "\n" + content);
}

}  // namespace

svg::Drawing drawTracks(const Tracks& tracks, const std::string& title, const DrawingStyle& style) {
  constexpr double imageOpacity = 0.5;
  const Canvas canvas = makeCanvas(style);
  const std::string note = counted(tracks.tracks.size(), "object") + " in " + counted(tracks.frames, "frame") + ", " +
                           fixed(tracks.seconds, 1) +
                           " s. Each line follows the middle of a box's lower edge: ○ first seen, ● last seen, "
                           "dotted while not seen.";
  std::string lines;
  std::string ends;
  for (const Track& track : tracks.tracks) {
    throwIfStopRequested();
    lines += drawStretches(track, canvas);
    ends += drawEnds(track, canvas);
  }
  const svg::Drawing timeline = drawTimeline(tracks);
  const std::string position = "translate(" + number(canvas.x(1) + margin) + " " + number(canvas.top) + ")";
  const std::string content =
      drawCanvas(canvas, style, title, note, imageOpacity) + clipped(canvas, drawConnections(tracks, canvas) + lines) +
      ends + drawLabels(tracks, canvas) + element("g", {{"transform", position}}, "\n" + timeline.content);
  return {drawingWidth, headHeight + std::max(canvas.height, timeline.height) + margin, content};
}

}  // namespace tarn::command
