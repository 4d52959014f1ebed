// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// The n-th allocation of a conversion fails, for each n: it throws, and nothing leaks.

#include "detector-information/class_ids_to_names.h"
#include "support/at_each_allocation.h"
#include "support/detector_builder.h"

#include <tarnvod/detector_information.h>
#include <tarnvod/detector_information_file_reader.h>
#include <tarnvod/video_object_detection.pb.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace tarn::VOD {
namespace {

constexpr auto longName = "a name that a string does not hold without memory";

::VOD::DetectorInformation messageWithAllThereIs() {
  ::VOD::DetectorInformation message;
  test::addAttributeType(message, 1, longName, {longName});
  test::addCalibration(test::addClass(message, 1, longName, {1}), 1, 2, 3);
  return message;
}

TEST(MemoryRunningOut, InAConversionOfDetectorInformationLeavesItAsAnExceptionAndTheNextOneWorks) {
  const ::VOD::DetectorInformation message = messageWithAllThereIs();
  const DetectorInformation expected(message);
  test::atEachAllocation([&] { DetectorInformation{message}; },
                         [&] { EXPECT_EQ(DetectorInformation(message), expected); });
}

TEST(MemoryRunningOut, InAQueryForClassesLeavesItAsAnException) {
  const DetectorInformation information(messageWithAllThereIs());
  const Classifications& classifications = information.getClassifications();
  const std::set<std::string> names = {longName};
  test::atEachAllocation([&] { classifications.getClassNames(); });
  test::atEachAllocation([&] { mapClassIdsToNames(classifications, names); });
}

TEST(MemoryRunningOut, WhileAFileIsReadLeavesItAsAnException) {
  const std::string path = testing::TempDir() + "memory_running_out.pb";
  std::ofstream(path, std::ios::binary) << messageWithAllThereIs().SerializeAsString();
  DetectorInformationFileReader reader(path);
  bool threw = false;
  {
    const test::AllocationFailure failure(1);  // later ones are of the parser
    try {
      reader.parseDetectorInformation();
    } catch (const std::bad_alloc&) {
      threw = true;
    }
  }
  EXPECT_TRUE(threw);
  std::remove(path.c_str());
}

}  // namespace
}  // namespace tarn::VOD
