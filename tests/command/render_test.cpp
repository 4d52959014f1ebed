// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

TEST_F(Render, NeedsNothingBesideThePicture) {
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

TEST_F(Render, OfAnImageThatIsNoneFails) {
  test::writeTo(folder / "image.jpg", "text");
  const test::Outcome outcome = render({recording, "--background", folder / "image.jpg"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("neither a PNG nor a JPEG"));
}

TEST_F(Render, OfAFrameThatIsNotThereTellsTheLast) {
  const test::Outcome outcome = render({recording, "--frame", "21"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr("there is no frame 21 to draw; the last one is 20"));
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

TEST_F(Render, OfAMissingFolderNamesIt) {
  const test::Outcome outcome = render({folder / "missing"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_TRUE(test::isOneLine(outcome.errors));
  EXPECT_THAT(outcome.errors, HasSubstr((folder / "missing").string() + ": No such file or directory"));
}

TEST_F(Render, OfAFileThatIsNoSceneSaysSo) {
  test::writeTo(folder / "garbage", "\xFF\xFF\xFF");
  const test::Outcome outcome = render({folder / "garbage"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("garbage: this is no serialized VOD.Scene"));
}

TEST_F(Render, ToAFullDiskFails) {
  const test::Outcome outcome = test::run({"render", recording, "--output", "/dev/full"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.errors, "tarnvod: /dev/full: No space left on device\n");
}

}  // namespace
