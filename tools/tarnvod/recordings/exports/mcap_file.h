// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_MCAP_FILE_H
#define TARNVOD_COMMAND_MCAP_FILE_H

#include "base/replaced_file.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::command {

/**
 * Writes a file in the MCAP container format, version 0: uncompressed chunks of about 1 MB with checksums and an index of
 * their messages, and a summary. Holds one chunk, and some 100 bytes for each one that has been written.
 */
class McapFile {
 public:
  explicit McapFile(const std::string& path);

  /** Adds a channel with a schema of its own, before the first message. Channels are numbered from 1. */
  void addChannel(const std::string& topic, const std::string& messageName, std::string_view descriptors);

  /** Adds a message. @param logged, published  nanoseconds */
  void addMessage(std::uint16_t channel, std::uint64_t logged, std::uint64_t published, std::string_view message);

  void finish();

 private:
  struct Chunk {
    std::uint64_t firstTime = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t lastTime = 0;
    std::string records;
    /** For each channel, the time of each message and where it begins in the chunk. */
    std::map<std::uint16_t, std::vector<std::pair<std::uint64_t, std::uint64_t>>> messages;
  };

  void write(std::string_view bytes);
  void finishChunk();
  std::string summary() const;
  std::string statistics() const;

  ReplacedFile file_;
  std::uint64_t size_ = 0;
  std::string schemas_;
  std::string channels_;
  std::string chunkIndices_;
  Chunk chunk_;
  std::uint32_t chunkCount_ = 0;
  std::uint64_t firstTime_ = std::numeric_limits<std::uint64_t>::max();
  std::uint64_t lastTime_ = 0;
  /** How many messages each channel has. */
  std::map<std::uint16_t, std::uint64_t> counts_;
};

}  // namespace tarn::command

#endif
