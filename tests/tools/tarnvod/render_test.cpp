// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "full_disk.h"
#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>
#include <limits>

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class Render : public test::TwoCameras {
 protected:
  test::Outcome render(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), "render");
    arguments.insert(arguments.end(), {"--output", folder / "picture.svg"});
    return test::run(arguments);
  }

  std::string picture() const { return test::contentsOf(folder / "picture.svg"); }
};

TEST_F(Render, DrawsTheTracksOfARecording) {
  const test::Outcome outcome = render({recording});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_THAT(picture(), StartsWith("<?xml"));
  EXPECT_THAT(picture(), HasSubstr("2 objects in 20 frames, 1.9 s"));
  EXPECT_THAT(picture(), HasSubstr(">Human 7<"));
  // The feet of the human: from 0.15 to 0.34 of the width, at 0.6 of the height.
  EXPECT_THAT(picture(), HasSubstr("M172 508L181.6 508"));
}

TEST_F(Render, NeedsNothingButThePicture) {
  render({recording});

  EXPECT_THAT(picture(), Not(HasSubstr("href")));
  EXPECT_THAT(picture(), Not(HasSubstr("@import")));
}

TEST_F(Render, DrawsOneFrameWithBoxesAndLabels) {
  const test::Outcome outcome = render({recording, "--frame", "1"});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(picture(), HasSubstr("recording, frame 1"));
  EXPECT_THAT(picture(), HasSubstr("x=\"124\" y=\"220\" width=\"96\" height=\"288\""));
  EXPECT_THAT(picture(), HasSubstr("Human 7, score 80, confident"));
  EXPECT_THAT(picture(), HasSubstr("coat: red"));
}

TEST_F(Render, DrawsAFrameFromAFile) {
  test::writeTo(folder / "frame.pb", test::scene(0).SerializeAsString());
  const test::Outcome outcome = render({folder / "frame.pb", "--detector", recording / "detector-information.pb"});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(picture(), HasSubstr(">Human 7<"));
}

TEST_F(Render, TakesBoxesAsSizesInAnyRange) {
  const test::Outcome outcome = render({recording, "--frame", "1", "--box", "size", "--range", "-1,1,1,-1"});

  EXPECT_EQ(outcome.exitCode, 0);
  // Left 0.1 and width 0.2 of a range that is 2 wide; its upper edge is at 1, so the box reaches up.
  EXPECT_THAT(picture(), HasSubstr("x=\"556\" y=\"148\" width=\"96\" height=\"216\""));
}

TEST_F(Render, DrawsSeveralRecordingsOneBelowTheOther) {
  const test::Outcome outcome = render({recording, recording, "--aspect", "16:9"});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(picture(), HasSubstr("translate(0 644)"));
}

TEST_F(Render, EscapesWhatNamesHold) {
  auto detector = test::detector();
  detector.mutable_object_classes(0)->set_name("<b>&\"\x01");
  test::writeTo(recording / "detector-information.pb", detector.SerializeAsString());

  EXPECT_EQ(render({recording}).exitCode, 0);

  EXPECT_THAT(picture(), HasSubstr("&lt;b&gt;&amp;&quot;\uFFFD 7"));
}

TEST_F(Render, PutsAnImageBehindTheBoxes) {
  test::writeTo(folder / "image.jpg", "\xFF\xD8\xFF\xE0 and so on");
  const test::Outcome outcome = render({recording, "--background", folder / "image.jpg"});

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(picture(), HasSubstr("href=\"data:image/jpeg;base64,/9j/4CBhbmQgc28gb24=\""));
}

TEST_F(Render, PutsTheBackgroundOfTheRecordingBehindTheBoxesUnlessAnotherIsNamed) {
  test::writeTo(recording / "background.jpg", "\xFF\xD8\xFFstreet");
  test::writeTo(folder / "other.jpg", "\xFF\xD8\xFFother");

  EXPECT_EQ(render({recording}).exitCode, 0);
  EXPECT_THAT(picture(), HasSubstr("href=\"data:image/jpeg;base64,/9j/c3RyZWV0\""));

  EXPECT_EQ(render({recording, "--background", folder / "other.jpg"}).exitCode, 0);
  EXPECT_THAT(picture(), HasSubstr("href=\"data:image/jpeg;base64,/9j/b3RoZXI=\""));
}

TEST_F(Render, OfAFileThatIsNotAnImageFails) {
  test::writeTo(folder / "image.jpg", "text");
  const test::Outcome outcome = render({recording, "--background", folder / "image.jpg"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("neither a PNG nor a JPEG"));
}

TEST_F(Render, OfAFrameThatDoesNotExistNamesTheLast) {
  const test::Outcome outcome = render({recording, "--frame", "21"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("frame 21 does not exist; the last frame is 20"));
}

TEST_F(Render, OfADamagedRecordingDrawsWhatCanBeReadAndFails) {
  const std::string bytes = test::contentsOf(recording / "scenes.pb");
  test::writeTo(recording / "scenes.pb", bytes.substr(0, bytes.size() - 3));

  const test::Outcome outcome = render({recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("scenes.pb: offset"));
  EXPECT_THAT(picture(), HasSubstr("in 19 frames"));
}

TEST_F(Render, OfDamagedDetectorInformationDrawsWhatCanBeReadAndFails) {
  const std::string bytes = test::contentsOf(recording / "detector-information.pb");
  test::writeTo(recording / "detector-information.pb", bytes.substr(0, bytes.size() - 3));

  const test::Outcome outcome = render({recording});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("detector-information.pb: offset 0: this is not a serialized"));
  EXPECT_THAT(picture(), HasSubstr("2 objects in 20 frames"));
}

TEST_F(Render, WithADetectorFileThatIsSomethingElseFails) {
  test::writeTo(folder / "text", "This is not a message.");

  const test::Outcome outcome = render({recording, "--detector", folder / "text"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("this is not detector information"));
}

TEST_F(Render, RefusesFilesThatMayNeverEnd) {
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);

  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {recording, "--background", "/dev/zero"}, {recording, "--detector", pipe}, {pipe}}) {
    const test::Outcome outcome = render(arguments);

    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(test::isOneLine(outcome.errors));
    EXPECT_THAT(outcome.errors, HasSubstr(": this is not a regular file; name "));
  }
}

TEST_F(Render, RefusesFilesThatAreMuchTooLargeForWhatTheyShouldBe) {
  const std::string file = folder / "large";
  test::writeTo(file, "");
  std::filesystem::resize_file(file, 65'000'000);

  const test::Outcome outcome = render({recording, "--background", file});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors,
            "tarnvod: " + file + ": 65.0 MB is more than the 64.0 MB allowed; name a PNG or JPEG image\n");
}

TEST_F(Render, LeavesOutBoxesWhoseNumbersAreNotFinite) {
  auto scene = test::scene(0);
  scene.mutable_detections(0)->set_coord_1(std::numeric_limits<float>::infinity());
  scene.mutable_detections(1)->set_coord_4(std::numeric_limits<float>::quiet_NaN());
  test::writeTo(folder / "frame.pb", scene.SerializeAsString());

  EXPECT_EQ(render({folder / "frame.pb"}).exitCode, 0);

  EXPECT_THAT(picture(), Not(ContainsRegex("\"-?(nan|inf)")));
  EXPECT_THAT(picture(), HasSubstr("class 0 7, score 80"));
}

TEST_F(Render, OfAFrameSaysWhenItWasInMinutesAndSeconds) {
  render({recording, "--frame", "3"});

  EXPECT_THAT(picture(), HasSubstr("at 0:00.200, 2 objects"));
}

TEST_F(Render, OfAMissingFolderNamesIt) {
  const test::Outcome outcome = render({folder / "missing"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr((folder / "missing").string() + ": No such file or directory"));
}

TEST_F(Render, OfAFileThatIsNotASceneSaysSo) {
  test::writeTo(folder / "garbage", "\xFF\xFF\xFF");
  const test::Outcome outcome = render({folder / "garbage"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("garbage: this is not a serialized VOD.Scene"));
}

TEST_F(Render, LeavesAPictureThatIsThereAsItWasWhenTheNewOneHasNoRoom) {
  test::writeTo(folder / "picture.svg", "an earlier picture");

  const test::Outcome outcome = test::runWithFilesUpTo(1, {"render", recording, "--output", folder / "picture.svg"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: " + (folder / "picture.svg").string() + ": File too large\n");
  EXPECT_EQ(picture(), "an earlier picture");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(recording.parent_path()), {}), 2);
}

TEST_F(Render, ToAFullDiskFails) {
  const test::Outcome outcome = test::run({"render", recording, "--output", "/dev/full"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: /dev/full: No space left on device\n");
}

}  // namespace
