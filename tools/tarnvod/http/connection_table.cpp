// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/connection_table.h"

#include <algorithm>
#include <utility>

namespace tarn::command {

ConnectionTable::ConnectionTable(Limits limits, Close close) : limits_(limits), close_(std::move(close)) {}

ConnectionTable::Id ConnectionTable::add(int socket, const std::string& address) {
  if (open_ >= limits_.connections) {
    closeOldestOfBusiestAddress();
  }
  const Id id = nextId_++;
  connections_[id] = {socket, address};
  ++open_;
  return id;
}

void ConnectionTable::remove(Id id) {
  const auto found = connections_.find(id);
  if (found == connections_.end()) {
    return;
  }
  answerBytes_ -= found->second.answerBytes;
  open_ -= found->second.isClosing ? 0U : 1U;
  connections_.erase(found);
}

bool ConnectionTable::addAnswer(Id id, std::size_t bytes) {
  // A single answer is always sent, whatever its size.
  if (answerBytes_ != 0 && answerBytes_ + bytes > limits_.answerBytes) {
    closeOldestAnswer();
    return false;
  }
  connections_.at(id).answerBytes += bytes;
  answerBytes_ += bytes;
  return true;
}

void ConnectionTable::markStream(Id id) {
  connections_.at(id).isStream = true;
}

void ConnectionTable::closeOldestOfBusiestAddress() {
  std::map<std::string, std::size_t> counts;
  std::size_t most = 0;
  for (const auto& [id, connection] : connections_) {
    if (mayBeClosed(connection)) {
      most = std::max(most, ++counts[connection.address]);
    }
  }
  const auto oldest = std::find_if(connections_.begin(), connections_.end(), [&](const auto& each) {
    return mayBeClosed(each.second) && counts[each.second.address] == most;
  });
  if (oldest != connections_.end()) {
    close(oldest->second);
  }
}

void ConnectionTable::closeOldestAnswer() {
  const auto oldest = std::find_if(connections_.begin(), connections_.end(), [](const auto& each) {
    return mayBeClosed(each.second) && each.second.answerBytes != 0;
  });
  if (oldest != connections_.end()) {
    close(oldest->second);
  }
}

void ConnectionTable::close(Connection& connection) {
  connection.isClosing = true;
  --open_;
  close_(connection.socket);
}

}  // namespace tarn::command
