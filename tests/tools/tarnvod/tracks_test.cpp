// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "drawing/drawing.h"
#include "situations.h"

#include <gtest/gtest.h>
#include <recording/recording_writer.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <vector>

namespace {

using tarn::command::Track;
using tarn::command::TrackPoint;
using tarn::command::Tracks;

/** A recording in which a human is seen for hours, but for one break. */
class ALongRecording : public testing::Test {
 protected:
  static constexpr int frames = 120'000;
  static constexpr int breakBegin = 80'001;
  static constexpr int breakEnd = 80'101;

  Tracks tracks() const {
    {
      vod::recording::RecordingWriter writer(recording_, test::detector().SerializeAsString(), std::nullopt);
      for (int number = 0; number < frames; ++number) {
        ::VOD::Scene scene = test::scene(1);
        scene.set_timestamp(static_cast<std::uint64_t>(number) * 100'000);
        if (number >= breakBegin && number < breakEnd) {
          scene.clear_detections();
        }
        writer.append(scene.SerializeAsString());
      }
    }
    tarn::command::DamageList damage;
    return collectTracks(recording_, {}, {}, damage);
  }

  const test::TemporaryFolder folder_;
  const std::filesystem::path recording_ = folder_ / "long";
};

TEST_F(ALongRecording, HasTracksOfBoundedLengthWithPointsAtEqualDistancesAndTheEndsOfEachStretch) {
  const Tracks tracks = this->tracks();

  EXPECT_EQ(tracks.frames, 120'000U);
  ASSERT_EQ(tracks.tracks.size(), 1U);
  const std::vector<TrackPoint>& points = tracks.tracks.front().points;
  EXPECT_LE(points.size(), 50'000U);
  EXPECT_GE(points.size(), 25'000U);
  const auto second = std::find_if(std::next(points.begin()), points.end(),
                                   [](const TrackPoint& point) { return point.beginsStretch; });
  ASSERT_NE(second, points.end());
  EXPECT_TRUE(points.front().beginsStretch);
  EXPECT_DOUBLE_EQ(points.front().seconds, 0);
  EXPECT_DOUBLE_EQ(std::prev(second)->seconds, 8000.0);
  EXPECT_DOUBLE_EQ(second->seconds, 8010.1);
  EXPECT_DOUBLE_EQ(points.back().seconds, 11'999.9);
  for (auto point = points.begin(); std::next(point) != std::prev(second); ++point) {
    ASSERT_NEAR(std::next(point)->seconds - point->seconds, 0.4, 1e-9) << point->seconds;
  }
}

}  // namespace
