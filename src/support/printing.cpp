// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "support/printing.h"

namespace tarn::VOD::printing {
namespace {

bool isControlCharacter(unsigned char byte) {
  return byte < 0x20 || byte == 0x7F;
}

void printEscaped(std::ostream& out, unsigned char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  out << "\\x" << digits[byte >> 4U] << digits[byte & 0xFU];
}

}  // namespace

std::ostream& printEnumerator(std::ostream& out, int number, std::string_view name) {
  return name.empty() ? out << number : out << name;
}

void print(std::ostream& out, const std::string& text) {
  out << '"';
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (isControlCharacter(byte)) {
      printEscaped(out, byte);
    } else if (character == '"' || character == '\\') {
      out << '\\' << character;
    } else {
      out << character;
    }
  }
  out << '"';
}

void printMemberName(std::ostream& out, const char* separator, const char* name) {
  out << separator << name << ": ";
}

}  // namespace tarn::VOD::printing
