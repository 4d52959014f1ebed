// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_RECORDING_OUTPUT_H
#define TARNVOD_COMMAND_RECORDING_OUTPUT_H

#include <recording/checked_reader.h>
#include <recording/recording_writer.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::command {

/**
 * A recording that is made of others. The folder takes its name when it is complete; what is not committed is removed.
 */
class RecordingOutput {
 public:
  /**
   * @param folder   must not exist, or be empty
   * @param boot     as for `RecordingWriter`; none for a recording without an index
   * @throw Failure  when the folder holds something
   */
  RecordingOutput(const std::filesystem::path& folder, std::string_view detectorInformation,
                  const std::optional<vod::recording::BootId>& boot);
  ~RecordingOutput();
  RecordingOutput(const RecordingOutput&) = delete;
  RecordingOutput& operator=(const RecordingOutput&) = delete;

  /** Adds a scene as it is. */
  void append(const vod::recording::CheckedScene& scene);
  /** Adds a copy of a file, under the same name. @throw Failure  when it cannot be copied; nothing is added then */
  void addFile(const std::filesystem::path& file);
  /** @throw Failure  when the folder cannot get its name */
  void commit();

  /** "20 frames, 6.1 kB, to DIR". */
  std::string summary() const;

 private:
  const std::filesystem::path folder_;
  const std::filesystem::path temporary_;
  std::optional<vod::recording::RecordingWriter> writer_;
  std::uint64_t frames_ = 0;
  std::uint64_t bytes_ = 0;
};

/**
 * The boot that the index of a recording made of these is of: zeros when they are of several boots, none when none of them
 * has an index.
 */
std::optional<vod::recording::BootId> commonBoot(const std::vector<std::filesystem::path>& recordings);

}  // namespace tarn::command

#endif
