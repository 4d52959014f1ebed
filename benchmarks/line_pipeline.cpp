// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The text of a record as `tarnvod watch --json` and `tarnvod publish` print it.

#include "pipelines.h"
#include "records/frame_json.h"

#include <memory>

namespace tarn::VOD::bench {

ProcessFrame linePipeline(const Sample& sample) {
  constexpr int camera = 1;
  const auto line = std::make_shared<command::TextBuffer>();
  return [records = recordsOf(sample), line]() mutable {
    line->clear();
    command::appendFrameJson(*line, records.next(), camera);
    asm volatile("" : : "r"(line->text().data()) : "memory");
  };
}

}  // namespace tarn::VOD::bench
