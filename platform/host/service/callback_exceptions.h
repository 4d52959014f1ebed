// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_SERVICE_CALLBACK_EXCEPTIONS_H
#define VOD_HOST_SERVICE_CALLBACK_EXCEPTIONS_H

#include <atomic>

namespace vod::host {

/** How exceptions that leave a callback are handled. */
struct CallbackExceptions {
  std::atomic<bool> areCaught{false};
  std::atomic<int> caught{0};
};

inline CallbackExceptions callbackExceptions;

/** Runs a callback as C code would: an exception ends the process, unless exceptions are caught. */
template <typename Callback>
void runCallback(Callback callback) noexcept {
  if (!callbackExceptions.areCaught) {
    callback();
    return;
  }
  try {
    callback();
  } catch (...) {
    ++callbackExceptions.caught;
  }
}

}  // namespace vod::host

#endif
