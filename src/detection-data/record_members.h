// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTION_DATA_RECORD_MEMBERS_H
#define TARNVOD_DETECTION_DATA_RECORD_MEMBERS_H

#include "support/member_list.h"

#include <tarnvod/detection_data.h>

#include <tuple>

/** The members of each record of a frame, in order of declaration. Comparison and printing follow from these lists. */
namespace tarn::VOD {

template <>
struct MemberList<Attribute> {
  static constexpr const char* name = "Attribute";
  static constexpr auto members =
      std::tuple(Member{"typeName", &Attribute::typeName},  //
                 Member{"className", &Attribute::className}, Member{"score", &Attribute::score});
};

template <>
struct MemberList<Classification> {
  static constexpr const char* name = "Classification";
  static constexpr auto members = std::tuple(Member{"className", &Classification::className},  //
                                             Member{"score", &Classification::score});
};

template <>
struct MemberList<VodEvent> {
  static constexpr const char* name = "VodEvent";
  static constexpr auto members =
      std::tuple(Member{"action", &VodEvent::action},  //
                 Member{"objectId", &VodEvent::objectId}, Member{"objectIds", &VodEvent::objectIds});
};

template <>
struct MemberList<Data> {
  static constexpr const char* name = "Data";
  static constexpr auto members =
      std::tuple(Member{"coord1", &Data::coord1},                                             //
                 Member{"coord2", &Data::coord2},                                             //
                 Member{"coord3", &Data::coord3},                                             //
                 Member{"coord4", &Data::coord4},                                             //
                 Member{"objectId", &Data::objectId}, Member{"className", &Data::className},  //
                 Member{"score", &Data::score},                                               //
                 Member{"status", &Data::status},                                             //
                 Member{"attributes", &Data::attributes}, Member{"classifications", &Data::classifications});
};

template <>
struct MemberList<DetectionData> {
  static constexpr const char* name = "DetectionData";
  static constexpr auto members =
      std::tuple(Member{"timestamp", &DetectionData::timestamp},  //
                 Member{"detections", &DetectionData::detections}, Member{"events", &DetectionData::events});
};

}  // namespace tarn::VOD

#endif
