// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/keyboard.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace tarn::command {
namespace {

/** A process in the background that changed the terminal would be stopped. */
bool isInForeground() {
  return tcgetpgrp(STDIN_FILENO) == getpgrp();
}

}  // namespace

Keyboard::Keyboard() {
  termios settings{};
  if (tcgetattr(STDIN_FILENO, &settings) != 0 || !isInForeground()) {
    return;
  }
  original_ = settings;
  settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

Keyboard::~Keyboard() {
  if (original_ && isInForeground()) {
    tcsetattr(STDIN_FILENO, TCSANOW, &*original_);
  }
}

bool Keyboard::wasPressed(char key) {
  pollfd request{STDIN_FILENO, POLLIN, 0};
  if (!original_ || !isInForeground() || poll(&request, 1, 0) != 1 || (request.revents & POLLIN) == 0) {
    return false;
  }
  std::array<char, 64> keys{};
  const ssize_t count = read(STDIN_FILENO, keys.data(), keys.size());
  return count > 0 && std::find(keys.begin(), keys.begin() + count, key) != keys.begin() + count;
}

}  // namespace tarn::command
