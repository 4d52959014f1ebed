// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * What a camera's detector can do, as plain values.
 *
 * All types here are values without locks: one object may be read from several threads at once while none writes to it.
 * Every function may be called from a callback; none blocks on the service. Unless said otherwise they throw nothing
 * but `std::bad_alloc`. Maps and sets order strings byte by byte.
 */

#ifndef TARNVOD_DETECTOR_INFORMATION_H
#define TARNVOD_DETECTOR_INFORMATION_H

#include <tarnvod/export.h>

#include <cstdint>
#include <iosfwd>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace VOD {
class DetectorInformation;
}

namespace tarn::VOD {

/// @cond
template <typename Record>
struct MemberList;  // the library's own access to members
/// @endcond

/** The processor on which inference runs. The numbers are the service's, which leaves 8 without a name here. */
enum class ComputeChip : std::uint8_t {
  CHIP_UNKNOWN = 0,  ///< not reported, or a processor that has no name here
  CPU = 1,
  TOVREK_6_FD = 2,
  TOVREK_7_GPU = 3,
  TOVREK_7_TPU = 4,
  TOVREK_7_OD = 5,
  TOVREK_8_DLPU = 6,
  TOVREK_9_DLPU = 7,
  QN17_DLPU = 9,
};

/** Whether the detector recognises an object that left and came back. */
enum class ReidStatus : std::uint8_t {
  REID_NOT_RUNNING = 0,
  REID_RUNNING = 1,
};

/** How a fisheye camera is mounted. */
enum class FishEyeMountingPosition : std::uint8_t {
  MOUNTING_UNKNOWN = 0,  ///< the detector said that it does not know, or named a position that has no name here
  DESK_MOUNTED = 1,
  WALL_MOUNTED = 2,
  CEILING_MOUNTED = 3,
};

/** Three numbers that calibrate a class's score, passed on unchanged; their meaning is the service's. */
struct Calibration {
  float coefficientC;  ///< the message's coefficient_c
  float coefficientA;  ///< the message's coefficient_a
  float coefficientB;  ///< the message's coefficient_b
};

/** The attributes that objects of one class can have. */
struct ObjectSchema {
  /** Attribute type name to the names of its values, in the service's order; names as sent. */
  std::map<std::string, std::vector<std::string>> attributes;
};

/**
 * The table of object classes: name to id.
 *
 * Names are unique and compared exactly; the library stores them in lower case, so ask in lower case. Two names may
 * share an id.
 */
class TARNVOD_EXPORT Classifications {
 public:
  /** Adds a class; a name that is already there keeps its id. */
  void insertClass(int id, const std::string& name);

  /** All class names, in order. */
  std::set<std::string> getClassNames() const;

  /**
   * The ids of the named classes, each with its name. Names that are not in the table are skipped; of several names
   * that share an id, the greatest in order stands for it.
   *
   * Throws nothing: when memory runs out, the process ends.
   */
  std::map<int, std::string> getClassIdsToNamesMap(const std::set<std::string>& names) const noexcept;

  /** Whether every one of these names is in the table; true for no names at all. */
  bool areAllClassesSupported(const std::set<std::string>& names) const;

  /** Whether the table holds no class. */
  bool isEmpty() const;

 private:
  friend struct MemberList<Classifications>;

  std::map<std::string, int> idsByName_;
};

/**
 * What the detector of one camera can do and how it is set up.
 *
 * Made from the service's message, then usually only read; each setter replaces the whole value.
 */
class TARNVOD_EXPORT DetectorInformation {
 public:
  /**
   * Takes over what the message says.
   *
   * - The camera number is counted from 1 (the message counts from 0); a message without properties is camera 1's.
   * - Class names are in lower case in the classifications and calibrations, as sent in the object variants. Of classes
   *   whose names are then equal, the first gives the id, the last the calibrations and the attributes.
   * - Numbers that have no name here become the unknown value of their enumeration.
   */
  explicit DetectorInformation(const ::VOD::DetectorInformation& message);

  /** The camera that this information belongs to, counted from 1. */
  int getCameraNbr() const;

  /** Calibrations per class, in the service's order; class names in lower case. Valid while this object lives. */
  const std::map<std::string, std::vector<Calibration>>& getCalibrationsContainer() const;

  /** The attributes that each object class can have; class names as sent. Valid while this object lives. */
  const std::map<std::string, ObjectSchema>& getObjectVariants() const;

  /** How a fisheye camera is mounted; empty when the detector said nothing of it. */
  std::optional<FishEyeMountingPosition> lookupFishEyeMountingPosition() const;

  /** Whether re-identification runs. */
  ReidStatus getReidStatus() const;

  /** The processor on which inference runs. */
  ComputeChip getComputeChip() const;

  /** The object classes. Valid while this object lives. */
  const Classifications& getClassifications() const;

  /** The rotation of the analysed image as the detector reports it, unchanged; 0 when it reports none. */
  int getRotation() const;

  /** Attribute type name to the names of its values, as sent; types without values are left out. Valid while this
   * object lives. */
  const std::map<std::string, std::set<std::string>>& getSupportedAttributes() const;

  /** @name Setters: each replaces the whole value */
  ///@{
  /** Replaces the value. */
  void setCameraNbr(int cameraNbr);
  void setCalibrationsContainer(std::map<std::string, std::vector<Calibration>> calibrations);
  void setObjectVariants(std::map<std::string, ObjectSchema> objectVariants);
  void setFishEyeMountingPosition(std::optional<FishEyeMountingPosition> position);
  void setReidStatus(ReidStatus status);
  void setComputeChip(ComputeChip chip);
  void setClassifications(Classifications classifications);
  void setRotation(int rotation);
  void setAttributes(std::map<std::string, std::set<std::string>> supportedAttributes);
  ///@}

 private:
  friend struct MemberList<DetectorInformation>;

  std::int32_t cameraNbr_ = 0;
  std::map<std::string, std::vector<Calibration>> calibrations_;
  std::map<std::string, ObjectSchema> objectVariants_;
  std::optional<FishEyeMountingPosition> fishEyeMountingPosition_;
  ReidStatus reidStatus_ = ReidStatus::REID_NOT_RUNNING;
  ComputeChip computeChip_ = ComputeChip::CHIP_UNKNOWN;
  Classifications classifications_;
  std::int32_t rotation_ = 0;
  std::map<std::string, std::set<std::string>> supportedAttributes_;
};

/** @name Comparison, member by member */
///@{
/** Compares member by member. */
TARNVOD_EXPORT bool operator==(const Calibration& left, const Calibration& right);
TARNVOD_EXPORT bool operator==(const ObjectSchema& left, const ObjectSchema& right);
TARNVOD_EXPORT bool operator==(const Classifications& left, const Classifications& right);
TARNVOD_EXPORT bool operator==(const DetectorInformation& left, const DetectorInformation& right);
inline bool operator!=(const Calibration& left, const Calibration& right) {
  return !(left == right);
}
inline bool operator!=(const ObjectSchema& left, const ObjectSchema& right) {
  return !(left == right);
}
inline bool operator!=(const Classifications& left, const Classifications& right) {
  return !(left == right);
}
inline bool operator!=(const DetectorInformation& left, const DetectorInformation& right) {
  return !(left == right);
}
///@}

/** @name Printing: one line, no line end; enumerations by name, unknown numbers as numbers */
///@{
/** Prints on one line. */
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, ComputeChip chip);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, ReidStatus status);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, FishEyeMountingPosition position);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const Calibration& calibration);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const ObjectSchema& schema);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const Classifications& classifications);
TARNVOD_EXPORT std::ostream& operator<<(std::ostream& out, const DetectorInformation& information);
///@}

}  // namespace tarn::VOD

#endif
