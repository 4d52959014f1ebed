// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_BENCHMARKS_OTHER_ROADS_H
#define TARNVOD_BENCHMARKS_OTHER_ROADS_H

#include "roads.h"

#include <tarnvod/detection_data.h>

#include <memory>
#include <optional>

namespace tarn::VOD::bench {

Walk nlohmannJsonRoad(const Sample& sample);
Walk simdjsonRoad(const Sample& sample);
Walk flatbuffersRoad(const Sample& sample);

/** The sample's scene with the schema's field names, ids as numbers; without outlines, which no record holds. */
std::string jsonOf(const ::VOD::Scene& scene);

inline std::optional<std::string> copyName(const std::string* name) {
  return name != nullptr ? std::optional<std::string>(*name) : std::nullopt;
}

/** Lets the record go as the application does that the library's road is measured with. */
inline void deliver(std::unique_ptr<DetectionData> frame) {
  asm volatile("" : : "r"(frame.get()) : "memory");
}

}  // namespace tarn::VOD::bench

#endif
