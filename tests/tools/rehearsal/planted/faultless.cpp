// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// Without any mistake.

#include "planted.h"

int main() {
  const planted::StopSignal stop;
  const tarn::VOD::Camera camera(1, {"human"}, [](auto) {});
  stop.wait();
}
