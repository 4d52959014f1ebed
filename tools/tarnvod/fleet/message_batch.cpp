// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet/message_batch.h"

namespace tarn::command {
namespace {

constexpr std::size_t most = 500;
constexpr std::size_t mostBytes = 8U << 20U;

}  // namespace

void MessageBatch::add(const BrokerMessage& message) {
  if (messages_.empty()) {
    began_ = Clock::now();
  }
  messages_.push_back({std::string(message.topic), std::string(message.payload)});
  bytes_ += message.payload.size();
}

void MessageBatch::clear() {
  *this = {};
}

bool MessageBatch::isDue() const {
  return !messages_.empty() &&
         (messages_.size() >= most || bytes_ >= mostBytes || Clock::now() - began_ >= longestWait);
}

}  // namespace tarn::command
