// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_RECORDING_RECORDING_WRITER_H
#define VOD_RECORDING_RECORDING_WRITER_H

#include "recording/scene_index.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vod::recording {

/**
 * Writes a plain recording. The detector information is complete before the first scene; each scene, and then its entry
 * in the index, is passed to the system as a whole before `append` returns. A process that is stopped at any moment
 * leaves a readable recording. Not thread-safe.
 */
class RecordingWriter {
 public:
  /**
   * Creates the folder, if it does not exist, and the files.
   *
   * @param boot    the boot whose monotonic clock the arrivals are of; none for a recording without an index
   * @throw RecordingError  when the folder already holds a recording or cannot be written
   */
  RecordingWriter(const std::filesystem::path& folder, std::string_view detectorInformation,
                  const std::optional<BootId>& boot = currentBoot());
  ~RecordingWriter();
  RecordingWriter(const RecordingWriter&) = delete;
  RecordingWriter& operator=(const RecordingWriter&) = delete;

  /**
   * Adds a scene.
   *
   * @param arrival  when it arrived; both times 0 when that is not known
   * @throw RecordingError  when it is longer than `maximumMessageSize` or cannot be written. The recording then ends
   * with the scene before it; a later call may succeed
   */
  void append(std::string_view scene, const Arrival& arrival = arrivalNow());

  /** The bytes of all files of this recording. */
  std::uint64_t size() const { return static_cast<std::uint64_t>(scenes_.size + index_.size) + informationSize_; }

 private:
  /** A file that grows by whole pieces. */
  struct File {
    std::filesystem::path path;
    int descriptor = -1;
    std::int64_t size = 0;

    void create(const std::filesystem::path& name);
    /** Returns 0 or the system's error; the file may then end with a part of the bytes. */
    int append(std::string_view bytes);
    /** Ends the file where it ended before the last append. Returns 0 or the system's error. */
    int cutBack() const;
    void close();
  };

  [[noreturn]] void undoAndFail(const File& failed, int error);

  File scenes_;
  File index_;
  std::uint64_t informationSize_ = 0;
};

}  // namespace vod::recording

#endif
