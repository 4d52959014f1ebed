// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/changed_message.h"

#include "base/output.h"

namespace tarn::command {

void ChangedMessage::print(const std::string& message) {
  if (message != printed_) {
    printed_ = message;
    printMessage("tarnvod: " + message);
  }
}

}  // namespace tarn::command
