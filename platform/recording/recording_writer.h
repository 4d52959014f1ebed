// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_RECORDING_RECORDING_WRITER_H
#define VOD_RECORDING_RECORDING_WRITER_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace vod::recording {

/**
 * Writes a recording. The detector information is complete before the first scene, and each scene is passed to the
 * system as a whole before `append` returns: a process that is stopped at any moment leaves a readable recording. Not
 * thread-safe.
 */
class RecordingWriter {
 public:
  /**
   * Creates the folder, if it does not exist, and both files.
   *
   * @throw RecordingError  when the folder already holds a recording or cannot be written
   */
  RecordingWriter(const std::filesystem::path& folder, std::string_view detectorInformation);
  ~RecordingWriter();
  RecordingWriter(const RecordingWriter&) = delete;
  RecordingWriter& operator=(const RecordingWriter&) = delete;

  /**
   * Adds a scene.
   *
   * @throw RecordingError  when it is longer than `maximumMessageSize` or cannot be written. The recording then ends
   * with the scene before it; a later call may succeed
   */
  void append(std::string_view scene);

 private:
  std::filesystem::path scenesFile_;
  int scenes_ = -1;
  std::int64_t size_ = 0;
};

}  // namespace vod::recording

#endif
