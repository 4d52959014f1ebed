// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>
#include <tarnvod/detector_information.h>
#include <tarnvod/video_object_detection.pb.h>

#include <type_traits>

namespace tarn::VOD {
namespace {

using testing::ElementsAre;
using testing::Pair;

static_assert(std::is_same_v<std::underlying_type_t<ComputeChip>, std::uint8_t>);
static_assert(std::is_same_v<std::underlying_type_t<ReidStatus>, std::uint8_t>);
static_assert(std::is_same_v<std::underlying_type_t<FishEyeMountingPosition>, std::uint8_t>);
static_assert(!std::is_polymorphic_v<DetectorInformation> && !std::is_polymorphic_v<Classifications>);
static_assert(std::is_copy_assignable_v<DetectorInformation> && std::is_move_assignable_v<DetectorInformation>);
static_assert(!std::is_convertible_v<::VOD::DetectorInformation, DetectorInformation>);

DetectorInformation anEmptyInformation() {
  return DetectorInformation(::VOD::DetectorInformation());
}

TEST(ADetectorInformation, HoldsWhatIsSet) {
  auto information = anEmptyInformation();
  information.setCameraNbr(-3);
  information.setRotation(270);
  information.setReidStatus(ReidStatus::REID_RUNNING);
  information.setComputeChip(ComputeChip::TOVREK_7_OD);
  information.setFishEyeMountingPosition(FishEyeMountingPosition::CEILING_MOUNTED);
  information.setCalibrationsContainer({{"car", {Calibration{3, 1, 2}}}});
  information.setObjectVariants({{"Car", ObjectSchema{{{"Colour", {"red"}}}}}});
  information.setAttributes({{"Colour", {"red"}}});
  Classifications classifications;
  classifications.insertClass(1, "car");
  information.setClassifications(classifications);

  EXPECT_EQ(information.getCameraNbr(), -3);
  EXPECT_EQ(information.getRotation(), 270);
  EXPECT_EQ(information.getReidStatus(), ReidStatus::REID_RUNNING);
  EXPECT_EQ(information.getComputeChip(), ComputeChip::TOVREK_7_OD);
  EXPECT_EQ(information.lookupFishEyeMountingPosition(), FishEyeMountingPosition::CEILING_MOUNTED);
  EXPECT_THAT(information.getCalibrationsContainer(), ElementsAre(Pair("car", ElementsAre(Calibration{3, 1, 2}))));
  EXPECT_THAT(information.getObjectVariants(), ElementsAre(Pair("Car", ObjectSchema{{{"Colour", {"red"}}}})));
  EXPECT_THAT(information.getSupportedAttributes(), ElementsAre(Pair("Colour", ElementsAre("red"))));
  EXPECT_EQ(information.getClassifications(), classifications);
}

TEST(ASetter, DiscardsWhatWasThereBefore) {
  auto information = anEmptyInformation();
  information.setAttributes({{"Colour", {"red"}}});
  information.setAttributes({{"Size", {}}});
  EXPECT_THAT(information.getSupportedAttributes(), ElementsAre(Pair("Size", ElementsAre())));
}

TEST(AMountingPosition, ThatIsAbsentDiffersFromOneThatIsUnknown) {
  auto information = anEmptyInformation();
  EXPECT_EQ(information.lookupFishEyeMountingPosition(), std::nullopt);
  information.setFishEyeMountingPosition(FishEyeMountingPosition::MOUNTING_UNKNOWN);
  EXPECT_EQ(information.lookupFishEyeMountingPosition(), FishEyeMountingPosition::MOUNTING_UNKNOWN);
  EXPECT_NE(information, anEmptyInformation());
}

TEST(ACalibration, HasItsMembersInTheOrderCThenAThenB) {
  const Calibration calibration{3, 1, 2};
  EXPECT_EQ(calibration.coefficientC, 3);
  EXPECT_EQ(calibration.coefficientA, 1);
  EXPECT_EQ(calibration.coefficientB, 2);
  EXPECT_NE(calibration, (Calibration{9, 1, 2}));
  EXPECT_NE(calibration, (Calibration{3, 9, 2}));
  EXPECT_NE(calibration, (Calibration{3, 1, 9}));
}

TEST(DetectorInformations, DifferWhenAnyMemberDiffers) {
  const auto changed = [](const auto& change) {
    auto information = anEmptyInformation();
    change(information);
    return information;
  };
  Classifications classifications;
  classifications.insertClass(1, "car");
  EXPECT_EQ(anEmptyInformation(), anEmptyInformation());
  EXPECT_NE(anEmptyInformation(), changed([](auto& information) { information.setCameraNbr(2); }));
  EXPECT_NE(anEmptyInformation(), changed([](auto& information) { information.setRotation(90); }));
  EXPECT_NE(anEmptyInformation(),
            changed([](auto& information) { information.setReidStatus(ReidStatus::REID_RUNNING); }));
  EXPECT_NE(anEmptyInformation(), changed([](auto& information) { information.setComputeChip(ComputeChip::CPU); }));
  EXPECT_NE(anEmptyInformation(), changed([](auto& information) { information.setCalibrationsContainer({{"", {}}}); }));
  EXPECT_NE(anEmptyInformation(), changed([](auto& information) { information.setObjectVariants({{"", {}}}); }));
  EXPECT_NE(anEmptyInformation(), changed([](auto& information) { information.setAttributes({{"", {}}}); }));
  EXPECT_NE(anEmptyInformation(), changed([&](auto& information) { information.setClassifications(classifications); }));
}

}  // namespace
}  // namespace tarn::VOD
