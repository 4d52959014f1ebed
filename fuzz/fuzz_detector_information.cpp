// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Detector information bytes to the model, as the handler's queries give it, and to a camera's attribute names;
// compared with a second reading of the bytes.

#include "fuzz_input.h"
#include "reference/detector_reference.h"

#include <tarnvod/tarnvod.h>
#include <vod_host.h>

namespace tarn::fuzz {
namespace {

constexpr int camera = 1;

void compareModel(const ::VOD::DetectorInformation& expected) {
  const auto difference = test::differenceFrom(expected, VOD::getDetectorInformation());
  require(!difference, "the model differs: " + difference.value_or(""));
  std::set<std::string> names;
  for (const auto& [name, id] : test::classIdsByName(expected)) {
    names.insert(name);
  }
  require(VOD::Handler::getSupportedClasses() == names, "other classes are supported");
}

void compareAttributes(const ::VOD::DetectorInformation& expected) {
  // A new subscription reads the names again.
  require(VOD::Handler::setup(camera, nullptr, {}), "the camera cannot be set up");
  require(VOD::Handler::getSupportedAttributes() == test::attributesOf(expected).supported(),
          "other attributes are supported");
  VOD::Handler::teardown(camera);
}

}  // namespace
}  // namespace tarn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarn::fuzz;
  const std::string bytes = Input(data, size).rest();
  vod::host::channel(camera - 1).detectorInformation(bytes);
  const ::VOD::DetectorInformation expected = tarn::test::parseDetector(bytes);
  compareModel(expected);
  compareAttributes(expected);
  return 0;
}
