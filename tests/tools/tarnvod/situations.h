// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_SITUATIONS_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_SITUATIONS_H

#include "process.h"

#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>

#include <filesystem>
#include <string>

namespace test {

/** A folder that exists for as long as this. */
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

std::string contentsOf(const std::filesystem::path& file);
void writeTo(const std::filesystem::path& file, const std::string& bytes);

/** A detector that knows the classes "human" (0) and "car" (1) and, of humans, the attribute "coat". */
::VOD::DetectorInformation detector();

/** A frame of the recording below: a human, id 7, who walks to the right in a red coat, and in every second one a car,
 * id 9. */
::VOD::Scene scene(int number);

/** The frame as the service sends it, with a field that the schema does not know. */
std::string sceneBytes(int number);

inline constexpr int framesInRecording = 20;

/** A recording of that many frames, ten per second. */
void makeRecording(const std::filesystem::path& folder);

/** Waits until a recording that is being made holds a scene. */
void waitForFirstScene(const std::filesystem::path& folder);

/** Two cameras that play a recording. */
class TwoCameras : public testing::Test {
 protected:
  TwoCameras();

  Environment playing(const std::string& pace = "1", const std::string& loop = "1") const;

  const TemporaryFolder folder;
  const std::filesystem::path recording;
};

/** A service that has no recording to play: every call that needs it fails. */
Environment serviceDown();

/** Whether standard error got exactly one line. */
testing::AssertionResult isOneLine(const std::string& errors);

}  // namespace test

#endif
