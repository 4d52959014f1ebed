// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Times each pipeline with each sample, the conversion of the detector's information, and the set-up of a camera.

#include "pipelines.h"
#include "sample_scenes.h"

#include <benchmark/benchmark.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/handler.h>
#include <vod_host.h>

#include <memory>

namespace tarn::VOD::bench {
namespace {

void timePipeline(benchmark::State& state, const Pipeline& pipeline, const Sample& sample) {
  const ProcessFrame processFrame = pipeline.prepare(sample);
  for (auto _ : state) {
    processFrame();
  }
}

void makeModel(benchmark::State& state) {
  const ::VOD::DetectorInformation message = sampleDetector();
  for (auto _ : state) {
    benchmark::DoNotOptimize(DetectorInformation(message));
  }
}

void setUpCamera(benchmark::State& state) {
  const ::VOD::DetectorInformation detector = sampleDetector();
  vod::host::channel(0).detectorInformation(detector.SerializeAsString());
  vod::host::recordCalls(false);
  const std::set<std::string> classes = firstClasses(detector);
  for (auto _ : state) {
    Handler::setup(
        1, [](std::unique_ptr<DetectionData> /*frame*/, int /*camera*/) {}, classes);
    Handler::teardown(1);
  }
  vod::host::recordCalls(true);
}

void registerAll() {
  for (const Sample& sample : samples()) {
    for (const Pipeline& pipeline : allPipelines()) {
      benchmark::RegisterBenchmark(
          (pipeline.name + '/' + sample.name).c_str(),
          [pipeline, sample](benchmark::State& state) { timePipeline(state, pipeline, sample); });
    }
  }
  benchmark::RegisterBenchmark("model", makeModel);
  benchmark::RegisterBenchmark("setup-and-teardown", setUpCamera);
}

}  // namespace
}  // namespace tarn::VOD::bench

int main(int argc, char** argv) {
  vod::host::reset();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  tarn::VOD::bench::registerAll();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
