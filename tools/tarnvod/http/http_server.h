// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_HTTP_SERVER_H
#define TARNVOD_COMMAND_HTTP_SERVER_H

#include "http/event_hub.h"
#include "http/http_site.h"

#include <memory>
#include <string>

namespace tarn::command {

/**
 * Serves a site over HTTP, on one thread of its own.
 *
 * Holds out against hostile clients: the memory of a connection, the connections, and the answers that are being sent
 * are bounded, and idle connections end after a while. Each connection gets one answer.
 */
class HttpServer {
 public:
  /**
   * Binds the port; requests wait until `start`.
   *
   * @param port  0 for any that is free
   * @throw Failure  when the address or port cannot be used
   */
  HttpServer(const std::string& address, int port);
  /** Closes the hub and all connections, whatever their browsers do. */
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /** What the server answers; to be completed before `start`. Its contents are made on the server's thread. */
  HttpSite& site();

  /** Streams the hub's events at "/events". Call before `start`. */
  void stream(EventHub& hub);

  /** @throw Failure  when the system has no resources for it */
  void start();

 private:
  class Implementation;

  const std::unique_ptr<Implementation> implementation_;
};

}  // namespace tarn::command

#endif
