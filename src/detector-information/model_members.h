// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTOR_INFORMATION_MODEL_MEMBERS_H
#define TARNVOD_DETECTOR_INFORMATION_MODEL_MEMBERS_H

#include "support/member_list.h"

#include <tarnvod/detector_information.h>

#include <tuple>

/** The members of the detector's model, in order of declaration. Comparison and printing follow from these lists. */
namespace tarn::VOD {

template <>
struct MemberList<Calibration> {
  static constexpr const char* name = "Calibration";
  static constexpr auto members =
      std::tuple(Member{"coefficientC", &Calibration::coefficientC}, Member{"coefficientA", &Calibration::coefficientA},
                 Member{"coefficientB", &Calibration::coefficientB});
};

template <>
struct MemberList<ObjectSchema> {
  static constexpr const char* name = "ObjectSchema";
  static constexpr auto members = std::tuple(Member{"attributes", &ObjectSchema::attributes});
};

template <>
struct MemberList<Classifications> {
  static constexpr const char* name = "Classifications";
  static constexpr auto idsByName = &Classifications::idsByName_;
  static constexpr auto members = std::tuple(Member{"idsByName", idsByName});
};

template <>
struct MemberList<DetectorInformation> {
  static constexpr const char* name = "DetectorInformation";
  static constexpr auto members =
      std::tuple(Member{"cameraNbr", &DetectorInformation::cameraNbr_},
                 Member{"calibrations", &DetectorInformation::calibrations_},
                 Member{"objectVariants", &DetectorInformation::objectVariants_},
                 Member{"fishEyeMountingPosition", &DetectorInformation::fishEyeMountingPosition_},
                 Member{"reidStatus", &DetectorInformation::reidStatus_},
                 Member{"computeChip", &DetectorInformation::computeChip_},
                 Member{"classifications", &DetectorInformation::classifications_},
                 Member{"rotation", &DetectorInformation::rotation_},
                 Member{"supportedAttributes", &DetectorInformation::supportedAttributes_});
};

}  // namespace tarn::VOD

#endif
