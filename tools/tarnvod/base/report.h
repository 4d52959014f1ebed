// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_REPORT_H
#define TARNVOD_COMMAND_REPORT_H

#include <string>
#include <vector>

/** Reports for people: on each line a label in its column, and a value. */
namespace tarn::command {

/** One label with its value. */
std::string labelled(const std::string& label, const std::string& value);

/** A label with several values, one below the other; "none" if there are none. */
std::string labelledList(const std::string& label, const std::vector<std::string>& values);

/** A name in a column of its own in front of a value; a longer name shifts the value. */
std::string nameColumn(const std::string& name);

/** Prints a report on standard output. On a terminal, lines that are too long for it are broken at spaces. */
void printReport(const std::string& report);

}  // namespace tarn::command

#endif
