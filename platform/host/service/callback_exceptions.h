// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef VOD_HOST_SERVICE_CALLBACK_EXCEPTIONS_H
#define VOD_HOST_SERVICE_CALLBACK_EXCEPTIONS_H

#include <atomic>

namespace vod::host {

/** What becomes of exceptions that leave a callback. */
struct CallbackExceptions {
  std::atomic<bool> areCaught{false};
  std::atomic<int> caught{0};
};

inline CallbackExceptions callbackExceptions;

/** Runs a callback as C code would: what it throws ends the process here, unless exceptions are to be caught. */
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
