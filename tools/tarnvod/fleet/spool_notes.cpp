// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/spool_notes.h"

#include "base/files.h"
#include "fleet/spool_entry.h"

#include <fstream>
#include <utility>

namespace tarn::command {

SpoolNotes::SpoolNotes(std::filesystem::path file) : file_(std::move(file)) {
  std::ifstream lines(file_);
  for (std::string line; std::getline(lines, line);) {
    const auto entry = decodedSpoolEntry(line + '\n');
    if (entry && entry->kind == SpoolEntry::Kind::Dropped) {
      add(entry->frames);
    }
  }
  isSaved_ = true;
}

void SpoolNotes::add(const FrameRange& frames) {
  waiting_[{frames.camera, frames.start}].add(frames.first, frames.last);
  isSaved_ = false;
}

std::optional<SpoolNotes::Given> SpoolNotes::next() {
  const auto source = waiting_.begin();
  if (source == waiting_.end()) {
    return std::nullopt;
  }
  const auto [first, last] = source->second.takeLowestRange();
  const Given given{++latest_, {source->first.first, source->first.second, first, last}};
  if (source->second.isEmpty()) {
    waiting_.erase(source);
  }
  given_.emplace(given.number, given.frames);
  return given;
}

bool SpoolNotes::settle(std::uint64_t number) {
  const bool isGiven = given_.erase(number) > 0;
  isSaved_ = isSaved_ && !isGiven;
  return isGiven;
}

void SpoolNotes::rewind() {
  for (const auto& [number, frames] : std::exchange(given_, {})) {
    waiting_[{frames.camera, frames.start}].add(frames.first, frames.last);
  }
}

std::size_t SpoolNotes::size() const {
  std::size_t count = given_.size();
  for (const auto& [source, numbers] : waiting_) {
    count += numbers.ranges();
  }
  return count;
}

void SpoolNotes::save() {
  if (isSaved_) {
    return;
  }
  writeFile(file_, text());
  isSaved_ = true;
}

std::string SpoolNotes::text() const {
  std::string lines;
  for (const auto& [number, frames] : given_) {
    lines += encoded({SpoolEntry::Kind::Dropped, frames, ""});
  }
  for (const auto& [source, numbers] : waiting_) {
    for (const auto& [first, last] : numbers.all()) {
      lines += encoded({SpoolEntry::Kind::Dropped, {source.first, source.second, first, last}, ""});
    }
  }
  return lines;
}

}  // namespace tarn::command
