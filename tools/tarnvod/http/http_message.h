// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_HTTP_MESSAGE_H
#define TARNVOD_COMMAND_HTTP_MESSAGE_H

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tarn::command {

/** The parts of a request over HTTP, as a browser sent them. */
struct HttpRequest {
  std::string method;
  std::string path;
  std::string version;
  std::vector<std::pair<std::string, std::string>> headers;
  std::map<std::string, std::string> parameters;
};

/** A text that several connections may be sending. */
using SharedText = std::shared_ptr<const std::string>;

/** An answer over HTTP. */
struct HttpAnswer {
  int status = 200;
  std::string type;
  SharedText body;
  /** Whether the body was made for this request only, so that its memory counts for each answer. */
  bool isMadeForRequest = false;
  /** Whether events follow instead of a body. */
  bool isEventStream = false;
};

/** An answer with a one-line reason in plain text. */
inline HttpAnswer refusal(int status, const std::string& reason) {
  return {status, "text/plain; charset=utf-8", std::make_shared<const std::string>(reason + '\n')};
}

}  // namespace tarn::command

#endif
