// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/command.h"

int main(int argc, char** argv) {
  return tarn::command::run(argc, argv);
}
