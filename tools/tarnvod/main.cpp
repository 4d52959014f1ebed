// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "command_line.h"

int main(int argc, char** argv) {
  return tarn::command::run(argc, argv);
}
