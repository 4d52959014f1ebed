// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_MESSAGE_BATCH_H
#define TARNVOD_COMMAND_MESSAGE_BATCH_H

#include "base/clock.h"
#include "fleet/broker.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace tarn::command {

/** Messages that are stored together: it bounds the memory, and how long a frame waits for others. Not thread-safe. */
class MessageBatch {
 public:
  struct Message {
    std::string topic;
    std::string payload;
  };

  /** How long the first message waits for others. */
  static constexpr std::chrono::milliseconds longestWait{100};

  void add(const BrokerMessage& message);
  void clear();

  const std::vector<Message>& messages() const { return messages_; }
  bool isEmpty() const { return messages_.empty(); }
  /** Whether it has waited long enough, or is large enough, to be stored. */
  bool isDue() const;

 private:
  std::vector<Message> messages_;
  std::size_t bytes_ = 0;
  Clock::time_point began_;  ///< when the first one came
};

}  // namespace tarn::command

#endif
