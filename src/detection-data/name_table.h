// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTION_DATA_NAME_TABLE_H
#define TARNVOD_DETECTION_DATA_NAME_TABLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarn::VOD {

/**
 * Names by id, in ascending order of the ids: made once, then only read. As a frame makes hundreds of look-ups, these
 * go by hash: open addressing, load factor at most 1/2. Ids that were chosen to collide are looked up by binary search
 * instead, so that neither making the table nor a look-up degrades. `Id` converts to `std::uint64_t`, no two to the
 * same.
 */
template <typename Id>
class NameTable {
 public:
  NameTable() : NameTable(std::map<Id, std::string>()) {}

  explicit NameTable(std::map<Id, std::string>&& names) {
    while (names.size() * 2 > std::uint64_t{1} << (64U - shift_)) {
      --shift_;
    }
    slots_.resize(std::size_t{1} << (64U - shift_));
    ids_.reserve(names.size());
    names_.reserve(names.size());
    for (auto& [id, name] : names) {
      ids_.push_back(id);
      names_.push_back(std::move(name));
      idsCollide_ = idsCollide_ || !insert(id, names_.back());
    }
    if (idsCollide_) {
      std::fill(slots_.begin(), slots_.end(), Slot());  // so that each look-up misses at once
    }
  }

  NameTable(const NameTable&) = delete;
  NameTable& operator=(const NameTable&) = delete;

  /** The name of an id, or null; valid while the table lives. */
  const std::string* find(const Id& id) const {
    const auto key = static_cast<std::uint64_t>(id);
    std::size_t slot = firstSlot(key);
    while (slots_[slot].key != key && slots_[slot].name != nullptr) {
      slot = (slot + 1) % slots_.size();
    }
    const std::string* const name = slots_[slot].name;
    return name == nullptr && idsCollide_ ? findInOrder(id) : name;
  }

  std::size_t size() const { return ids_.size(); }
  const Id& id(std::size_t index) const { return ids_[index]; }
  const std::string& name(std::size_t index) const { return names_[index]; }

 private:
  struct Slot {
    std::uint64_t key = 0;
    const std::string* name = nullptr;
  };

  /** More steps than ids meet that were not chosen to collide. */
  static constexpr int mostSteps = 64;

  /** False when the id's place is too far from its first slot. */
  bool insert(const Id& id, const std::string& name) {
    const auto key = static_cast<std::uint64_t>(id);
    std::size_t slot = firstSlot(key);
    for (int steps = 0; slots_[slot].name != nullptr; ++steps) {
      if (steps == mostSteps) {
        return false;
      }
      slot = (slot + 1) % slots_.size();
    }
    slots_[slot] = {key, &name};
    return true;
  }

  const std::string* findInOrder(const Id& id) const {
    const auto found = std::lower_bound(ids_.begin(), ids_.end(), id);
    return found == ids_.end() || id < *found ? nullptr : &names_[static_cast<std::size_t>(found - ids_.begin())];
  }

  /** Multiplying by the golden ratio spreads ids that follow each other. */
  std::size_t firstSlot(std::uint64_t key) const {
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> shift_);
  }

  std::vector<Id> ids_;
  std::vector<std::string> names_;
  std::vector<Slot> slots_;
  unsigned shift_ = 63;
  bool idsCollide_ = false;
};

}  // namespace tarn::VOD

#endif
