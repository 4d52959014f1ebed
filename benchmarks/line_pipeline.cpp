// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The text of a record as `tarnvod watch --json` and `tarnvod publish` print it.

#include "pipelines.h"
#include "records/frame_json.h"

namespace tarn::VOD::bench {

ProcessFrame linePipeline(const Sample& sample) {
  constexpr int camera = 1;
  return [records = recordsOf(sample)]() mutable {
    const std::string line = command::frameJson(records.next(), camera);
    asm volatile("" : : "r"(line.data()) : "memory");
  };
}

}  // namespace tarn::VOD::bench
