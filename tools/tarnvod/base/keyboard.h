// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_KEYBOARD_H
#define TARNVOD_COMMAND_KEYBOARD_H

#include <termios.h>

#include <optional>

namespace tarn::command {

/**
 * Single keys of the terminal on standard input, without echo and without waiting for a line. Ctrl-C stays a signal.
 * There are no keys if standard input is not a terminal, or the command runs in the background. Restores the terminal's
 * settings when it is destroyed.
 */
class Keyboard {
 public:
  Keyboard();
  ~Keyboard();
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;

  /** Whether the key has been pressed since the last call. Never waits; other keys are discarded. */
  bool wasPressed(char key);

 private:
  std::optional<termios> original_;
};

}  // namespace tarn::command

#endif
