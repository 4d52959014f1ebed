// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"
#include "recordings/exports/frame_export.h"

#include <array>

namespace tarn::command {
namespace {

class MotExport : public FrameExport {
 public:
  MotExport(const std::string& path, const PixelSize& size, const BoxConvention& boxes)
      : file_(path), size_(size), boxes_(boxes) {}

  void add(const ScannedScene& scanned) override {
    for (const auto& detection : scanned.scene.detections()) {
      file_.write(std::to_string(scanned.number) + ',' + std::to_string(detection.object_id()) + ',' +
                  boxOf(detection) + ',' + std::to_string(detection.score()) + ",-1,-1,-1\n");
    }
  }

  void finish() override { file_.commit(); }

 private:
  /** Left, top, width and height in pixels. */
  std::string boxOf(const ::VOD::Detection& detection) const {
    const Box box =
        boxes_.toPicture({detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()});
    return fixed(box.left * size_.width, 2) + ',' + fixed(box.top * size_.height, 2) + ',' +
           fixed((box.right - box.left) * size_.width, 2) + ',' + fixed((box.bottom - box.top) * size_.height, 2);
  }

  ReplacedFile file_;
  const PixelSize size_;
  const BoxConvention boxes_;
};

}  // namespace

std::unique_ptr<FrameExport> makeMotExport(const std::string& path, const PixelSize& size, const BoxConvention& boxes) {
  return std::make_unique<MotExport>(path, size, boxes);
}

}  // namespace tarn::command
