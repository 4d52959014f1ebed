// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/printed.h"

#include <gtest/gtest.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

namespace tarn::VOD {
namespace {

using test::printed;

TEST(AComputeChip, PrintsItsNameOrItsNumber) {
  const char* const names[] = {"CHIP_UNKNOWN",
                               "CPU",
                               "TOVREK_6_FD",
                               "TOVREK_7_GPU",
                               "TOVREK_7_TPU",
                               "TOVREK_7_OD",
                               "TOVREK_8_DLPU",
                               "TOVREK_9_DLPU",
                               "8",
                               "QN17_DLPU",
                               "10"};
  for (int number = 0; number <= 10; ++number) {
    EXPECT_EQ(printed(static_cast<ComputeChip>(number)), names[number]);
  }
  EXPECT_EQ(printed(ComputeChip::QN17_DLPU), "QN17_DLPU");
}

TEST(AReidStatus, PrintsItsNameOrItsNumber) {
  EXPECT_EQ(printed(ReidStatus::REID_NOT_RUNNING), "REID_NOT_RUNNING");
  EXPECT_EQ(printed(ReidStatus::REID_RUNNING), "REID_RUNNING");
  EXPECT_EQ(printed(static_cast<ReidStatus>(255)), "255");
}

TEST(AMountingPosition, PrintsItsNameOrItsNumber) {
  EXPECT_EQ(printed(FishEyeMountingPosition::MOUNTING_UNKNOWN), "MOUNTING_UNKNOWN");
  EXPECT_EQ(printed(FishEyeMountingPosition::DESK_MOUNTED), "DESK_MOUNTED");
  EXPECT_EQ(printed(FishEyeMountingPosition::WALL_MOUNTED), "WALL_MOUNTED");
  EXPECT_EQ(printed(FishEyeMountingPosition::CEILING_MOUNTED), "CEILING_MOUNTED");
  EXPECT_EQ(printed(static_cast<FishEyeMountingPosition>(4)), "4");
}

TEST(AnEmptyDetectorInformation, PrintsOnOneLine) {
  EXPECT_EQ(printed(DetectorInformation(::VOD::DetectorInformation())),
            "DetectorInformation{cameraNbr: 1, calibrations: {}, objectVariants: {}, fishEyeMountingPosition: none, "
            "reidStatus: REID_NOT_RUNNING, computeChip: CHIP_UNKNOWN, classifications: Classifications{idsByName: {}}, "
            "rotation: 0, supportedAttributes: {}}");
}

TEST(ADetectorInformation, PrintsOnOneLine) {
  DetectorInformation information{::VOD::DetectorInformation()};
  information.setCalibrationsContainer({{"car", {Calibration{3, 1.5F, 2}}}});
  information.setObjectVariants({{"Car", ObjectSchema{{{"Colour", {"red", "blue"}}}}}});
  information.setFishEyeMountingPosition(FishEyeMountingPosition::DESK_MOUNTED);
  information.setAttributes({{"Colour", {"red", "blue"}}, {"Size", {}}});
  Classifications classifications;
  classifications.insertClass(7, "car");
  information.setClassifications(classifications);
  EXPECT_EQ(printed(information),
            R"(DetectorInformation{cameraNbr: 1, )"
            R"(calibrations: {"car": [Calibration{coefficientC: 3, coefficientA: 1.5, coefficientB: 2}]}, )"
            R"(objectVariants: {"Car": ObjectSchema{attributes: {"Colour": ["red", "blue"]}}}, )"
            R"(fishEyeMountingPosition: DESK_MOUNTED, reidStatus: REID_NOT_RUNNING, computeChip: CHIP_UNKNOWN, )"
            R"(classifications: Classifications{idsByName: {"car": 7}}, rotation: 0, )"
            R"(supportedAttributes: {"Colour": ["blue", "red"], "Size": []}})");
}

}  // namespace
}  // namespace tarn::VOD
