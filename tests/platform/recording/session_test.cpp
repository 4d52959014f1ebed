// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/session.h"

#include "recording/checked_reader.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace vod::recording {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AFolderOfCameras : public testing::Test {
 protected:
  AFolderOfCameras() {
    for (const char* const name : {"camera-10", "camera-2", "camera-x", "camera-02", "camera-2x", "other"}) {
      std::filesystem::create_directory(folder() / name);
    }
    std::ofstream(folder() / "camera-3") << "a file";
  }

  const std::filesystem::path& folder() const { return temporary_.path(); }

  const tarn::test::TemporaryFolder temporary_;
};

TEST_F(AFolderOfCameras, IsASessionOfItsCamerasByNumber) {
  EXPECT_THAT(camerasOf(folder()), ElementsAre(folder() / "camera-2", folder() / "camera-10"));
}

TEST_F(AFolderOfCameras, IsNotASessionWhenItHoldsARecording) {
  const RecordingWriter writer(folder(), "");
  EXPECT_THAT(camerasOf(folder()), IsEmpty());
}

TEST_F(AFolderOfCameras, IsNotASessionWhenItHoldsSegments) {
  const RecordingWriter writer(folder() / "segment-000001", "");
  EXPECT_THAT(camerasOf(folder()), IsEmpty());
}

TEST_F(AFolderOfCameras, IsNotReadAsOneRecording) {
  const auto isRefused = testing::ThrowsMessage<RecordingError>(
      folder().string() + ": holds the recordings of several cameras; name one of them, such as " +
      (folder() / "camera-2").string());
  EXPECT_THAT([this] { CheckedReader reader(folder()); }, isRefused);
  EXPECT_THAT([this] { readDetectorInformation(folder()); }, isRefused);
}

TEST(AFolder, ThatDoesNotExistIsNotASession) {
  EXPECT_THAT(camerasOf("/nowhere/at/all"), IsEmpty());
}

}  // namespace
}  // namespace vod::recording
