// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_SENDER_FIGURES_H
#define TARNVOD_COMMAND_SENDER_FIGURES_H

#include <cstdint>

namespace tarn::command {

/** What has been sent to a broker, since the start. */
struct SenderFigures {
  bool isConnected = false;
  std::uint64_t connections = 0;  ///< how often the broker was reached
  std::uint64_t sent = 0;         ///< entries, those that were sent again included
  std::uint64_t settled = 0;      ///< entries that need not be kept any more
};

}  // namespace tarn::command

#endif
