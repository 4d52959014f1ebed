// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/printing.h"

#include <tarnvod/detector_information.h>

namespace tarn::VOD {

using printing::printListedEnumerator;
using printing::Record;

std::ostream& operator<<(std::ostream& out, ComputeChip chip) {
  return printListedEnumerator(
      out, static_cast<int>(chip),
      "CHIP_UNKNOWN,CPU,TOVREK_6_FD,TOVREK_7_GPU,TOVREK_7_TPU,TOVREK_7_OD,TOVREK_8_DLPU,TOVREK_9_DLPU,,QN17_DLPU");
}

std::ostream& operator<<(std::ostream& out, ReidStatus status) {
  return printListedEnumerator(out, static_cast<int>(status), "REID_NOT_RUNNING,REID_RUNNING");
}

std::ostream& operator<<(std::ostream& out, FishEyeMountingPosition position) {
  return printListedEnumerator(out, static_cast<int>(position),
                               "MOUNTING_UNKNOWN,DESK_MOUNTED,WALL_MOUNTED,CEILING_MOUNTED");
}

std::ostream& operator<<(std::ostream& out, const Calibration& calibration) {
  return Record(out, "Calibration")
      .member("coefficientC", calibration.coefficientC)
      .member("coefficientA", calibration.coefficientA)
      .member("coefficientB", calibration.coefficientB)
      .end();
}

std::ostream& operator<<(std::ostream& out, const ObjectSchema& schema) {
  return Record(out, "ObjectSchema").member("attributes", schema.attributes).end();
}

std::ostream& operator<<(std::ostream& out, const DetectorInformation& information) {
  return Record(out, "DetectorInformation")
      .member("cameraNbr", information.getCameraNbr())
      .member("calibrations", information.getCalibrationsContainer())
      .member("objectVariants", information.getObjectVariants())
      .member("fishEyeMountingPosition", information.lookupFishEyeMountingPosition())
      .member("reidStatus", information.getReidStatus())
      .member("computeChip", information.getComputeChip())
      .member("classifications", information.getClassifications())
      .member("rotation", information.getRotation())
      .member("supportedAttributes", information.getSupportedAttributes())
      .end();
}

}  // namespace tarn::VOD
