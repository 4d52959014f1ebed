// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_SUPPORT_PRINTED_H
#define TARNVOD_TESTS_SUPPORT_PRINTED_H

#include <sstream>
#include <string>

namespace tarn::test {

/** What a value prints to a stream. */
template <typename Value>
std::string printed(const Value& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace tarn::test

#endif
