// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The cameras of a subcommand whose output is slow.

#include "cameras/camera_group.h"

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vod_host.h>

#include <string>
#include <vector>

namespace {

using tarn::command::CameraGroup;
using testing::IsEmpty;

constexpr int framesOfTwoSeconds = 20;

class ASlowReader : public testing::Test {
 protected:
  ASlowReader() {
    vod::host::reset();
    vod::host::channel(0).detectorInformation(test::detector().SerializeAsString());
  }

  /** Lets the service send frames for longer than any pause that looks like a silence, while nobody reads. */
  static void sendForTwoSeconds(const std::filesystem::path& recording, const CameraGroup& group) {
    vod::host::channel(0).recording(recording, {1.0, false});
    vod::host::channel(0).waitForEndOfRecording();
    ASSERT_EQ(group.cameras().front().camera.status().framesDelivered, framesOfTwoSeconds);
  }
};

TEST_F(ASlowReader, IsNotTakenForASilentCamera) {
  const test::TemporaryFolder folder;
  test::makeRecording(folder / "recording");
  CameraGroup group({1}, {});
  group.connect();
  vod::host::clearJournal();

  sendForTwoSeconds(folder / "recording", group);
  std::vector<std::string> changes;
  for (int frame = 0; frame < framesOfTwoSeconds; ++frame) {
    ASSERT_TRUE(group.next());
    group.reportStatusChanges([&changes](const std::string& text) { changes.push_back(text); });
  }

  EXPECT_THAT(changes, IsEmpty());
  EXPECT_THAT(vod::host::journal(), IsEmpty());
}

}  // namespace
