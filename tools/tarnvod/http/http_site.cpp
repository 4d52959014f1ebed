// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/http_site.h"

#include "base/errors.h"
#include "http/http_host.h"

#include <strings.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <string_view>
#include <utility>

namespace tarn::command {
namespace {

constexpr const char* json = "application/json";

/** The header's value; nothing when it is absent or given more than once. */
std::optional<std::string> onlyHeader(const HttpRequest& request, const char* name) {
  std::optional<std::string> value;
  for (const auto& [key, text] : request.headers) {
    if (strcasecmp(key.c_str(), name) == 0) {
      if (value) {
        return std::nullopt;
      }
      value = text;
    }
  }
  return value;
}

bool hasHeader(const HttpRequest& request, const char* name) {
  return std::any_of(request.headers.begin(), request.headers.end(),
                     [&](const auto& header) { return strcasecmp(header.first.c_str(), name) == 0; });
}

bool hasBody(const HttpRequest& request) {
  return hasHeader(request, "Transfer-Encoding") ||
         (hasHeader(request, "Content-Length") && onlyHeader(request, "Content-Length") != "0");
}

/** Links to the page from other sites are followed; their pages may request nothing else. */
bool isFromAnotherSite(const HttpRequest& request) {
  if (request.path == "/" || !hasHeader(request, "Sec-Fetch-Site")) {
    return false;
  }
  const auto site = onlyHeader(request, "Sec-Fetch-Site");
  return site != "same-origin" && site != "none";
}

}  // namespace

HttpSite::HttpSite(std::string address, int port)
    : address_(std::move(address)), port_(port), url_("http://" + hostAndPort(address_, port_) + '/') {}

void HttpSite::add(const std::string& path, SharedText text) {
  add(path, json, std::move(text));
}

void HttpSite::add(const std::string& path, const std::string& type, SharedText file) {
  const HttpAnswer answer{200, type, std::move(file)};
  responds_[path] = [answer](const Parameters&) { return answer; };
}

void HttpSite::add(const std::string& path, Content content) {
  add(path, json, std::move(content));
}

void HttpSite::add(const std::string& path, const std::string& type, Content content) {
  responds_[path] = [type, content = std::move(content)](const Parameters& parameters) {
    return HttpAnswer{200, type, content(parameters), true};
  };
}

void HttpSite::addEvents(const std::string& path) {
  responds_[path] = [](const Parameters&) {
    return HttpAnswer{200, "text/event-stream", std::make_shared<const std::string>(), false, true};
  };
}

HttpAnswer HttpSite::answerTo(const HttpRequest& request) const {
  const auto host = onlyHeader(request, "Host");
  if (!host || !isHostOf(*host, address_, port_) || isFromAnotherSite(request)) {
    return refusal(403, "This server is at " + url_ + " and answers no requests for other hosts.");
  }
  if (request.version != "HTTP/1.1") {
    return refusal(505, "This server answers HTTP/1.1 only.");
  }
  if (request.method != "GET") {
    return refusal(405, "This server answers the method GET only.");
  }
  if (hasBody(request)) {
    return refusal(413, "This server accepts no request bodies.");
  }
  if (hasHeader(request, "Range")) {
    return refusal(416, "This server sends no ranges.");
  }
  return answerAt(request);
}

HttpAnswer HttpSite::answerAt(const HttpRequest& request) const {
  const auto found = responds_.find(request.path);
  if (found == responds_.end()) {
    return refusal(404, "There is nothing at this path.");
  }
  try {
    return found->second(request.parameters);
  } catch (const UsageError& error) {
    return refusal(400, error.what());
  } catch (const Unavailable& error) {
    return refusal(503, error.what());
  } catch (const std::exception& error) {
    return refusal(500, error.what());
  }
}

}  // namespace tarn::command
