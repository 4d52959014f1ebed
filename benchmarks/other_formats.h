// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_BENCHMARKS_OTHER_FORMATS_H
#define TARNVOD_BENCHMARKS_OTHER_FORMATS_H

#include "pipelines.h"

#include <tarnvod/detection_data.h>

#include <memory>
#include <optional>

namespace tarn::VOD::bench {

ProcessFrame nlohmannJsonPipeline(const Sample& sample);
ProcessFrame rapidjsonPipeline(const Sample& sample);
ProcessFrame simdjsonPipeline(const Sample& sample);
ProcessFrame flatbuffersPipeline(const Sample& sample);

/** The sample's scene with the schema's field names, ids as numbers; without outlines, which no record holds. */
std::string jsonOf(const ::VOD::Scene& scene);

inline std::optional<std::string> copyName(const std::string* name) {
  return name != nullptr ? std::optional<std::string>(*name) : std::nullopt;
}

/** Destroys the record as the application of the library's own pipeline does. */
inline void deliver(std::unique_ptr<DetectionData> frame) {
  asm volatile("" : : "r"(frame.get()) : "memory");
}

}  // namespace tarn::VOD::bench

#endif
