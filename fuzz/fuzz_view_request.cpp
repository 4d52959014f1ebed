// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

/**
 * @file
 * The viewer's answer to any request. Lines of the input are the parts of the request: method, path, version, then
 * parameters and headers, each as `name=value` or `name: value`. Whatever they say, the answer is one of those that
 * the site has, or a refusal of a known kind whose text holds nothing of the request.
 */

#include "base/errors.h"
#include "fuzz_input.h"
#include "http/http_site.h"
#include "viewer/viewer_page.h"

#include <strings.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <sstream>
#include <string>

namespace tarn::fuzz {
namespace {

using command::HttpAnswer;
using command::HttpRequest;
using command::HttpSite;
using command::SharedText;

constexpr const char* host = "127.0.0.1:8090";

const HttpSite& site() {
  static const HttpSite instance = [] {
    HttpSite made("127.0.0.1", 8090);
    addPage(made);
    made.add("/setup.json", std::make_shared<const std::string>("{}"));
    made.add("/made.json", [](const HttpSite::Parameters& parameters) -> SharedText {
      if (parameters.count("n") == 0) {
        throw command::UsageError("n must be a number");
      }
      return std::make_shared<const std::string>("made");
    });
    made.addEvents("/events");
    return made;
  }();
  return instance;
}

void addParameterOrHeader(const std::string& line, HttpRequest& request) {
  const std::size_t colon = line.find(": ");
  const std::size_t equals = line.find('=');
  if (colon != std::string::npos) {
    request.headers.emplace_back(line.substr(0, colon), line.substr(colon + 2));
  } else if (equals != std::string::npos) {
    request.parameters[line.substr(0, equals)] = line.substr(equals + 1);
  }
}

HttpRequest requestOf(const std::string& input) {
  HttpRequest request;
  std::istringstream lines(input);
  std::getline(lines, request.method);
  std::getline(lines, request.path);
  std::getline(lines, request.version);
  for (std::string line; std::getline(lines, line);) {
    addParameterOrHeader(line, request);
  }
  return request;
}

std::size_t countOf(const HttpRequest& request, const char* name) {
  return static_cast<std::size_t>(
      std::count_if(request.headers.begin(), request.headers.end(),
                    [&](const auto& header) { return strcasecmp(header.first.c_str(), name) == 0; }));
}

/** What every request that gets more than a refusal must be, checked without the site's own functions. */
void requireToBeOfThePage(const HttpRequest& request) {
  require(request.method == "GET" && request.version == "HTTP/1.1", "another method or version was answered");
  require(countOf(request, "Host") == 1 && countOf(request, "Range") == 0 && countOf(request, "Transfer-Encoding") == 0,
          "headers of no page were answered");
  for (const auto& [name, value] : request.headers) {
    require(strcasecmp(name.c_str(), "Host") != 0 || value == host || value == "localhost:8090",
            "another host was answered");
    require(strcasecmp(name.c_str(), "Content-Length") != 0 || value == "0", "a body was accepted");
  }
}

}  // namespace
}  // namespace tarn::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarn::fuzz;
  static const std::set<int> refusals{400, 403, 404, 405, 413, 416, 505};
  const HttpRequest request = requestOf(Input(data, size).rest());

  const HttpAnswer answer = site().answerTo(request);

  require(answer.body != nullptr, "there is no body");
  if (answer.status == 200) {
    requireToBeOfThePage(request);
    return 0;
  }
  static std::set<std::string> texts;
  texts.insert(*answer.body);
  require(refusals.count(answer.status) == 1, "an unknown refusal");
  // A refusal that repeated the request would have as many texts.
  require(texts.size() <= refusals.size(), "a refusal repeats the request");
  return 0;
}
