// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * A recording: a folder with the messages of one camera's service. `detector-information.pb` holds the detector
 * information, `scenes.pb` the scenes, each preceded by its length as a varint. The messages are not interpreted here:
 * they are read with the bytes with which they were written.
 */

#ifndef VOD_RECORDING_RECORDING_H
#define VOD_RECORDING_RECORDING_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>

namespace vod::recording {

inline constexpr const char* detectorInformationFileName = "detector-information.pb";
inline constexpr const char* scenesFileName = "scenes.pb";

/** The longest message that is read or written. Far longer than any scene; bounds the memory for a damaged length. */
inline constexpr std::size_t maximumMessageSize = 16U << 20U;

/** A place in a recording from which on it cannot be read. */
struct Damage {
  std::string file;
  /** Where the damaged message begins, in bytes from the start of the file. */
  std::int64_t offset = 0;
  std::string what;
};

/** One line: `FILE: offset N: WHAT`. */
std::string toString(const Damage& damage);
std::ostream& operator<<(std::ostream& out, const Damage& damage);

/** A recording that cannot be opened or written; `what()` is one line that names the file. */
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/**
 * Opens a file of a recording for reading.
 *
 * @throw RecordingError  when it is missing, cannot be opened or is not a regular file: reading a FIFO or a device may
 *                        block forever or never reach an end
 */
std::ifstream openFile(const std::filesystem::path& file);

/**
 * The bytes of a recording's detector information; of several segments, those of the last.
 *
 * @throw RecordingError  when the file cannot be opened (see `openFile`) or read, or is longer than
 *                        `maximumMessageSize`
 */
std::string readDetectorInformation(const std::filesystem::path& folder);

}  // namespace vod::recording

#endif
