// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"
#include "drawing/drawing.h"

namespace tarn::command {

using svg::element;
using svg::number;

Canvas makeCanvas(const DrawingStyle& style) {
  return {margin, headHeight, canvasWidth, canvasWidth / style.aspect};
}

namespace {

std::string line(double x1, double y1, double x2, double y2) {
  return element("line",
                 {{"x1", number(x1)}, {"y1", number(y1)}, {"x2", number(x2)}, {"y2", number(y2)}, {"class", "grid"}});
}

std::string grid(const Canvas& canvas) {
  std::string lines;
  for (const double fraction : {0.25, 0.5, 0.75}) {
    lines += line(canvas.x(fraction), canvas.y(0), canvas.x(fraction), canvas.y(1));
    lines += line(canvas.x(0), canvas.y(fraction), canvas.x(1), canvas.y(fraction));
  }
  return lines;
}

svg::Attributes areaOf(const Canvas& canvas) {
  return {{"x", number(canvas.left)},
          {"y", number(canvas.top)},
          {"width", number(canvas.width)},
          {"height", number(canvas.height)}};
}

std::string area(const Canvas& canvas, const svg::Attributes& more) {
  svg::Attributes attributes = areaOf(canvas);
  attributes.insert(attributes.end(), more.begin(), more.end());
  return element("rect", attributes);
}

std::string image(const Canvas& canvas, const std::string& address, double opacity) {
  svg::Attributes attributes = areaOf(canvas);
  attributes.emplace_back("preserveAspectRatio", "none");
  attributes.emplace_back("opacity", number(opacity));
  attributes.emplace_back("href", address);
  return element("image", attributes);
}

/** The numbers that stand for the picture's edges, at two of its corners. */
std::string cornerNumbers(const Canvas& canvas, const BoxConvention& boxes) {
  const auto& [left, top, right, bottom] = boxes.range;
  return svg::text(canvas.x(0), canvas.y(1) + 15, "axis", shortest(left) + ", " + shortest(bottom)) +
         svg::text(canvas.x(1), canvas.y(0) - 6, "axis", shortest(right) + ", " + shortest(top), "end");
}

}  // namespace

std::string drawCanvas(const Canvas& canvas, const DrawingStyle& style, const std::string& title,
                       const std::string& note, double imageOpacity) {
  std::string content = svg::text(margin, 36, "title", title) + svg::text(margin, 58, "note", note);
  content += area(canvas, {{"fill", "#fff"}});
  content += style.background.empty() ? grid(canvas) : image(canvas, style.background, imageOpacity);
  content += area(canvas, {{"class", "frame"}});
  return content + cornerNumbers(canvas, style.boxes);
}

}  // namespace tarn::command
