// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_RECORDING_RECORDING_READER_H
#define VOD_RECORDING_RECORDING_READER_H

#include "recording/recording.h"

#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vod::recording {

/** One message of a recording, as it was recorded. */
struct RecordedScene {
  std::string bytes;
  /** Where its length prefix begins, in bytes from the start of the file. */
  std::int64_t offset = 0;
  /** Which of the recording's parts holds it, counted from 0; see `partsOf`. */
  std::size_t part = 0;
};

struct EndOfRecording {};

using NextScene = std::variant<RecordedScene, EndOfRecording, Damage>;

/**
 * The file with the scenes of a plain recording, from its start.
 *
 * @throw RecordingError  when it cannot be opened
 */
std::unique_ptr<std::istream> openScenes(const std::filesystem::path& folder);

/**
 * Reads scenes one after the other, from segment to segment, and holds no more than one. After a damage it continues with
 * the next segment; it does not read beyond it within one. At the end, or a damage in the last segment, further calls
 * return the same result. Not thread-safe.
 */
class RecordingReader {
 public:
  /** @throw RecordingError  when the file of the scenes cannot be opened, see `openFile` */
  explicit RecordingReader(const std::filesystem::path& folder);

  /**
   * Reads a stream of length-delimited messages.
   *
   * @param source        the stream, owned by the reader
   * @param name          its name in `Damage::file`
   * @param maximumSize   in bytes; a longer message is damage
   * @param start         where in the file the stream begins; added to each offset
   */
  RecordingReader(std::unique_ptr<std::istream> source, std::string name, std::size_t maximumSize = maximumMessageSize,
                  std::int64_t start = 0);

  NextScene next();
  /** Whether the last answer was the final one. */
  bool atEnd() const { return last_.has_value(); }

 private:
  bool openNextPart();
  NextScene readNext();
  std::optional<Damage> readLength(google::protobuf::io::CodedInputStream& input, std::uint32_t& length) const;
  Damage damageHere(std::string what) const;
  NextScene endOrReadError() const;

  void read(std::unique_ptr<std::istream> source, std::string name);

  std::vector<std::filesystem::path> parts_;
  std::size_t part_ = 0;
  std::unique_ptr<std::istream> source_;
  std::string name_;
  std::size_t maximumSize_ = maximumMessageSize;
  std::int64_t start_ = 0;
  std::unique_ptr<google::protobuf::io::IstreamInputStream> stream_;
  std::int64_t offset_ = 0;
  /** Found at the opening of the next part. */
  std::optional<Damage> unopened_;
  std::optional<NextScene> last_;
};

}  // namespace vod::recording

#endif
