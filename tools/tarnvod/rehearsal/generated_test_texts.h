// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_GENERATED_TEST_TEXTS_H
#define TARNVOD_COMMAND_GENERATED_TEST_TEXTS_H

/** What generated tests consist of. "@" stands for a value, where a text has one. */
namespace tarn::command::generated {

inline constexpr auto includes = R"(#include <gtest/gtest.h>
#include <tarnvod/video_object_detection.pb.h>
#include <vod_host.h>

#include <malloc.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// The application provides these: the first sets its cameras up and returns, the second ends them.
void startApplication();
void stopApplication();
)";

inline constexpr auto receivedDeclaration =
    R"(// And this one: how many objects of a class it has received from a camera.
std::uint64_t received(int camera, const std::string& className);
)";

inline constexpr auto helpers = R"(
namespace host = vod::host;

namespace {

std::map<int, VOD::DetectorInformation> detectors;

[[maybe_unused]] VOD::DetectorInformation readDetector(int camera) {
  VOD::DetectorInformation detector;
  video_object_detection_subscriber_st* subscriber = nullptr;
  std::uint8_t* bytes = nullptr;
  std::size_t length = 0;
  char* error = nullptr;
  video_object_detection_subscriber_create(&subscriber, nullptr, camera - 1);
  video_object_detection_subscriber_get_information(subscriber, &bytes, &length, &error);
  EXPECT_TRUE(detector.ParseFromArray(bytes, static_cast<int>(length)));
  std::free(bytes);
  video_object_detection_subscriber_delete(&subscriber);
  return detector;
}

/** A frame in which an object of each class is seen. */
[[maybe_unused]] std::string frame(int camera, std::uint64_t timestamp, std::uint32_t object) {
  VOD::Scene scene;
  scene.set_timestamp(timestamp);
  for (const auto& objectClass : detectors[camera].object_classes()) {
    VOD::Detection& detection = *scene.add_detections();
    detection.set_class_id(objectClass.id());
    detection.set_object_id(object);
  }
  return scene.SerializeAsString();
}

[[maybe_unused]] std::uint32_t newObject() {
  static std::uint32_t last = 1;
  return ++last;
}

[[maybe_unused]] void send(int camera, const std::string& scene) {
  host::servedChannel(camera - 1).pushScene(scene);
}

[[maybe_unused]] void drop(int camera) {
  host::servedChannel(camera - 1).dropSubscriptions();
}

/** @param place  in the detector's list, counted from 1; the list begins again at its end */
[[maybe_unused]] void loseClass(int camera, int place) {
  VOD::DetectorInformation detector = detectors[camera];
  auto& classes = *detector.mutable_object_classes();
  classes.DeleteSubrange((place - 1) % classes.size(), 1);
  host::servedChannel(camera - 1).detectorInformation(detector.SerializeAsString());
}

[[maybe_unused]] void regainClasses(int camera) {
  host::servedChannel(camera - 1).detectorInformation(detectors[camera].SerializeAsString());
}

[[maybe_unused]] void changeClasses(int camera) {
  constexpr std::uint32_t others = 1000;
  for (auto& objectClass : *detectors[camera].mutable_object_classes()) {
    objectClass.set_id(objectClass.id() + others);
  }
  host::servedChannel(camera - 1).detectorInformation(detectors[camera].SerializeAsString());
}

/** Throws if the camera is not set up within half a minute. */
[[maybe_unused]] void waitUntilSetUp(int camera) {
  const auto deadline = std::chrono::steady_clock::now() + host::waitTimeout;
  while (host::servedChannel(camera - 1).subscriptions().empty()) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("camera " + std::to_string(camera) + " is not set up again");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

)";

inline constexpr auto blockCheck = R"(/** Sends a frame. */
void expectQuickCallback(int camera, const std::string& scene) {
  const auto begin = std::chrono::steady_clock::now();
  host::servedChannel(camera - 1).deliverScene(scene);
  EXPECT_LE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(@));
}

)";

inline constexpr auto classCheck = R"(void expectReceived(int camera, const std::string& className) {
  const std::uint64_t before = received(camera, className);
  send(camera, frame(camera, 2, newObject()));
  host::drain();
  EXPECT_GT(received(camera, className), before) << "camera " << camera << ", " << className;
}

)";

inline constexpr auto stormCheck = R"(void expectFewCalls() {
  const std::size_t before = host::calls().size();
  std::this_thread::sleep_for(std::chrono::seconds(1));
  EXPECT_LE(host::calls().size() - before, @U) << "calls of the service in a second";
}

)";

inline constexpr auto stopCheck = R"(void expectQuickEnd() {
  const auto ended = std::make_shared<std::promise<void>>();
  std::thread([ended] {
    stopApplication();
    ended->set_value();
  }).detach();
  EXPECT_EQ(ended->get_future().wait_for(std::chrono::milliseconds(@)), std::future_status::ready);
}

)";

inline constexpr auto heapCount = R"(/** Bytes that are allocated. */
std::int64_t held() {
  const auto info = mallinfo2();
  return static_cast<std::int64_t>(info.uordblks + info.hblkhd);
}

)";

inline constexpr auto entryCount = R"(std::int64_t held() {
  return std::distance(std::filesystem::directory_iterator("@"), std::filesystem::directory_iterator());
}

)";

}  // namespace tarn::command::generated

#endif
