// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_REPLAY_INSTALLED_RECORDINGS_H
#define VOD_HOST_REPLAY_INSTALLED_RECORDINGS_H

#include <string>
#include <vector>

namespace vod::host {

/** The folders of the recordings that are installed with this library, one for each channel. They may be absent. */
std::vector<std::string> installedRecordings();

}  // namespace vod::host

#endif
