// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_SUPPORT_PRINTING_H
#define TARNVOD_SUPPORT_PRINTING_H

#include "support/member_list.h"

#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/** How the library's values become text: one line each, whatever bytes the names in them hold. */
namespace tarn::VOD::printing {

/** Prints the name, or the number if the name is empty. */
std::ostream& printEnumerator(std::ostream& out, int number, std::string_view name);

/** Prints the text in quotation marks, with control characters escaped so that it stays on its line. */
void print(std::ostream& out, const std::string& text);

template <typename Value>
void print(std::ostream& out, const Value& value) {
  out << value;
}

template <typename Value>
void print(std::ostream& out, const std::optional<Value>& value) {
  if (value) {
    print(out, *value);
  } else {
    out << "none";
  }
}

template <typename List>
void printList(std::ostream& out, const List& list) {
  const char* separator = "";
  out << '[';
  for (const auto& element : list) {
    out << separator;
    print(out, element);
    separator = ", ";
  }
  out << ']';
}

template <typename Value>
void print(std::ostream& out, const std::vector<Value>& list) {
  printList(out, list);
}

template <typename Value>
void print(std::ostream& out, const std::set<Value>& list) {
  printList(out, list);
}

template <typename Value>
void print(std::ostream& out, const std::map<std::string, Value>& map) {
  const char* separator = "";
  out << '{';
  for (const auto& [key, value] : map) {
    out << separator;
    print(out, key);
    out << ": ";
    print(out, value);
    separator = ", ";
  }
  out << '}';
}

/** Prints what stands before a member's value: what separates it from the member before it, and its name. */
void printMemberName(std::ostream& out, const char* separator, const char* name);

/** Prints a record that has a list of its members: `Name{member: value, other: value}`. */
template <typename Record>
std::ostream& printRecord(std::ostream& out, const Record& record) {
  const char* separator = "";
  out << MemberList<Record>::name << '{';
  visitMembers(record, [&](const char* name, const auto& value) {
    printMemberName(out, separator, name);
    print(out, value);
    separator = ", ";
  });
  return out << '}';
}

}  // namespace tarn::VOD::printing

#endif
