// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RECORDINGS_PAGE_H
#define TARNVOD_COMMAND_RECORDINGS_PAGE_H

#include "recordings/recording_scan.h"
#include "viewer/page_setup.h"

#include <string>
#include <vector>

namespace tarn::command {

struct RecordingsPage {
  std::string html;
  DamageList damage;  ///< of the first recording that has any
};

/**
 * The viewer's page of recordings as one file, which needs no viewer.
 *
 * @param setup  with a background for each recording that has one, as the address of an image
 * @throw Failure                         when it would be too large, or the command has been asked to end
 * @throw vod::recording::RecordingError  when the scenes cannot be opened
 */
RecordingsPage recordingsPage(const std::vector<std::string>& recordings, const PageSetup& setup,
                              const std::string& title);

}  // namespace tarn::command

#endif
