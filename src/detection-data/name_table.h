// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTION_DATA_NAME_TABLE_H
#define TARNVOD_DETECTION_DATA_NAME_TABLE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarn::VOD {

/**
 * Names by id, in ascending order of the ids: made once, then only read. As a frame makes hundreds of look-ups, these
 * go by hash, in a table without chains that is at most half full. `Id` converts to `std::uint64_t`, no two to the
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
      insert(id, names_.back());
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
    return slots_[slot].name;
  }

  std::size_t size() const { return ids_.size(); }
  const Id& id(std::size_t index) const { return ids_[index]; }
  const std::string& name(std::size_t index) const { return names_[index]; }

 private:
  struct Slot {
    std::uint64_t key = 0;
    const std::string* name = nullptr;
  };

  void insert(const Id& id, const std::string& name) {
    const auto key = static_cast<std::uint64_t>(id);
    std::size_t slot = firstSlot(key);
    while (slots_[slot].name != nullptr) {
      slot = (slot + 1) % slots_.size();
    }
    slots_[slot] = {key, &name};
  }

  /** Multiplying by the golden ratio spreads ids that follow each other. */
  std::size_t firstSlot(std::uint64_t key) const {
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> shift_);
  }

  std::vector<Id> ids_;
  std::vector<std::string> names_;
  std::vector<Slot> slots_;
  unsigned shift_ = 63;
};

}  // namespace tarn::VOD

#endif
