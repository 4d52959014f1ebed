// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The command as it is used: on a small video that each test draws, of a grey wall that grows lighter. Nobody is in it.

#include "recording/recording_reader.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/videoio.hpp>
#include <sys/wait.h>
#include <tarnvod/video_object_detection.pb.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <variant>
#include <vector>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

struct Result {
  int exitCode = 0;
  /** Of both streams. */
  std::string output;
};

Result run(const std::string& arguments) {
  Result result;
  FILE* pipe = ::popen((std::string(VIDEO_RECORDER) + " " + arguments + " 2>&1").c_str(), "r");
  std::array<char, 256> buffer{};
  while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), pipe) != nullptr) {
    result.output += buffer.data();
  }
  result.exitCode = WEXITSTATUS(::pclose(pipe));
  return result;
}

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<VOD::Scene> scenesOf(const fs::path& recording) {
  vod::recording::RecordingReader reader(recording);
  std::vector<VOD::Scene> scenes;
  auto next = reader.next();
  for (; std::holds_alternative<vod::recording::RecordedScene>(next); next = reader.next()) {
    EXPECT_TRUE(scenes.emplace_back().ParseFromString(std::get<vod::recording::RecordedScene>(next).bytes));
  }
  EXPECT_TRUE(std::holds_alternative<vod::recording::EndOfRecording>(next));
  return scenes;
}

class AVideo : public testing::Test {
 protected:
  AVideo() {
    const cv::Size size(160, 160);
    cv::VideoWriter writer(video.string(), cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10, size);
    for (int frame = 0; frame < frames; ++frame) {
      writer.write(cv::Mat(size, CV_8UC3, cv::Scalar::all(40 * frame)));
    }
  }

  Result record(const std::string& arguments = "") const {
    return run(video.string() + " --output " + output.string() + " " + arguments);
  }

  static constexpr int frames = 5;
  const tarn::test::TemporaryFolder folder;
  fs::path video = folder.path() / "wall.avi";
  const fs::path output = folder.path() / "recording";
};

using AnInput = AVideo;
using ACommandLine = AVideo;

}  // namespace

TEST_F(AVideo, GivesOneSceneAFrameWithItsTime) {
  ASSERT_EQ(record().exitCode, 0);
  const std::vector<VOD::Scene> scenes = scenesOf(output);
  ASSERT_THAT(scenes, SizeIs(frames));
  EXPECT_EQ(scenes[0].timestamp(), 0U);
  EXPECT_EQ(scenes[4].timestamp(), 400000U);
}

TEST_F(AVideo, OfNobodyGivesNoDetections) {
  ASSERT_EQ(record().exitCode, 0);
  for (const VOD::Scene& scene : scenesOf(output)) {
    EXPECT_THAT(scene.detections(), SizeIs(0));
  }
}

TEST_F(AVideo, ThatIsSmallerThanThePeopleToFindGivesNoDetections) {
  ASSERT_EQ(record("--smallest 1024").exitCode, 0);
  EXPECT_THAT(scenesOf(output), SizeIs(frames));
}

TEST_F(AVideo, GivesABackgroundWithoutWhatPasses) {
  const cv::Size size(160, 160);
  const int street = 90;
  cv::VideoWriter writer(video.string(), cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), 10, size);
  for (int frame = 0; frame < 100; ++frame) {
    cv::Mat picture(size, CV_8UC3, cv::Scalar::all(street));
    picture.colRange(frame, frame + 30).setTo(cv::Scalar::all(255));
    writer.write(picture);
  }
  writer.release();

  ASSERT_EQ(record().exitCode, 0);

  const cv::Mat background = cv::imread((output / "background.jpg").string());
  ASSERT_EQ(background.size(), size);
  double darkest = 0;
  double lightest = 0;
  cv::minMaxLoc(background.reshape(1), &darkest, &lightest);
  EXPECT_NEAR(darkest, street, 5);
  EXPECT_NEAR(lightest, street, 5);
}

TEST_F(AVideo, GivesTheSameBytesAgain) {
  ASSERT_EQ(record().exitCode, 0);
  const std::string first = contentOf(output / "scenes.pb");
  fs::remove_all(output);
  ASSERT_EQ(record().exitCode, 0);
  EXPECT_FALSE(first.empty());
  EXPECT_EQ(contentOf(output / "scenes.pb"), first);
}

TEST_F(AVideo, IsRecordedInPart) {
  ASSERT_EQ(record("--from 1 --frames 2").exitCode, 0);
  const std::vector<VOD::Scene> scenes = scenesOf(output);
  ASSERT_THAT(scenes, SizeIs(2));
  EXPECT_EQ(scenes[1].timestamp(), 100000U);
}

TEST_F(AVideo, IsRecordedForTheCameraThatWasAskedFor) {
  ASSERT_EQ(record("--camera 2").exitCode, 0);
  VOD::DetectorInformation information;
  ASSERT_TRUE(information.ParseFromString(contentOf(output / "detector-information.pb")));
  EXPECT_EQ(information.properties().camera_nbr(), 1U);
  EXPECT_EQ(information.properties().inference_chip(), VOD::CPU);
  ASSERT_THAT(information.object_classes(), SizeIs(1));
  EXPECT_EQ(information.object_classes(0).name(), "human");
  EXPECT_THAT(information.object_classes(0).attribute_type_ids(), ElementsAre(1U, 2U));
}

TEST_F(AnInput, ThatIsNoVideoIsNamed) {
  video = folder.path() / "text.avi";
  std::ofstream(video) << "no video";
  const Result result = record();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "tarnvod-video-recorder: " + video.string() + ": not a video that can be read\n");
  EXPECT_FALSE(fs::exists(output));
}

TEST_F(AnInput, ThatIsShorterThanItsBeginningIsNamed) {
  const Result result = record("--from 9");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, HasSubstr("wall.avi: has only 5 frames, so it cannot begin at frame 9"));
}

TEST_F(ACommandLine, WithAFolderThatHoldsARecordingFailsAndLeavesItAlone) {
  ASSERT_EQ(record().exitCode, 0);
  const std::string before = contentOf(output / "scenes.pb");
  const Result result = record("--frames 1");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.output, HasSubstr(output.string()));
  EXPECT_EQ(contentOf(output / "scenes.pb"), before);
}

TEST_F(ACommandLine, WithoutAnOutputIsAUsageError) {
  const Result result = run(video.string());
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.output, HasSubstr("--output"));
}

TEST_F(ACommandLine, WithANumberThatIsNoneIsAUsageError) {
  EXPECT_EQ(record("--frames many").exitCode, 2);
}

TEST_F(ACommandLine, WithAnUnknownOptionIsAUsageError) {
  EXPECT_EQ(record("--colour").exitCode, 2);
}
