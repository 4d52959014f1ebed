// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <tarnvod/tarnvod.h>

int main() {
  return tarn::VOD::Classifications().isEmpty() ? 0 : 1;
}
