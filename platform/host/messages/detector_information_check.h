// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_MESSAGES_DETECTOR_INFORMATION_CHECK_H
#define VOD_HOST_MESSAGES_DETECTOR_INFORMATION_CHECK_H

#include <string>

namespace vod::host {

/**
 * Reads a recording's detector information and checks that it parses.
 *
 * @throw vod::recording::RecordingError  when it cannot be read or does not parse: one line with file, offset and
 * reason
 */
std::string readValidDetectorInformation(const std::string& folder);

}  // namespace vod::host

#endif
