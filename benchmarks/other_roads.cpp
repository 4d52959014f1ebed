// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "other_roads.h"

namespace tarn::VOD::bench {

std::vector<Road> otherRoads() {
  return {
#ifdef TARNVOD_BENCHMARK_NLOHMANN_JSON
      {"nlohmann-json", nlohmannJsonRoad},
#endif
#ifdef TARNVOD_BENCHMARK_SIMDJSON
      {"simdjson", simdjsonRoad},
#endif
#ifdef TARNVOD_BENCHMARK_FLATBUFFERS
      {"flatbuffers", flatbuffersRoad},
#endif
  };
}

}  // namespace tarn::VOD::bench
