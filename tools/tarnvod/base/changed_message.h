// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CHANGED_MESSAGE_H
#define TARNVOD_COMMAND_CHANGED_MESSAGE_H

#include <string>

namespace tarn::command {

/** Prints messages for the user, but none twice in a row. Its functions are for one thread. */
class ChangedMessage {
 public:
  /** Prints the message behind the command's name, unless it is the one that was printed last. */
  void print(const std::string& message);

  /** The next message is printed in any case. */
  void forget() { printed_.clear(); }

 private:
  std::string printed_;
};

}  // namespace tarn::command

#endif
