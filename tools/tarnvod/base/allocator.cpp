// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/allocator.h"

#include <malloc.h>

namespace tarn::command {

void allocateFromOneArena() {
#ifdef M_ARENA_MAX
  static_cast<void>(::mallopt(M_ARENA_MAX, 1));  // where it is not possible, more memory is taken
#endif
}

}  // namespace tarn::command
