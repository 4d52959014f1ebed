// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_CONNECTION_TABLE_H
#define TARNVOD_COMMAND_CONNECTION_TABLE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace tarn::command {

/**
 * The connections of a server, bounded so that a client who opens many only disturbs itself: where there is no room for
 * a new one, the oldest connection of the address that holds most of them is closed. A browser that reads its answers
 * at once is never the oldest for long. Event streams are bounded elsewhere and are never closed for others.
 *
 * Not thread-safe: belongs to the server's thread.
 */
class ConnectionTable {
 public:
  /** Fits into a pointer. */
  using Id = std::uintptr_t;
  /** Closes a connection; the table hears of it by `remove`, now or later. */
  using Close = std::function<void(int socket)>;

  struct Limits {
    std::size_t connections;
    std::size_t answerBytes;  ///< of all answers that are being sent
  };

  ConnectionTable(Limits limits, Close close);

  /** Takes note of a new connection and makes room for it. */
  Id add(int socket, const std::string& address);
  void remove(Id id);

  /** Counts an answer that the connection is going to send; false, and the oldest answer is closed, without room. */
  bool addAnswer(Id id, std::size_t bytes);
  /** This connection streams events from now on. */
  void markStream(Id id);

 private:
  struct Connection {
    int socket = -1;
    std::string address;
    std::size_t answerBytes = 0;
    bool isStream = false;
    bool isClosing = false;
  };

  /** Ids grow, so the first is the oldest. */
  using Connections = std::map<Id, Connection>;

  void closeOldestOfBusiestAddress();
  void closeOldestAnswer();
  void close(Connection& connection);
  static bool mayBeClosed(const Connection& connection) { return !connection.isStream && !connection.isClosing; }

  const Limits limits_;
  const Close close_;
  Connections connections_;
  Id nextId_ = 1;
  std::size_t open_ = 0;         ///< connections that are not closing
  std::size_t answerBytes_ = 0;  ///< of all connections
};

}  // namespace tarn::command

#endif
