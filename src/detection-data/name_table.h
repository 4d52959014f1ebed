// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTION_DATA_NAME_TABLE_H
#define TARNVOD_DETECTION_DATA_NAME_TABLE_H

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarn::VOD {

/**
 * Names by id, in ascending order of the ids: made once, then only read. The ids lie side by side, apart from the
 * names, so that a look-up stays within a cache line or two.
 */
template <typename Id>
class NameTable {
 public:
  NameTable() = default;

  explicit NameTable(std::map<Id, std::string>&& names) {
    ids_.reserve(names.size());
    names_.reserve(names.size());
    for (auto& [id, name] : names) {
      ids_.push_back(id);
      names_.push_back(std::move(name));
    }
  }

  /** The name of an id, or null; valid while the table lives. */
  const std::string* find(const Id& id) const {
    const auto position = std::lower_bound(ids_.begin(), ids_.end(), id);
    if (position == ids_.end() || id < *position) {
      return nullptr;
    }
    return &names_[static_cast<std::size_t>(position - ids_.begin())];
  }

  std::size_t size() const { return ids_.size(); }
  const Id& id(std::size_t index) const { return ids_[index]; }
  const std::string& name(std::size_t index) const { return names_[index]; }

 private:
  std::vector<Id> ids_;
  std::vector<std::string> names_;
};

}  // namespace tarn::VOD

#endif
