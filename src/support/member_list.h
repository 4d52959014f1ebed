// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_SUPPORT_MEMBER_LIST_H
#define TARNVOD_SUPPORT_MEMBER_LIST_H

#include <tuple>

namespace tarn::VOD {

/** A record's member and its name. */
template <typename Record, typename Value>
struct Member {
  const char* name;
  Value Record::*pointer;
};

template <typename Record, typename Value>
Member(const char* name, Value Record::*pointer) -> Member<Record, Value>;

/**
 * A record's `name` and its `members`, a tuple of `Member` in order of declaration. Each record has a specialization,
 * the one place that names the members for whoever needs all of them.
 */
template <typename Record>
struct MemberList;

/** Calls `visit(name, value)` for each member of a record, in order of declaration. */
template <typename Record, typename Visit>
void visitMembers(const Record& record, const Visit& visit) {
  std::apply([&](const auto&... member) { (visit(member.name, record.*member.pointer), ...); },
             MemberList<Record>::members);
}

/** Whether two records are equal in each member. */
template <typename Record>
bool equalMembers(const Record& left, const Record& right) {
  return std::apply([&](const auto&... member) { return ((left.*member.pointer == right.*member.pointer) && ...); },
                    MemberList<Record>::members);
}

}  // namespace tarn::VOD

#endif
