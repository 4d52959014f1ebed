// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/spool.h"

#include "base/errors.h"
#include "fleet/spool_folder.h"

#include <recording/recording.h>
#include <recording/segmented_writer.h>
#include <recording/segments.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <system_error>
#include <utility>

namespace tarn::command {
namespace {

namespace fs = std::filesystem;
using vod::recording::RecordingError;
using vod::recording::RecordingWriter;

/** How far the spool is settled, as text: segment and number. Written now and then; what is behind it is sent again. */
constexpr const char* settledName = "settled";
constexpr std::chrono::seconds savePeriod{1};
/** Which frames were dropped and not yet reported. */
constexpr const char* notesName = "dropped";

}  // namespace

Spool::Spool(fs::path folder, std::uint64_t limit)
    : folder_(createdSpoolFolder(std::move(folder))),
      limit_(limit),
      lock_(folder_ / "lock"),
      notes_(folder_ / notesName) {
  std::error_code ignored;  // the writer reports it
  fs::remove_all(temporarySegmentFolder(folder_), ignored);
  findSegments();
  readSettled();
  removeSettledSegments();
}

Spool::~Spool() {
  saveSettled();
}

void Spool::findSegments() {
  for (const fs::path& part : vod::recording::partsOf(folder_)) {
    if (const auto number = vod::recording::segmentNumber(part.filename().string())) {
      segments_.push_back({*number, bytesIn(part), SpoolSegment(part, *number).size()});
      figures_.waiting += segments_.back().entries;
      latestSegment_ = *number;
    }
  }
  next_ = {segments_.empty() ? 1 : segments_.front().number, 0};
}

void Spool::readSettled() {
  SpoolPosition settled;
  std::ifstream file(folder_ / settledName);
  if (!(file >> settled.segment >> settled.number) || settled < next_) {
    return;
  }
  for (const Segment& segment : segments_) {
    if (segment.number < settled.segment) {
      figures_.waiting -= segment.entries;
    } else if (segment.number == settled.segment) {
      settled.number = std::min(settled.number, segment.entries);
      figures_.waiting -= settled.number;
    }
  }
  next_ = settled;
  latestSegment_ = std::max(latestSegment_, settled.segment);  // so that the next segment is behind it
}

void Spool::append(const SpoolEntry& entry) {
  const Lock lock(mutex_);
  try {
    write(entry);
  } catch (const RecordingError&) {
    if (segments_.size() < 2) {
      throw;
    }
    dropOldest();
    write(entry);
  }
}

void Spool::write(const SpoolEntry& entry) {
  const std::string bytes = encoded(entry);
  const std::uint64_t segmentLimit = vod::recording::SegmentLimits{limit_}.segmentBytes();
  if (!writer_ || segments_.back().bytes + bytes.size() + vod::recording::indexEntrySize > segmentLimit) {
    beginSegment();
  }
  writer_->append(bytes);
  segments_.back().bytes = writer_->size();
  ++segments_.back().entries;
  ++figures_.waiting;
}

void Spool::beginSegment() {
  writer_.reset();
  const std::uint64_t segmentLimit = vod::recording::SegmentLimits{limit_}.segmentBytes();
  while (!segments_.empty() && bytes() + segmentLimit > limit_) {
    dropOldest();
  }
  const fs::path temporary = temporarySegmentFolder(folder_);
  std::error_code error;
  fs::remove_all(temporary, error);
  writer_.emplace(temporary, "");
  fs::rename(temporary, segmentFolder(folder_, latestSegment_ + 1), error);
  if (error) {
    writer_.reset();
    throw RecordingError(folder_.string() + ": " + error.message());
  }
  segments_.push_back({++latestSegment_, writer_->size(), 0});
}

void Spool::dropOldest() {
  const Segment oldest = segments_.front();
  if (oldest.number == latestSegment_) {
    writer_.reset();
  }
  for (std::uint64_t number = 0; number < oldest.entries; ++number) {
    const SpoolPosition position{oldest.number, number};
    const bool isUnsettled = given_.erase(position) > 0 || !(position < next_);
    if (isUnsettled) {
      noteDropped(number);
    }
  }
  saveNotes();  // before the frames go, so that a death in between does not lose both
  segments_.pop_front();
  removeSegment(folder_, oldest.number);
  saveNotes();  // on a full disk, there may be room only now
  if (next_.segment <= oldest.number) {
    next_ = {oldest.number + 1, 0};
  }
}

void Spool::noteDropped(std::uint64_t number) {
  --figures_.waiting;
  const auto entry = read({segments_.front().number, number});
  if (entry) {
    notes_.add(entry->frames);
    figures_.dropped += entry->kind == SpoolEntry::Kind::Frame ? 1U : 0U;
  } else {
    ++figures_.damaged;
  }
}

/** Writes notes that have changed. If they cannot be written they are kept in memory, and written with the next change. */
void Spool::saveNotes() {
  try {
    notes_.save();
  } catch (const Failure&) {
    // The disk is full, which the next frame that does not fit reports, too.
  }
}

std::optional<Spool::Given> Spool::nextNote() {
  const auto note = notes_.next();
  return note ? std::make_optional(Given{{0, note->number}, {SpoolEntry::Kind::Dropped, note->frames, ""}})
              : std::nullopt;
}

std::optional<Spool::Given> Spool::next() {
  const Lock lock(mutex_);
  if (auto note = nextNote()) {
    return note;
  }
  while (true) {
    const auto segment = std::find_if(segments_.begin(), segments_.end(),
                                      [first = next_.segment](const Segment& each) { return each.number >= first; });
    if (segment == segments_.end()) {
      return std::nullopt;
    }
    if (segment->number > next_.segment) {
      next_ = {segment->number, 0};
    }
    if (next_.number >= segment->entries) {
      if (segment->number == latestSegment_ && writer_) {
        return std::nullopt;
      }
      next_ = {segment->number + 1, 0};
      continue;
    }
    const SpoolPosition position = next_;
    ++next_.number;
    if (auto entry = read(position)) {
      given_.insert(position);
      return Given{position, std::move(*entry)};
    }
    ++figures_.damaged;
    --figures_.waiting;
  }
}

std::optional<SpoolEntry> Spool::read(const SpoolPosition& position) {
  const bool isOpen = reader_ && reader_->number() == position.segment && position.number < reader_->size();
  if (!isOpen) {
    reader_.emplace(segmentFolder(folder_, position.segment), position.segment);
  }
  const auto bytes = reader_->read(position.number);
  return bytes ? decodedSpoolEntry(*bytes) : std::nullopt;
}

void Spool::settle(const SpoolPosition& position) {
  const Lock lock(mutex_);
  position.segment == 0 ? static_cast<void>(notes_.settle(position.number)) : settleEntry(position);
  if (Clock::now() - savedAt_ >= savePeriod) {
    saveSettled();
  }
}

void Spool::settleEntry(const SpoolPosition& position) {
  if (given_.erase(position) > 0) {
    --figures_.waiting;
    removeSettledSegments();
  }
}

void Spool::rewind() {
  const Lock lock(mutex_);
  // What is settled between the lowest entry that is not and the next one is given out again, too, and counts as waiting.
  const SpoolPosition lowest = lowestUnsettled();
  std::uint64_t entries = 0;
  for (const Segment& segment : segments_) {
    const std::uint64_t from = segment.number == lowest.segment ? std::min(lowest.number, segment.entries) : 0;
    entries += segment.number < lowest.segment ? 0 : segment.entries - from;
  }
  figures_.waiting = entries;
  next_ = lowest;
  given_.clear();
  notes_.rewind();
}

SpoolPosition Spool::lowestUnsettled() const {
  return given_.empty() ? next_ : std::min(*given_.begin(), next_);
}

void Spool::removeSettledSegments() {
  const SpoolPosition lowest = lowestUnsettled();
  const std::size_t before = segments_.size();
  while (!segments_.empty() && segments_.front().number < lowest.segment &&
         segments_.front().number != latestSegment_) {
    removeSegment(folder_, segments_.front().number);
    segments_.pop_front();
  }
  if (segments_.size() != before) {
    saveSettled();
  }
}

void Spool::saveSettled() {
  savedAt_ = Clock::now();
  const SpoolPosition lowest = lowestUnsettled();
  // If these cannot be written, entries and notes are sent again after the next start; nothing is lost.
  std::ofstream(folder_ / settledName) << lowest.segment << ' ' << lowest.number << '\n';
  saveNotes();
}

Spool::Figures Spool::figures() const {
  const Lock lock(mutex_);
  Figures figures = figures_;
  figures.bytes = bytes();
  figures.waiting += notes_.size();
  return figures;
}

std::uint64_t Spool::bytes() const {
  std::uint64_t sum = 0;
  for (const Segment& segment : segments_) {
    sum += segment.bytes;
  }
  return sum;
}

}  // namespace tarn::command
