// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_MESSAGES_DETECTOR_INFORMATION_CHECK_H
#define VOD_HOST_MESSAGES_DETECTOR_INFORMATION_CHECK_H

#include <string>

namespace vod::host {

/**
 * The bytes of a recording's detector information, which parse.
 *
 * @throw vod::recording::RecordingError  when they cannot be read or do not parse: one line with file, offset and
 * reason
 */
std::string readSoundDetectorInformation(const std::string& folder);

}  // namespace vod::host

#endif
