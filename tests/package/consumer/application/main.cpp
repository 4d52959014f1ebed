// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Uses something of everything that the library exports, as an application would.
#include <google/protobuf/arena.h>
#include <tarnvod/read_detector_information.h>
#include <tarnvod/tarnvod.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>

namespace {

void expect(bool condition, const char* what) {
  if (!condition) {
    std::cerr << "application: not as expected: " << what << '\n';
    std::exit(EXIT_FAILURE);
  }
}

void useMessages() {
  google::protobuf::Arena arena;
#if GOOGLE_PROTOBUF_VERSION < 4022000
  auto* const scene = google::protobuf::Arena::CreateMessage<VOD::Scene>(&arena);
#else
  auto* const scene = google::protobuf::Arena::Create<VOD::Scene>(&arena);
#endif
  scene->add_detections()->set_status(VOD::Detection::TRACKED_CONFIDENT);
  VOD::Scene copy;
  expect(copy.ParseFromString(scene->SerializeAsString()), "a scene's round trip");
  expect(copy.detections(0).status() == VOD::Detection_DetectionStatus_TRACKED_CONFIDENT, "the detection's status");

  VOD::ChannelConfiguration configuration;
  configuration.set_allocated_roi(new VOD::BoundingBox);
  configuration.clear_has_roi();
  expect(!configuration.has_roi(), "a region that was cleared");

  VOD::ComputeChip chip{};
  expect(VOD::ComputeChip_Parse("QN17_DLPU", &chip) && VOD::ComputeChip_IsValid(chip), "the name of a chip");
  std::cout << chip << ' ' << std::string(VOD::EventAction_Name(VOD::EVENT_CONNECT)) << '\n';
}

void useDetectorInformation() {
  VOD::DetectorInformation message;
  auto& objectClass = *message.add_object_classes();
  objectClass.set_id(7);
  objectClass.set_name("Human");
  std::ofstream("detector-information.pb", std::ios::binary) << message.SerializeAsString();

  const auto information =
      tarn::VOD::DetectorInformationFileReader("detector-information.pb").parseDetectorInformation();
  expect(information == tarn::VOD::DetectorInformation(message), "what was read from the file");
  expect(information.getClassifications().getClassIdsToNamesMap({"human"}).at(7) == "human", "the class's name");
  std::cout << information << '\n';
  try {
    tarn::VOD::DetectorInformationFileReader("no such file");
    expect(false, "a file that does not exist");
  } catch (const char* problem) {
    std::cout << problem << '\n';
  }
}

void useHandler() {
  using tarn::VOD::Handler;
  Handler::initialize(1);
  Handler::setup(
      1, [](std::unique_ptr<tarn::VOD::DetectionData> frame, int) { std::cout << *frame << '\n'; }, {},
      tarn::VOD::VodChannelConfiguration{0, 0, 1, 1});
  Handler::teardown(1);
  Handler::deinitialize();
  std::cout << "version " << Handler::getServiceVersion() << ", " << Handler::getNumberOfChannels()
            << " channels, enabled " << Handler::isDlpuEnabled() << '\n';
}

}  // namespace

int main() {
  useMessages();
  useDetectorInformation();
  useHandler();
  expect(&tarn::VOD::readDetectorInformation != nullptr, "the reader for the platform's subscribers");
  return EXIT_SUCCESS;
}
