// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detector-information/class_ids_to_names.h"
#include "support/printing.h"

#include <tarnvod/detector_information.h>

#include <algorithm>

namespace tarn::VOD {

void Classifications::insertClass(int id, const std::string& name) {
  idsByName_.emplace(name, id);
}

std::set<std::string> Classifications::getClassNames() const {
  std::set<std::string> names;
  for (const auto& [name, id] : idsByName_) {
    names.insert(names.end(), name);
  }
  return names;
}

std::map<int, std::string> mapClassIdsToNames(const Classifications& classifications,
                                              const std::set<std::string>& names) {
  std::map<int, std::string> namesById;
  for (const auto& name : names) {
    const auto found = classifications.idsByName_.find(name);
    if (found != classifications.idsByName_.end()) {
      namesById[found->second] = name;
    }
  }
  return namesById;
}

std::map<int, std::string> Classifications::getClassIdsToNamesMap(const std::set<std::string>& names) const noexcept {
  return mapClassIdsToNames(*this, names);
}

bool Classifications::areAllClassesSupported(const std::set<std::string>& names) const {
  return std::all_of(names.begin(), names.end(), [this](const auto& name) { return idsByName_.count(name) != 0; });
}

bool Classifications::isEmpty() const {
  return idsByName_.empty();
}

bool operator==(const Classifications& left, const Classifications& right) {
  return left.idsByName_ == right.idsByName_;
}

std::ostream& operator<<(std::ostream& out, const Classifications& classifications) {
  return printing::Record(out, "Classifications").member("idsByName", classifications.idsByName_).end();
}

}  // namespace tarn::VOD
