// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_VIDEO_RECORDER_RECORD_H
#define TARNVOD_VIDEO_RECORDER_RECORD_H

#include <atomic>
#include <filesystem>
#include <string>

namespace recorder {

struct Options {
  /** A video file, or the number of a camera of this computer. */
  std::string input;
  std::filesystem::path output;
  /** Left and right are swapped before anything is detected. */
  bool isMirrored = false;
  /** The camera that the recording stands for, from 1. */
  int camera = 1;
  /** 0 for all. */
  int frames = 0;
  int firstFrame = 0;
  /** Height in pixels of the smallest person to find. */
  int smallestPerson = 64;
};

/**
 * Makes a recording of what the people detector sees in a video.
 *
 * @param isStopping  ends the recording after the current frame once it is true
 * @return the number of frames recorded
 * @throw VideoError                       when the input cannot be used
 * @throw vod::recording::RecordingError   when the output cannot be written
 */
int record(const Options& options, const std::atomic<bool>& isStopping);

}  // namespace recorder

#endif
