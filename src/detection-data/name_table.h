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
 * Names by id, in ascending order of the ids: made once, then only read. `Id` converts to `std::uint64_t`, no two to the
 * same. `Name` is what an id stands for, a string or more.
 *
 * As a frame makes hundreds of look-ups, these go by hash: open addressing, load factor at most 1/2. No look-up visits
 * more than `mostProbes` slots, whatever ids the service chooses: a table in which an id would be further from its place
 * is searched by bisection.
 */
template <typename Id, typename Name = std::string>
class NameTable {
 public:
  NameTable() : NameTable(std::map<Id, Name>()) {}

  explicit NameTable(std::map<Id, Name>&& names) {
    while (names.size() * 2 > std::uint64_t{1} << (64U - shift_)) {
      --shift_;
    }
    slots_.resize((std::size_t{1} << (64U - shift_)) + mostProbes);
    ids_.reserve(names.size());
    names_.reserve(names.size());
    for (auto& [id, name] : names) {
      ids_.push_back(id);
      names_.push_back(std::move(name));
      if (!insert(id, names_.back())) {
        isHashed_ = false;
      }
    }
  }

  NameTable(const NameTable&) = delete;
  NameTable& operator=(const NameTable&) = delete;

  /** The name of an id, or null; valid while the table lives. */
  const Name* find(const Id& id) const {
    const auto key = static_cast<std::uint64_t>(id);
    const Slot* slot = &slots_[firstSlot(key)];
#pragma GCC unroll 1  // each look-up would be 3 kB on ARM
    for (const Slot* const end = slot + mostProbes; slot != end; ++slot) {
      if (slot->key == key || slot->name == nullptr) {
        return slot->name;  // the id would be in the first free slot, if it were in the table
      }
    }
    return isHashed_ ? nullptr : bisect(id);
  }

  std::size_t size() const {
    return ids_.size();
  }
  const Id& id(std::size_t index) const {
    return ids_[index];
  }
  const Name& name(std::size_t index) const {
    return names_[index];
  }

 private:
  struct Slot {
    std::uint64_t key = 0;
    const Name* name = nullptr;
  };

  static constexpr std::size_t mostProbes = 16;

  /** False when there is no free slot near the id's place. */
  bool insert(const Id& id, const Name& name) {
    const auto key = static_cast<std::uint64_t>(id);
    const auto first = slots_.begin() + static_cast<std::ptrdiff_t>(firstSlot(key));
    const auto last = first + mostProbes;
    const auto free = std::find_if(first, last, [](const Slot& slot) { return slot.name == nullptr; });
    if (free == last) {
      return false;
    }
    *free = {key, &name};
    return true;
  }

  const Name* bisect(const Id& id) const {
    const auto found = std::lower_bound(ids_.begin(), ids_.end(), id);
    return found != ids_.end() && !(id < *found) ? &names_[static_cast<std::size_t>(found - ids_.begin())] : nullptr;
  }

  /** Multiplying by the golden ratio spreads ids that follow each other. */
  std::size_t firstSlot(std::uint64_t key) const {
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> shift_);
  }

  std::vector<Id> ids_;
  std::vector<Name> names_;
  std::vector<Slot> slots_;  ///< those after the last place take what finds no room before them
  unsigned shift_ = 63;
  bool isHashed_ = true;
};

}  // namespace tarn::VOD

#endif
