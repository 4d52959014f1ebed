// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * The records in which one analysed frame reaches the application.
 *
 * All are plain values that own what they hold: a record can be kept, copied, moved to another thread or destroyed at
 * any time. Ids of classes and attributes have been replaced by the names that the detector gives them. Records compare
 * member by member and print on one line. As with any value, one object may be read from several threads at once while
 * none writes to it.
 *
 * A record takes the memory of what it holds, no more. Its size depends on the frame and on the detector's names, whose
 * length the library does not limit: it holds at most one name for every two bytes of the frame, so that long names can
 * make a small frame large. An application that does not trust the service looks at the names before it sets a camera up
 * (`Handler::getDetectorInformation`).
 */

#ifndef TARNVOD_DETECTION_DATA_H
#define TARNVOD_DETECTION_DATA_H

#include <tarnvod/export.h>

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace tarn::VOD {

/** What happened to a tracked object. The numbers are those of the service. */
enum class EventAction {
  Delete = 0,   ///< the object is gone
  Connect = 1,  ///< the object is the same as others that were tracked before
};

/** How well the detector follows an object from frame to frame. The numbers are those of the service. */
enum class DetectionStatus {
  Untracked = 0,           ///< seen, not tracked; also stands for every number that the service may add
  TrackedUnconfident = 1,  ///< tracked, not yet sure
  TrackedConfident = 2,    ///< tracked and sure
};

/** One attribute of a detected object, such as the colour of its clothing. */
struct TARNVOD_EXPORT Attribute {
  /** Takes all members, in their order. */
  Attribute(const std::string& typeName, std::optional<std::string> className, std::optional<std::uint32_t> score);

  std::string typeName;                  ///< the attribute type's name; always known
  std::optional<std::string> className;  ///< the value's name; empty when the service sent none or one without a name
  std::optional<std::uint32_t> score;    ///< the service's score of the value, unchanged; empty when it sent none
};

/** One class that the object may belong to. */
struct TARNVOD_EXPORT Classification {
  /** Takes all members, in their order. */
  Classification(std::optional<std::string> className, std::optional<std::uint32_t> score);

  std::optional<std::string> className;  ///< the class's name; present in every record that the library delivers
  std::optional<std::uint32_t> score;    ///< the service's score, unchanged; present in every record that is delivered
};

/** One event about tracked objects. */
struct TARNVOD_EXPORT VodEvent {
  /** Takes all members, in their order. */
  VodEvent(EventAction action, int objectId, std::vector<int> objectIds);

  EventAction action;          ///< what happened
  std::int32_t objectId;       ///< the object that the event is about
  std::vector<int> objectIds;  ///< the other objects that it names, in the service's order, duplicates kept
};

/** One detected object. */
struct TARNVOD_EXPORT Data {
  /** Takes all members, in their order. */
  Data(float coord1, float coord2, float coord3, float coord4, unsigned int objectId, const std::string& className,
       unsigned int score, DetectionStatus status, std::vector<Attribute> attributes,
       std::vector<Classification> classifications);

  float coord1;            ///< first number of the box; all four in the service's convention, passed on unchanged
  float coord2;            ///< second number of the box
  float coord3;            ///< third number of the box
  float coord4;            ///< fourth number of the box
  std::uint32_t objectId;  ///< the service's id of the object, the same from frame to frame while it is tracked
  std::string className;   ///< the name of the object's class
  std::uint32_t score;     ///< the service's score, unchanged
  DetectionStatus status;  ///< how well the object is tracked
  std::vector<Attribute> attributes;            ///< in the service's order; those without a known type are left out
  std::vector<Classification> classifications;  ///< in the service's order; only classes that were asked for
};

/** One analysed frame of one camera. */
struct TARNVOD_EXPORT DetectionData {
  /** Takes all members, in their order. */
  DetectionData(std::uint64_t timestamp, std::vector<Data> detections, std::vector<VodEvent> events);

  std::uint64_t timestamp;       ///< the frame's time stamp; unit and epoch are the service's, passed on unchanged
  std::vector<Data> detections;  ///< the objects of the classes that were asked for, in the service's order
  std::vector<VodEvent> events;  ///< the frame's events, in the service's order
};

/** @name Comparison, member by member */
///@{
/** Compares member by member. */
TARNVOD_EXPORT bool operator==(const Attribute& left, const Attribute& right);
TARNVOD_EXPORT bool operator==(const Classification& left, const Classification& right);
TARNVOD_EXPORT bool operator==(const VodEvent& left, const VodEvent& right);
TARNVOD_EXPORT bool operator==(const Data& left, const Data& right);
TARNVOD_EXPORT bool operator==(const DetectionData& left, const DetectionData& right);
inline bool operator!=(const Attribute& left, const Attribute& right) {
  return !(left == right);
}
inline bool operator!=(const Classification& left, const Classification& right) {
  return !(left == right);
}
inline bool operator!=(const VodEvent& left, const VodEvent& right) {
  return !(left == right);
}
inline bool operator!=(const Data& left, const Data& right) {
  return !(left == right);
}
inline bool operator!=(const DetectionData& left, const DetectionData& right) {
  return !(left == right);
}
///@}

/** @name Printing: one line, no line end; enumerations by name, unknown numbers as numbers */
///@{
/** Prints on one line. */
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, EventAction action);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, DetectionStatus status);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const Attribute& attribute);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const Classification& classification);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const VodEvent& event);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const Data& data);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const DetectionData& frame);
///@}

}  // namespace tarn::VOD

#endif
