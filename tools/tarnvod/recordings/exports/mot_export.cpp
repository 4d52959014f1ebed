// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text_buffer.h"
#include "recordings/exports/frame_export.h"

namespace tarn::command {
namespace {

class MotExport : public FrameExport {
 public:
  MotExport(const std::string& path, const PixelSize& size, const BoxConvention& boxes)
      : file_(path), size_(size), boxes_(boxes) {}

  void add(const ScannedScene& scanned) override {
    lines_.clear();
    for (const auto& detection : scanned.scene.detections()) {
      lines_.append(scanned.number, ',');
      lines_.append(detection.object_id(), ',');
      addBox(detection);
      lines_.append(detection.score());
      lines_.append(",-1,-1,-1\n");
    }
    file_.write(lines_.text());
  }

  void finish() override { file_.commit(); }

 private:
  /** Left, top, width and height in pixels. */
  void addBox(const ::VOD::Detection& detection) {
    const Box box =
        boxes_.toPicture({detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()});
    for (const double pixels : {box.left * size_.width, box.top * size_.height, (box.right - box.left) * size_.width,
                                (box.bottom - box.top) * size_.height}) {
      constexpr int digits = 2;
      lines_.appendFixed(pixels, digits);
      lines_.append(',');
    }
  }

  ReplacedFile file_;
  const PixelSize size_;
  const BoxConvention boxes_;
  TextBuffer lines_;
};

}  // namespace

std::unique_ptr<FrameExport> makeMotExport(const std::string& path, const PixelSize& size, const BoxConvention& boxes) {
  return std::make_unique<MotExport>(path, size, boxes);
}

}  // namespace tarn::command
