// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_COMMAND_HTTP_SITE_H
#define TARNVOD_COMMAND_HTTP_SITE_H

#include "base/errors.h"
#include "http/http_message.h"

#include <functional>
#include <map>
#include <string>

namespace tarn::command {

/** What was requested cannot be had at present. */
class Unavailable : public Failure {
  using Failure::Failure;
};

/**
 * Which request gets which answer.
 *
 * Only what pages of this server and programs use is answered: GET over HTTP/1.1 without ranges and bodies, addressed to
 * this server by a host name or address of its own, and not sent by a page of another site.
 */
class HttpSite {
 public:
  using Parameters = std::map<std::string, std::string>;
  /** @throw UsageError when the parameters are invalid; Unavailable */
  using Content = std::function<SharedText(const Parameters&)>;

  /** @param address, port  where the server listens */
  HttpSite(std::string address, int port);

  /** Answers a path with the same JSON text each time. */
  void add(const std::string& path, SharedText json);
  /** Answers a path with a file of this media type. */
  void add(const std::string& path, const std::string& type, SharedText file);
  /** Answers a path with JSON text that is made for each request. */
  void add(const std::string& path, Content content);
  /** The same with another media type. */
  void add(const std::string& path, const std::string& type, Content content);
  /** Answers a path with events. */
  void addEvents(const std::string& path);

  /** Depends on nothing but the request and what was added. Never throws but for lack of memory. */
  HttpAnswer answerTo(const HttpRequest& request) const;

  const std::string& url() const { return url_; }

 private:
  using Respond = std::function<HttpAnswer(const Parameters&)>;

  HttpAnswer answerAt(const HttpRequest& request) const;

  const std::string address_;
  const int port_;
  const std::string url_;
  std::map<std::string, Respond> responds_;
};

}  // namespace tarn::command

#endif
