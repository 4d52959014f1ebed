// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_FACTS_H
#define TARNVOD_COMMAND_FACTS_H

#include <string>
#include <vector>

/** Reports for people: a label in its column, a value beside it. */
namespace tarn::command {

/** One fact on one line. */
std::string fact(const std::string& label, const std::string& value);

/** A fact with several values, one below the other; "none" without any. */
std::string facts(const std::string& label, const std::vector<std::string>& values);

/** A name in a column among the values; a long one pushes the rest aside. */
std::string columnOf(const std::string& name);

}  // namespace tarn::command

#endif
