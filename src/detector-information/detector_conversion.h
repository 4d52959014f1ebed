// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTOR_INFORMATION_DETECTOR_CONVERSION_H
#define TARNVOD_DETECTOR_INFORMATION_DETECTOR_CONVERSION_H

#include <tarnvod/detector_information.h>

namespace VOD {
class DetectorInformation;
}

namespace tarn::VOD {

/**
 * The object classes of a message: the same as those of the whole model, at the cost of the classes alone. For callers
 * that hold the handler's lock and need no more than these.
 */
Classifications classificationsOf(const ::VOD::DetectorInformation& message);

}  // namespace tarn::VOD

#endif
