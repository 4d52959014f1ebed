// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"
#include "drawing/drawing.h"
#include "recordings/scene_record.h"
#include "records/frame_text.h"

#include <algorithm>

namespace tarn::command {
namespace {

using svg::element;
using svg::number;

constexpr double chipSize = 12.5;
constexpr double chipHeight = 18;
constexpr double lineHeight = 17;

/** Solid for an object that is tracked with confidence, dashed for one tracked without, dotted for an untracked one. */
std::string dashesOf(VOD::DetectionStatus status) {
  switch (status) {
    case VOD::DetectionStatus::TrackedConfident:
      return "none";
    case VOD::DetectionStatus::TrackedUnconfident:
      return "8 4";
    case VOD::DetectionStatus::Untracked:
      break;
  }
  return "2 4";
}

std::string nameOfObject(const ::VOD::Detection& detection, const SceneNames& names) {
  return printable(names.className(detection.class_id())) + ' ' + std::to_string(detection.object_id());
}

/** The object's name on a ground of its colour: above the box, or inside where there is no room above. */
std::string drawChip(const std::string& name, const std::string& colour, const Canvas& canvas, double left,
                     double boxTop) {
  const double width = svg::textWidth(name, chipSize) + 10;
  const double x = std::clamp(left, canvas.x(0), std::max(canvas.x(0), canvas.x(1) - width));
  const double y = boxTop - chipHeight < canvas.y(0) ? std::max(boxTop, canvas.y(0)) : boxTop - chipHeight;
  return element("rect", {{"x", number(x)},
                          {"y", number(y)},
                          {"width", number(width)},
                          {"height", number(chipHeight)},
                          {"rx", "3"},
                          {"fill", colour}}) +
         svg::text(x + 5, y + chipHeight - 5, "chip", name, "start", chipSize);
}

std::string drawBox(const ::VOD::Detection& detection, const SceneNames& names, const Canvas& canvas,
                    const BoxConvention& boxes) {
  const Box box = boxes.toPicture({detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()});
  if (!box.isFinite()) {
    return {};
  }
  const std::string colour = svg::colourOf(detection.object_id());
  const double left = canvas.x(box.left);
  const double top = canvas.y(box.top);
  return element("rect", {{"x", number(left)},
                          {"y", number(top)},
                          {"width", number(canvas.x(box.right) - left)},
                          {"height", number(canvas.y(box.bottom) - top)},
                          {"rx", "2"},
                          {"fill", colour},
                          {"fill-opacity", "0.10"},
                          {"stroke", colour},
                          {"stroke-width", "2.4"},
                          {"stroke-dasharray", dashesOf(statusOf(detection))}}) +
         drawChip(nameOfObject(detection, names), colour, canvas, left, top);
}

std::vector<std::string> attributeLines(const ::VOD::Detection& detection, const SceneNames& names) {
  std::vector<std::string> lines;
  for (const auto& attribute : detection.attributes()) {
    std::string text = printable(names.attributeName(attribute.type()));
    if (attribute.has_class_case() == ::VOD::Attribute::kClass) {
      text += ": " + printable(names.attributeValue(attribute.type(), attribute.class_()));
    }
    if (attribute.has_score_case() == ::VOD::Attribute::kScore) {
      text += ", score " + std::to_string(attribute.score());
    }
    lines.push_back(std::move(text));
  }
  return lines;
}

/** The list to the right of the picture, with what has no room in the boxes. */
svg::Drawing drawList(const ::VOD::Scene& scene, const SceneNames& names) {
  std::string content;
  double y = 0;
  for (const auto& detection : scene.detections()) {
    content += element("rect", {{"x", "0"},
                                {"y", number(y + 2)},
                                {"width", "12"},
                                {"height", "12"},
                                {"rx", "3"},
                                {"fill", svg::colourOf(detection.object_id())}});
    content += svg::text(20, y + 12, "row",
                         nameOfObject(detection, names) + ", score " + std::to_string(detection.score()) + ", " +
                             statusText(statusOf(detection)),
                         "start", 13);
    for (const std::string& line : attributeLines(detection, names)) {
      y += lineHeight;
      content += svg::text(20, y + 12, "note", line);
    }
    y += 1.5 * lineHeight;
  }
  return {panelWidth, y, content};
}

}  // namespace

svg::Drawing drawFrame(const ::VOD::Scene& scene, const SceneNames& names, const std::string& title,
                       const DrawingStyle& style) {
  const Canvas canvas = makeCanvas(style);
  const std::string note = "at " + clockText(scene.timestamp()) + ", " +
                           counted(static_cast<std::uint64_t>(scene.detections_size()), "object") +
                           ". Solid boxes: tracked with confidence; dashed: tracked; dotted: not tracked.";
  std::string boxes;
  for (const auto& detection : scene.detections()) {
    boxes += drawBox(detection, names, canvas, style.boxes);
  }
  const svg::Drawing list = drawList(scene, names);
  const std::string position = "translate(" + number(canvas.x(1) + margin) + " " + number(canvas.top) + ")";
  const std::string content =
      drawCanvas(canvas, style, title, note, 1) + boxes + element("g", {{"transform", position}}, "\n" + list.content);
  return {drawingWidth, headHeight + std::max(canvas.height, list.height) + margin, content};
}

}  // namespace tarn::command
