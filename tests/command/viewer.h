// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_TESTS_COMMAND_VIEWER_H
#define TARNVOD_TESTS_COMMAND_VIEWER_H

#include "process.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace test {

/** An answer over HTTP. */
struct Answer {
  int status = 0;
  std::multimap<std::string, std::string> headers;
  std::string body;

  std::string header(const std::string& name) const;
};

/** A server-sent event. */
struct Event {
  std::string name;
  std::string data;  ///< as it came

  nlohmann::json json() const { return nlohmann::json::parse(data); }
};

/** `tarnvod view` at a free port, beside a service that can be taken down; and a browser's part. */
class Viewer {
 public:
  Viewer(std::vector<std::string> arguments, const Environment& environment);

  int port() const { return port_; }
  Answer get(const std::string& path, const std::multimap<std::string, std::string>& headers = {}) const;

  /** Receives events until one is the last that was waited for. Fails the test after a long time. */
  void receive(const std::function<bool(const Event&)>& isLast) const;

  Process process;

 private:
  int port_ = 0;
};

/** A connection on which events were asked for and nothing is read. */
class SilentBrowser {
 public:
  explicit SilentBrowser(int port);
  ~SilentBrowser();
  SilentBrowser(const SilentBrowser&) = delete;
  SilentBrowser& operator=(const SilentBrowser&) = delete;

  /** Reads the first line of the answer. */
  std::string statusLine() const;

 private:
  int socket_ = -1;
};

}  // namespace test

#endif
