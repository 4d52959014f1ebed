// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "detector-information/class_ids_to_names.h"
#include "detector-information/model_members.h"
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
  const std::map<std::string, int>& idsByName = classifications.*MemberList<Classifications>::idsByName;
  std::map<int, std::string> namesById;
  for (const auto& name : names) {
    const auto found = idsByName.find(name);
    if (found != idsByName.end()) {
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
  return equalMembers(left, right);
}

std::ostream& operator<<(std::ostream& out, const Classifications& classifications) {
  return printing::printRecord(out, classifications);
}

}  // namespace tarn::VOD
