// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "promtool.h"
#include "situations.h"
#include "viewer.h"

#include <gtest/gtest.h>

namespace {

using AViewer = test::TwoCameras;

TEST_F(AViewer, ReportsItsCamerasToPrometheus) {
  const test::Viewer viewer({"1"}, playing("5"));
  viewer.receive([](const test::Event& event) { return event.name == "frame"; });

  const test::Answer answer = viewer.get("/metrics");

  EXPECT_EQ(answer.header("Content-Type"), "text/plain; version=0.0.4; charset=utf-8");
  EXPECT_GE(test::sampleOf(answer.body, R"(tarnvod_camera_frames_received_total{camera="1"})"), 1);
  EXPECT_EQ(test::sampleOf(answer.body, R"(tarnvod_camera_state{camera="1",state="Receiving"})"), 1);
  EXPECT_EQ(test::sampleOf(answer.body, "tarnvod_view_frames_dropped_total"), 0);
}

TEST_F(AViewer, HasMetricsThatPrometheusAccepts) {
  if (!test::hasPromtool()) {
    GTEST_SKIP() << "promtool is not installed (Debian: prometheus)";
  }
  const test::Viewer viewer({"1"}, playing("5"));

  EXPECT_TRUE(test::isAcceptedByPromtool(viewer.get("/metrics").body));
}

TEST_F(AViewer, OfARecordingIsHealthy) {
  const test::Viewer viewer({recording}, playing());

  EXPECT_EQ(viewer.get("/healthz").body, "ok\n");
  EXPECT_EQ(viewer.get("/metrics").status, 200);
}

}  // namespace
