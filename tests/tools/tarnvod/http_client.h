// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_TOOLS_TARNVOD_HTTP_CLIENT_H
#define TARNVOD_TESTS_TOOLS_TARNVOD_HTTP_CLIENT_H

#include <chrono>
#include <map>
#include <string>
#include <string_view>

/** A browser's side of HTTP, down to the bytes, so that tests can also send what no browser would. */
namespace test {

/** An answer over HTTP. */
struct Answer {
  int status = 0;
  std::multimap<std::string, std::string> headers;
  std::string body;  ///< as sent: in chunks where it is chunked

  std::string header(const std::string& name) const;
};

/** A connection to 127.0.0.1. */
class Connection {
 public:
  /** @param receiveBuffer  in bytes; 0 leaves the system's */
  explicit Connection(int port, int receiveBuffer = 0);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  Connection(Connection&& other) noexcept;

  /** Sends what the other side takes; false when it has closed the connection or does not read for a long time. */
  bool send(std::string_view bytes);

  /** Sends nothing more; the other side reads an end. */
  void endSending();

  /** Adds what comes next, at least a byte; false at the end. Fails the test after a long time. */
  bool receive(std::string& bytes);
  /** All that comes until the other side closes. */
  std::string receiveAll();
  /** Up to the end of the first line, which is left out. */
  std::string receiveLine();

 private:
  int socket_ = -1;
};

/** A request for a path as the page sends it. Headers that are given replace the usual ones. */
std::string requestFor(const std::string& path, int port, const std::multimap<std::string, std::string>& headers = {});

Answer parseAnswer(const std::string& text);

/** Removes the whole chunks at the front of a chunked body; returns what is in them. */
std::string takeChunks(std::string& body);

/** Sends a request's bytes over a connection of its own. */
Answer answerTo(int port, const std::string& request);

}  // namespace test

#endif
