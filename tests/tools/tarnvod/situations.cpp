// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "situations.h"

#include "support/detector_builder.h"
#include "support/scene_builder.h"

#include <recording/recording_writer.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace test {

using tarn::test::addAttribute;
using tarn::test::addAttributeType;
using tarn::test::addAttributeValue;
using tarn::test::addCalibration;
using tarn::test::addClass;
using tarn::test::addDetection;
using tarn::test::addEvent;
using tarn::test::setBox;

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tarnvod-command-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::runtime_error("no temporary folder");
  }
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void writeTo(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

::VOD::DetectorInformation detector() {
  ::VOD::DetectorInformation information;
  information.mutable_properties()->set_inference_chip(::VOD::CPU);
  addClass(information, 0, "Human", {3});
  addCalibration(addClass(information, 1, "car"), 0.1F, 0, 0);
  addAttributeValue(addAttributeType(information, 3, "coat"), 5, "red");
  return information;
}

::VOD::Scene scene(int number) {
  ::VOD::Scene result;
  result.set_timestamp(static_cast<std::uint64_t>(number) * 100000);
  ::VOD::Detection& human = addDetection(result, 0);
  const float shift = 0.01F * static_cast<float>(number);
  setBox(human, 0.1F + shift, 0.2F, 0.2F + shift, 0.6F);
  human.set_object_id(7);
  human.set_score(80);
  human.set_status(::VOD::Detection::TRACKED_CONFIDENT);
  addAttribute(human, 3, 5);
  if (number % 2 == 0) {
    addDetection(result, 1).set_object_id(9);
  }
  if (number == 10) {
    addEvent(result, ::VOD::EVENT_CONNECT, 7, {9});
  }
  return result;
}

std::string sceneBytes(int number) {
  return scene(number).SerializeAsString() + "\xA2\x06\x02hi";  // field 100, two bytes
}

void makeRecording(const std::filesystem::path& folder) {
  vod::recording::RecordingWriter writer(folder, detector().SerializeAsString());
  for (int number = 0; number < framesInRecording; ++number) {
    writer.append(sceneBytes(number));
  }
}

void waitForFirstScene(const std::filesystem::path& folder) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (contentsOf(folder / "scenes.pb").empty()) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("no scene has been recorded");
    }
    std::this_thread::yield();
  }
}

TwoCameras::TwoCameras() : recording(folder / "recording") {
  makeRecording(recording);
}

Environment TwoCameras::playing(const std::string& pace, const std::string& loop) const {
  return {"TARNVOD_HOST_RECORDINGS=" + recording.string() + ":" + recording.string(), "TARNVOD_HOST_PACE=" + pace,
          "TARNVOD_HOST_LOOP=" + loop};
}

Environment serviceDown() {
  return {"TARNVOD_HOST_RECORDINGS=/nowhere/recording"};
}

testing::AssertionResult isOneLine(const std::string& errors) {
  if (std::count(errors.begin(), errors.end(), '\n') == 1 && errors.back() == '\n') {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "not one line: " << errors;
}

}  // namespace test
