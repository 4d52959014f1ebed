// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_VIDEO_OBJECT_DETECTION_SAMPLE_MESSAGES_H
#define TARNVOD_TESTS_VIDEO_OBJECT_DETECTION_SAMPLE_MESSAGES_H

#include "support/wire_bytes.h"

#include <tarnvod/video_object_detection.pb.h>

#include <string>
#include <vector>

/** Messages in which every field is set, and their bytes, spelled out: one string for each field of the outer message.
 */
namespace tarn::test::sample {

inline const std::string calibrationBytes = wire("0D 00 00 80 3F 15 00 00 00 40 1D 00 00 40 40");
inline const std::string boxBytes = wire("0D 00 00 00 3F 15 00 00 00 40 1D 00 00 80 BF 25 00 00 80 3F");

inline void fill(::VOD::Calibration& calibration) {
  calibration.set_coefficient_a(1);
  calibration.set_coefficient_b(2);
  calibration.set_coefficient_c(3);
}

inline void fill(::VOD::BoundingBox& box) {
  box.set_coord_1(0.5F);
  box.set_coord_2(2);
  box.set_coord_3(-1);
  box.set_coord_4(1);
}

inline void fill(::VOD::DetectorProperties& properties) {
  properties.set_camera_nbr(1);
  properties.set_fisheye_mounting_position(::VOD::WALL_MOUNTED);
  properties.set_image_rotation(180);
  fill(*properties.mutable_active_roi());
  properties.set_reid_status(::VOD::REID_RUNNING);
  properties.set_inference_chip(::VOD::QN17_DLPU);
}

inline ::VOD::DetectorInformation detectorInformation() {
  ::VOD::DetectorInformation message;
  auto& objectClass = *message.add_object_classes();
  objectClass.set_id(7);
  objectClass.set_name("Person");
  fill(*objectClass.add_calibrations());
  objectClass.add_attribute_type_ids(1);
  objectClass.add_attribute_type_ids(300);

  auto& type = *message.add_attribute_types();
  type.set_id(1);
  type.set_name("Colour");
  auto& attributeClass = *type.add_attribute_classes();
  attributeClass.set_id(2);
  attributeClass.set_name("red");
  fill(*attributeClass.add_calibrations());

  fill(*message.mutable_properties());

  auto& segmentationClass = *message.add_segmentation_classes();
  segmentationClass.set_id(4);
  segmentationClass.set_name("road");
  segmentationClass.add_id_list_1(1);
  segmentationClass.add_id_list_1(2);
  segmentationClass.add_id_list_2(3);
  return message;
}

inline std::vector<std::string> detectorInformationBytes() {
  const auto objectClass = wire("08 07 12 06") + "Person" + field("1A", calibrationBytes) + wire("22 03 01 AC 02");
  const auto attributeClass = wire("08 02 12 03") + "red" + field("1A", calibrationBytes);
  const auto type = wire("08 01 12 06") + "Colour" + field("1A", attributeClass);
  const auto properties = wire("08 01 10 02 18 B4 01") + field("22", boxBytes) + wire("28 01 30 09");
  const auto segmentationClass = wire("08 04 12 04") + "road" + wire("1A 02 01 02 22 01 03");
  return {field("0A", objectClass), field("12", type), field("1A", properties), field("22", segmentationClass)};
}

inline void fill(::VOD::Detection& detection) {
  detection.set_coord_1(0.5F);
  detection.set_coord_2(2);
  detection.set_coord_3(-1);
  detection.set_coord_4(1);
  detection.set_object_id(300);
  detection.set_class_id(7);
  detection.set_score(90);
  detection.set_status(::VOD::Detection::TRACKED_CONFIDENT);
  auto& attribute = *detection.add_attributes();
  attribute.set_type(1);
  attribute.set_class_(0);
  attribute.set_score(80);
  auto& classification = *detection.add_classifications();
  classification.set_class_(7);
  classification.set_score(0);
}

inline ::VOD::Scene scene() {
  ::VOD::Scene message;
  message.set_timestamp(1'000'000);
  fill(*message.add_detections());

  auto& event = *message.add_events();
  event.set_action(::VOD::EVENT_CONNECT);
  event.set_object_id(-1);
  for (const int id : {5, 3, 5}) {
    event.add_object_ids(id);
  }

  auto& segmentation = *message.add_segmentations();
  segmentation.set_segmentation_class_id(4);
  auto& polygon = *segmentation.add_polygons();
  auto& first = *polygon.add_points();
  first.set_x(1);
  first.set_y(2);
  polygon.add_points()->set_x(3);
  return message;
}

inline std::vector<std::string> sceneBytes() {
  const auto detection = boxBytes + wire("28 AC 02 30 07 38 5A 40 02") + field("4A", wire("08 01 10 00 18 50")) +
                         field("5A", wire("08 07 10 00"));
  const auto event = wire("08 01 10 FF FF FF FF FF FF FF FF FF 01 1A 03 05 03 05");
  const auto polygon = field("0A", wire("0D 00 00 80 3F 15 00 00 00 40")) + field("0A", wire("0D 00 00 40 40"));
  const auto segmentation = wire("08 04") + field("12", polygon);
  return {wire("08 C0 84 3D"), field("12", detection), field("1A", event), field("22", segmentation)};
}

inline std::string joined(const std::vector<std::string>& fields) {
  std::string bytes;
  for (const auto& one : fields) {
    bytes += one;
  }
  return bytes;
}

}  // namespace tarn::test::sample

#endif
