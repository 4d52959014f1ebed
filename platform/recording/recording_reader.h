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

namespace vod::recording {

/** One message of a recording, as it was recorded. */
struct RecordedScene {
  std::string bytes;
  /** Where its length prefix begins, in bytes from the start of the file. */
  std::int64_t offset = 0;
};

struct EndOfRecording {};

using NextScene = std::variant<RecordedScene, EndOfRecording, Damage>;

/**
 * Reads scenes one after the other and holds no more than one. It does not read beyond the end or a damage; further
 * calls return the same result. Not thread-safe.
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
   */
  RecordingReader(std::unique_ptr<std::istream> source, std::string name, std::size_t maximumSize = maximumMessageSize);

  NextScene next();

 private:
  NextScene readNext();
  std::optional<Damage> readLength(google::protobuf::io::CodedInputStream& input, std::uint32_t& length) const;
  Damage damageHere(std::string what) const;
  NextScene endOrReadError() const;

  std::unique_ptr<std::istream> source_;
  std::string name_;
  std::size_t maximumSize_;
  google::protobuf::io::IstreamInputStream stream_;
  std::int64_t offset_ = 0;
  std::optional<NextScene> last_;
};

}  // namespace vod::recording

#endif
