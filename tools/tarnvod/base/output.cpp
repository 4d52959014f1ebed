// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/output.h"

#include "base/errors.h"
#include "base/stop_signal.h"
#include "base/text.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tarn::command {
namespace {

/** A terminal may have been switched to non-blocking by another process that shares it. */
void waitUntilWritable(int descriptor) {
  pollfd request{descriptor, POLLOUT, 0};
  poll(&request, 1, 100);
}

/** Handles a write that failed; returns when it is to be tried again. */
void handleFailedWrite(int descriptor, int error) {
  if (error == EPIPE || ((error == EINTR || error == EAGAIN) && stopRequested())) {
    throw OutputClosed{};
  }
  if (error == EAGAIN) {
    waitUntilWritable(descriptor);
  } else if (error != EINTR) {
    throw Failure(std::string("standard output: ") + std::generic_category().message(error));
  }
}

}  // namespace

// NOLINTNEXTLINE(readability-make-member-function-const): what it writes to is not the same afterwards
void Output::write(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor_, text.data(), text.size());
    if (written < 0) {
      handleFailedWrite(descriptor_, errno);
    } else {
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }
}

void Output::writeText(std::string_view text) {
  write(localeIsUtf8() ? std::string(text) : toAscii(text));
}

bool Output::isTerminal() const {
  return isatty(descriptor_) != 0;
}

Output& standardOutput() {
  static Output output(STDOUT_FILENO);
  return output;
}

void printMessage(const std::string& line) {
  try {
    Output(STDERR_FILENO).writeText(line + '\n');
  } catch (const OutputClosed&) {
  } catch (const Failure&) {
  }
}

}  // namespace tarn::command
