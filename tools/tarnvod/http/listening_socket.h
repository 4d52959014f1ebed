// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_LISTENING_SOCKET_H
#define TARNVOD_COMMAND_LISTENING_SOCKET_H

#include <string>

namespace tarn::command {

/** A TCP socket at which connections arrive. */
class ListeningSocket {
 public:
  /**
   * @param address  a numeric address, or a name that the system resolves
   * @param port     0 for any that is free
   * @throw Failure  when the address is not of this machine, or the port is taken
   */
  ListeningSocket(const std::string& address, int port);
  ~ListeningSocket();
  ListeningSocket(const ListeningSocket&) = delete;
  ListeningSocket& operator=(const ListeningSocket&) = delete;

  int port() const { return port_; }

  /** The descriptor, which the caller owns from now on. */
  int release();

 private:
  int descriptor_ = -1;
  int port_ = 0;
};

}  // namespace tarn::command

#endif
