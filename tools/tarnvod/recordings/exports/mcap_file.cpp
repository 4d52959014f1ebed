// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recordings/exports/mcap_file.h"

#include <zlib.h>

#include <algorithm>

namespace tarn::command {
namespace {

constexpr std::string_view magic = "\x89MCAP0\r\n";
constexpr std::size_t chunkSize = 1U << 20U;

enum Opcode : std::uint8_t {
  header = 0x01,
  footer = 0x02,
  schema = 0x03,
  channel = 0x04,
  message = 0x05,
  chunk = 0x06,
  messageIndex = 0x07,
  chunkIndex = 0x08,
  statisticsRecord = 0x0B,
  summaryOffset = 0x0E,
  dataEnd = 0x0F,
};

template <typename Number>
std::string number(Number value) {
  std::string bytes;
  for (std::size_t byte = 0; byte < sizeof(Number); ++byte) {
    bytes.push_back(static_cast<char>(static_cast<std::uint64_t>(value) >> (8 * byte)));
  }
  return bytes;
}

/** Bytes after their length. */
template <typename Length>
std::string sized(std::string_view bytes) {
  return number(static_cast<Length>(bytes.size())).append(bytes);
}

std::string text(std::string_view value) {
  return sized<std::uint32_t>(value);
}

std::string record(Opcode opcode, std::string_view contents) {
  return static_cast<char>(opcode) + sized<std::uint64_t>(contents);
}

std::uint32_t checksumOf(std::string_view bytes) {
  // zlib's type for bytes.
  const auto* data = reinterpret_cast<const Bytef*>(bytes.data());
  return static_cast<std::uint32_t>(crc32(0, data, static_cast<uInt>(bytes.size())));
}

/** Where a group of records in the summary is; nothing for an empty group. */
std::string offsetOf(Opcode opcode, std::uint64_t start, std::string_view group) {
  const std::string contents = static_cast<char>(opcode) + number(start) + number(std::uint64_t{group.size()});
  return group.empty() ? std::string() : record(summaryOffset, contents);
}

}  // namespace

McapFile::McapFile(const std::string& path) : file_(path) {
  write(magic);
  write(record(header, text("") + text("tarnvod " TARNVOD_VERSION)));
}

void McapFile::addChannel(const std::string& topic, const std::string& messageName, std::string_view descriptors) {
  const auto id = static_cast<std::uint16_t>(counts_.size() + 1);
  counts_[id] = 0;
  const std::string schemaRecord =
      record(schema, number(id) + text(messageName) + text("protobuf") + sized<std::uint32_t>(descriptors));
  const std::string channelRecord =
      record(channel, number(id) + number(id) + text(topic) + text("protobuf") + number(std::uint32_t{0}));
  write(schemaRecord + channelRecord);
  schemas_ += schemaRecord;
  channels_ += channelRecord;
}

void McapFile::addMessage(std::uint16_t channelId, std::uint64_t logged, std::uint64_t published,
                          std::string_view bytes) {
  chunk_.messages[channelId].emplace_back(logged, chunk_.records.size());
  chunk_.firstTime = std::min(chunk_.firstTime, logged);
  chunk_.lastTime = std::max(chunk_.lastTime, logged);
  const auto sequence = static_cast<std::uint32_t>(++counts_.at(channelId));
  chunk_.records +=
      record(message, number(channelId) + number(sequence) + number(logged) + number(published) + std::string(bytes));
  if (chunk_.records.size() >= chunkSize) {
    finishChunk();
  }
}

void McapFile::finish() {
  if (!chunk_.records.empty()) {
    finishChunk();
  }
  write(record(dataEnd, number(std::uint32_t{0})));
  write(summary());
  write(magic);
  file_.commit();
}

void McapFile::write(std::string_view bytes) {
  file_.write(bytes);
  size_ += bytes.size();
}

void McapFile::finishChunk() {
  const std::uint64_t start = size_;
  const std::string times = number(chunk_.firstTime) + number(chunk_.lastTime);
  const std::uint64_t recordsSize = chunk_.records.size();
  write(record(chunk, times + number(recordsSize) + number(checksumOf(chunk_.records)) + text("") +
                          sized<std::uint64_t>(chunk_.records)));
  const std::uint64_t end = size_;

  std::string offsets;
  for (const auto& [id, messages] : chunk_.messages) {
    offsets += number(id) + number(size_);
    std::string places;
    for (const auto& [time, offset] : messages) {
      places += number(time) + number(offset);
    }
    write(record(messageIndex, number(id) + sized<std::uint32_t>(places)));
  }
  chunkIndices_ += record(chunkIndex, times + number(start) + number(end - start) + sized<std::uint32_t>(offsets) +
                                          number(size_ - end) + text("") + number(recordsSize) + number(recordsSize));
  ++chunkCount_;
  firstTime_ = std::min(firstTime_, chunk_.firstTime);
  lastTime_ = std::max(lastTime_, chunk_.lastTime);
  chunk_ = Chunk();
}

std::string McapFile::statistics() const {
  std::uint64_t messages = 0;
  std::string perChannel;
  for (const auto& [id, count] : counts_) {
    messages += count;
    perChannel += number(id) + number(count);
  }
  const auto channels = static_cast<std::uint32_t>(counts_.size());
  constexpr std::uint32_t none = 0;  // attachments, metadata
  return record(statisticsRecord, number(messages) + number(static_cast<std::uint16_t>(channels)) + number(channels) +
                                      number(none) + number(none) + number(chunkCount_) +
                                      number(messages > 0 ? firstTime_ : 0) + number(lastTime_) +
                                      sized<std::uint32_t>(perChannel));
}

std::string McapFile::summary() const {
  const std::string counts = statistics();
  const std::uint64_t channelsStart = size_ + schemas_.size();
  const std::uint64_t countsStart = channelsStart + channels_.size();
  const std::uint64_t chunksStart = countsStart + counts.size();
  const std::uint64_t offsetsStart = chunksStart + chunkIndices_.size();
  const std::string offsets = offsetOf(schema, size_, schemas_) + offsetOf(channel, channelsStart, channels_) +
                              offsetOf(statisticsRecord, countsStart, counts) +
                              offsetOf(chunkIndex, chunksStart, chunkIndices_);
  // The checksum covers the footer up to itself.
  constexpr std::uint64_t footerSize = 2 * sizeof(std::uint64_t) + sizeof(std::uint32_t);
  const std::string checked = schemas_ + channels_ + counts + chunkIndices_ + offsets + static_cast<char>(footer) +
                              number(footerSize) + number(size_) + number(offsetsStart);
  return checked + number(checksumOf(checked));
}

}  // namespace tarn::command
