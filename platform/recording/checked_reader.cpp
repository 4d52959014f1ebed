// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "recording/checked_reader.h"

#include "recording/segments.h"

#include <google/protobuf/io/coded_stream.h>

#include <algorithm>
#include <istream>
#include <string_view>
#include <utility>

namespace vod::recording {
namespace {

/** A search finds scenes of up to this length: it looks at each byte, and behind it this far. */
constexpr std::uint32_t longestSearched = 64U << 10U;

std::int64_t prefixSize(std::uint32_t length) {
  return static_cast<std::int64_t>(google::protobuf::io::CodedOutputStream::VarintSize32(length));
}

/** Behind the scene, as the index describes it. */
std::int64_t endOf(const IndexEntry& entry) {
  return static_cast<std::int64_t>(entry.offset) + prefixSize(entry.length) + entry.length;
}

std::string frames(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

std::optional<Arrival> knownArrival(const IndexEntry& entry) {
  return entry.arrival == Arrival() ? std::nullopt : std::optional(entry.arrival);
}

}  // namespace

CheckedReader::CheckedReader(const std::filesystem::path& folder, LooksLikeScene looksLikeScene)
    : looksLikeScene_(std::move(looksLikeScene)), parts_(partsOf(folder)) {
  try {
    open(0);
  } catch (const RecordingError&) {
    if (parts_.size() == 1) {
      throw;
    }
    found_.push_back({fileOf(0), 0, "cannot be opened"});
    partHasEnded_ = true;
  }
}

CheckedNext CheckedReader::next() {
  while (found_.empty()) {
    if (ready_) {
      return *std::exchange(ready_, std::nullopt);
    }
    if (partHasEnded_ && part_ + 1 == parts_.size()) {
      return EndOfRecording();
    }
    if (partHasEnded_) {
      openNextPart();
      continue;
    }
    NextScene next = reader_->next();
    if (auto* const scene = std::get_if<RecordedScene>(&next)) {
      check(std::move(*scene));
    } else if (const auto* const damage = std::get_if<Damage>(&next)) {
      resumeBehind(*damage);
    } else {
      finishPart();
    }
  }
  Damage damage = std::move(found_.front());
  found_.pop_front();
  return damage;
}

void CheckedReader::open(std::size_t part) {
  part_ = part;
  number_ = 0;
  withoutEntry_ = 0;
  indexIsReported_ = false;
  cannotResume_ = false;
  end_ = 0;
  partHasEnded_ = false;
  index_.emplace(parts_[part]);
  openAt(0);
  window_.clear();
  probe_->seekg(0, std::ios::end);
  fileSize_ = probe_->tellg();
  if (index_->damage()) {
    found_.push_back(*index_->damage());
  }
}

void CheckedReader::openNextPart() {
  try {
    open(part_ + 1);
  } catch (const RecordingError&) {
    found_.push_back({fileOf(part_), 0, "cannot be opened"});
    partHasEnded_ = true;
  }
}

void CheckedReader::openAt(std::int64_t offset) {
  probe_ = openScenes(parts_[part_]);
  auto stream = openScenes(parts_[part_]);
  stream->seekg(offset);
  reader_ = std::make_unique<RecordingReader>(std::move(stream), fileOf(part_), maximumMessageSize, offset);
}

void CheckedReader::check(RecordedScene&& scene) {
  const auto entry = entryFor(scene);
  const auto size = static_cast<std::uint32_t>(scene.bytes.size());
  if (entry && entry->length != size && !isFollowedBy(scene.offset + prefixSize(size) + size) &&
      resumeAt(scene.offset, "its length disagrees with the index")) {
    return;
  }
  const bool isMisread = looksLikeScene_ && !entry && !looksLikeScene_(scene.bytes) &&
                         !isStartOfScenes(scene.offset + prefixSize(size) + size);
  if (isMisread && searchBehind(scene.offset, "this is not a scene")) {
    return;
  }
  ++number_;
  end_ = scene.offset + prefixSize(size) + size;
  std::optional<Arrival> arrival;
  if (entry && matches(*entry, scene.bytes)) {
    arrival = knownArrival(*entry);
  } else if (entry) {
    found_.push_back({fileOf(part_), scene.offset, "the scene here does not have the checksum in the index"});
  } else {
    ++withoutEntry_;
  }
  ready_ = CheckedScene{std::move(scene.bytes), part_, scene.offset, arrival};
}

std::optional<IndexEntry> CheckedReader::entryFor(const RecordedScene& scene) {
  const auto offset = static_cast<std::uint64_t>(scene.offset);
  const auto expected = index_->at(number_);
  if (!expected || expected->offset == offset) {
    return expected;
  }
  const std::uint64_t found = index_->firstFrom(offset);
  const auto entry = index_->at(found);
  if (!indexIsReported_) {
    const auto place = static_cast<std::int64_t>((number_ + 1) * indexEntrySize);
    found_.push_back({(parts_[part_] / indexFileName).string(), place,
                      "the entry here does not describe the scene at offset " + std::to_string(offset)});
    indexIsReported_ = true;
  }
  if (entry && entry->offset == offset) {
    number_ = found;
    return entry;
  }
  return std::nullopt;
}

bool CheckedReader::isFollowedBy(std::int64_t offset) {
  const auto following = index_->at(number_ + 1);
  return following && following->offset == static_cast<std::uint64_t>(offset);
}

void CheckedReader::resumeBehind(const Damage& damage) {
  if (resumeAt(damage.offset, damage.what) || searchBehind(damage.offset, damage.what)) {
    return;
  }
  const std::uint64_t listed = index_->size() - index_->firstFrom(static_cast<std::uint64_t>(damage.offset));
  found_.push_back({damage.file, damage.offset,
                    damage.what + (listed > 1 ? "; " + frames(listed) + " of the index are lost from here on" : "")});
  partHasEnded_ = true;
}

bool CheckedReader::resumeAt(std::int64_t offset, const std::string& what) {
  const std::uint64_t first = index_->firstFrom(static_cast<std::uint64_t>(offset));
  std::uint64_t number = first;
  for (auto entry = index_->at(first); entry && !cannotResume_; entry = index_->at(++number)) {
    if (auto bytes = intactScene(*entry)) {
      const auto begin = static_cast<std::int64_t>(entry->offset);
      found_.push_back({fileOf(part_), offset,
                        what + "; " + frames(number - first) + " lost, goes on at offset " + std::to_string(begin)});
      end_ = endOf(*entry);
      openAt(end_);
      number_ = number + 1;
      ready_ = CheckedScene{*std::move(bytes), part_, begin, knownArrival(*entry)};
      return true;
    }
  }
  cannotResume_ = true;
  return false;
}

bool CheckedReader::searchBehind(std::int64_t offset, const std::string& what) {
  for (std::int64_t begin = offset + 1; looksLikeScene_ && begin < fileSize_; ++begin) {
    if (isStartOfScenes(begin)) {
      found_.push_back(
          {fileOf(part_), offset,
           what + "; " + std::to_string(begin - offset) + " bytes lost, goes on at offset " + std::to_string(begin)});
      end_ = begin;
      openAt(begin);
      return true;
    }
  }
  return false;
}

bool CheckedReader::isStartOfScenes(std::int64_t offset) {
  if (offset >= fileSize_) {
    return true;
  }
  const std::string_view bytes = bytesFrom(offset);
  const auto size = sizeOfScene(bytes);
  return size &&
         (offset + static_cast<std::int64_t>(*size) == fileSize_ || sizeOfScene(bytes.substr(*size)).has_value());
}

std::optional<std::size_t> CheckedReader::sizeOfScene(std::string_view bytes) const {
  google::protobuf::io::CodedInputStream input(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                               static_cast<int>(bytes.size()));
  std::uint32_t length = 0;
  if (!input.ReadVarint32(&length) || length == 0 || length > longestSearched) {
    return std::nullopt;
  }
  const auto prefix = static_cast<std::size_t>(input.CurrentPosition());
  const bool isScene = prefix + length <= bytes.size() && looksLikeScene_(bytes.substr(prefix, length));
  return isScene ? std::optional(prefix + length) : std::nullopt;
}

std::string_view CheckedReader::bytesFrom(std::int64_t offset) {
  constexpr std::int64_t lookAhead = 2 * longestSearched + 10;
  const std::int64_t windowEnd = windowStart_ + static_cast<std::int64_t>(window_.size());
  const bool isHeld = offset >= windowStart_ && std::min(offset + lookAhead, fileSize_) <= windowEnd;
  if (!isHeld) {
    windowStart_ = offset;
    window_.resize(static_cast<std::size_t>(2 * lookAhead));
    probe_->clear();
    probe_->seekg(offset);
    probe_->read(window_.data(), static_cast<std::streamsize>(window_.size()));
    window_.resize(static_cast<std::size_t>(probe_->gcount()));
  }
  return std::string_view(window_).substr(static_cast<std::size_t>(offset - windowStart_));
}

std::optional<std::string> CheckedReader::intactScene(const IndexEntry& entry) {
  if (entry.length > maximumMessageSize) {
    return std::nullopt;
  }
  // With its length prefix: an empty scene that is not there has to be missed as well.
  const auto prefix = static_cast<std::size_t>(prefixSize(entry.length));
  std::string bytes(prefix + entry.length, '\0');
  probe_->clear();
  probe_->seekg(static_cast<std::int64_t>(entry.offset));
  probe_->read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.erase(0, prefix);
  return *probe_ && matches(entry, bytes) ? std::optional(std::move(bytes)) : std::nullopt;
}

void CheckedReader::finishPart() {
  partHasEnded_ = true;
  const std::uint64_t missing = index_->size() - index_->firstFrom(static_cast<std::uint64_t>(end_));
  if (missing > 0 && !indexIsReported_) {
    found_.push_back({fileOf(part_), end_, frames(missing) + " that the index lists from here on are missing"});
  }
  // A process that was killed between a scene and its entry leaves one scene without an entry: not a damage.
  if (index_->exists() && withoutEntry_ > 1) {
    found_.push_back({(parts_[part_] / indexFileName).string(),
                      static_cast<std::int64_t>((index_->size() + 1) * indexEntrySize),
                      "has no entries for " + frames(withoutEntry_)});
  }
}

}  // namespace vod::recording
