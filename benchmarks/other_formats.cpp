// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "other_formats.h"

namespace tarn::VOD::bench {

std::vector<Pipeline> otherFormatPipelines() {
  return {
#ifdef TARNVOD_BENCHMARK_NLOHMANN_JSON
      {"nlohmann-json", nlohmannJsonPipeline},
#endif
#ifdef TARNVOD_BENCHMARK_RAPIDJSON
      {"rapidjson", rapidjsonPipeline},
#endif
#ifdef TARNVOD_BENCHMARK_SIMDJSON
      {"simdjson", simdjsonPipeline},
#endif
#ifdef TARNVOD_BENCHMARK_FLATBUFFERS
      {"flatbuffers", flatbuffersPipeline},
#endif
  };
}

}  // namespace tarn::VOD::bench
