// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"
#include "drawing/drawing.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarn::command {
namespace {

using svg::element;
using svg::number;

constexpr double labelWidth = 118;
constexpr double barsWidth = panelWidth - labelWidth;
constexpr double axisHeight = 26;
constexpr double greatestRow = 22;
constexpr double smallestRow = 11;

/** A round number of seconds between marks, so that there are about five. */
double markDistance(double seconds) {
  const double rough = std::max(seconds, 0.001) / 5;
  const double magnitude = std::pow(10, std::floor(std::log10(rough)));
  for (const double step : {1.0, 2.0, 5.0}) {
    if (step * magnitude >= rough) {
      return step * magnitude;
    }
  }
  return 10 * magnitude;
}

double positionOf(double seconds, const Tracks& tracks) {
  return labelWidth + (tracks.seconds > 0 ? barsWidth * seconds / tracks.seconds : 0);
}

std::string drawAxis(const Tracks& tracks, double height) {
  const double distance = markDistance(tracks.seconds);
  const int digits = distance < 1 ? static_cast<int>(std::ceil(-std::log10(distance))) : 0;
  std::string content;
  for (int mark = 0; mark * distance <= tracks.seconds; ++mark) {
    const double x = positionOf(mark * distance, tracks);
    content += element("line", {{"x1", number(x)},
                                {"y1", number(axisHeight - 6)},
                                {"x2", number(x)},
                                {"y2", number(height)},
                                {"class", "grid"}});
    content += svg::text(x, axisHeight - 11, "axis", fixed(mark * distance, digits) + " s",
                         x > panelWidth - 20 ? "end" : "middle");
  }
  return content;
}

/** One bar for each time that the object was seen without a break. */
std::string drawBars(const Track& track, const Tracks& tracks, double top, double height) {
  std::string content;
  for (auto first = track.points.begin(); first != track.points.end();) {
    auto last = first;
    while (std::next(last) != track.points.end() && !std::next(last)->beginsStretch) {
      ++last;
    }
    const double left = positionOf(first->seconds, tracks);
    const double width = std::max(2.0, positionOf(last->seconds, tracks) - left);
    content += element("rect", {{"x", number(left)},
                                {"y", number(top)},
                                {"width", number(width)},
                                {"height", number(height)},
                                {"rx", number(height / 3)},
                                {"fill", svg::colourOf(track.objectId)}});
    first = std::next(last);
  }
  return content;
}

}  // namespace

svg::Drawing drawTimeline(const Tracks& tracks) {
  constexpr double preferredHeight = 700;
  const double count = static_cast<double>(std::max<std::size_t>(1, tracks.tracks.size()));
  const double rowHeight = std::clamp((preferredHeight - axisHeight) / count, smallestRow, greatestRow);
  const double height = axisHeight + rowHeight * count;
  const double textSize = std::min(12.0, rowHeight * 0.82);
  std::string content = drawAxis(tracks, height);
  double top = axisHeight;
  for (const Track& track : tracks.tracks) {
    const auto columns = static_cast<std::size_t>((labelWidth - 12) / svg::textWidth("x", textSize));
    const std::string id = ' ' + std::to_string(track.objectId);
    const std::string name = cut(printable(track.className), columns > id.size() ? columns - id.size() : 1) + id;
    content += svg::text(labelWidth - 8, top + rowHeight / 2 + textSize * 0.36, "row", name, "end", textSize);
    content += drawBars(track, tracks, top + rowHeight * 0.2, rowHeight * 0.6);
    top += rowHeight;
  }
  return {panelWidth, height, content};
}

}  // namespace tarn::command
