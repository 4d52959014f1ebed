// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/wake_up.h"

#include "base/errors.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tarn::command {

WakeUp::WakeUp() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (descriptor_ < 0) {
    throw Failure("no event descriptor: " + std::generic_category().message(errno));
  }
}

WakeUp::~WakeUp() {
  ::close(descriptor_);
}

// Both calls fail only when there is nothing to do: the counter is at its limit, or is 0.

void WakeUp::signal() const {
  static_cast<void>(::eventfd_write(descriptor_, 1));
}

void WakeUp::clear() const {
  eventfd_t count = 0;
  static_cast<void>(::eventfd_read(descriptor_, &count));
}

}  // namespace tarn::command
