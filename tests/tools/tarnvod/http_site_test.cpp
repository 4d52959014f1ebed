// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/http_site.h"

#include "base/errors.h"
#include "viewer/viewer_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>
#include <utility>

using tarn::command::Failure;
using tarn::command::HttpAnswer;
using tarn::command::HttpRequest;
using tarn::command::HttpSite;
using tarn::command::SharedText;
using tarn::command::UsageError;
using testing::HasSubstr;

namespace {

HttpRequest requestFor(const std::string& path) {
  return {"GET", path, "HTTP/1.1", {{"Host", "127.0.0.1:8090"}}, {}};
}

/** A site with the page, a fixed text, and a text that is made of the parameter `n`. */
class ASite : public testing::Test {
 protected:
  ASite() {
    addPage(site);
    site.add("/setup.json", std::make_shared<const std::string>("{}"));
    site.add("/made.json", [](const HttpSite::Parameters& parameters) {
      if (parameters.count("n") == 0) {
        throw UsageError("n must be a number");
      }
      if (parameters.at("n") == "lost") {
        throw Failure("it is lost");
      }
      return std::make_shared<const std::string>(parameters.at("n"));
    });
  }

  int statusOf(const HttpRequest& request) const { return site.answerTo(request).status; }

  HttpSite site{"127.0.0.1", 8090};
};

TEST_F(ASite, AnswersThePageWithItsOwnFiles) {
  EXPECT_EQ(site.answerTo(requestFor("/")).type, "text/html; charset=utf-8");
  EXPECT_EQ(site.answerTo(requestFor("/main.js")).type, "text/javascript; charset=utf-8");
  EXPECT_EQ(site.answerTo(requestFor("/page.css")).type, "text/css; charset=utf-8");
  EXPECT_EQ(statusOf(requestFor("/page.html")), 404) << "each file has one path";
}

TEST_F(ASite, SharesATextThatIsAlwaysTheSame) {
  const HttpAnswer first = site.answerTo(requestFor("/setup.json"));

  EXPECT_EQ(first.body, site.answerTo(requestFor("/setup.json")).body);
  EXPECT_FALSE(first.isMadeForRequest);
}

TEST_F(ASite, MakesATextOfTheParameters) {
  HttpRequest request = requestFor("/made.json");
  request.parameters = {{"n", "7"}};

  EXPECT_EQ(*site.answerTo(request).body, "7");
  EXPECT_TRUE(site.answerTo(request).isMadeForRequest);
}

TEST_F(ASite, ReportsInvalidParametersAndFailures) {
  HttpRequest request = requestFor("/made.json");
  EXPECT_EQ(statusOf(request), 400);
  EXPECT_EQ(*site.answerTo(request).body, "n must be a number\n");

  request.parameters = {{"n", "lost"}};
  EXPECT_EQ(statusOf(request), 500);
  EXPECT_EQ(*site.answerTo(request).body, "it is lost\n");
}

struct Refused {
  const char* name;
  void (*change)(HttpRequest&);
  int status;
};

void PrintTo(const Refused& refused, std::ostream* out) {
  *out << refused.name;
}

class ARequestThatThePageNeverSends : public ASite, public testing::WithParamInterface<Refused> {};

TEST_P(ARequestThatThePageNeverSends, IsRefused) {
  HttpRequest request = requestFor("/setup.json");
  ASSERT_EQ(statusOf(request), 200);

  GetParam().change(request);

  EXPECT_EQ(statusOf(request), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    For, ARequestThatThePageNeverSends,
    testing::Values(
        Refused{"AnotherHost", [](HttpRequest& request) { request.headers[0].second = "camera.example:8090"; }, 403},
        Refused{"NoHost", [](HttpRequest& request) { request.headers.clear(); }, 403},
        Refused{"TwoHosts", [](HttpRequest& request) { request.headers.push_back(request.headers[0]); }, 403},
        Refused{"AnotherSite",
                [](HttpRequest& request) { request.headers.emplace_back("sec-fetch-site", "cross-site"); }, 403},
        Refused{"ARange", [](HttpRequest& request) { request.headers.emplace_back("Range", "bytes=120-2120"); }, 416},
        Refused{"ABody", [](HttpRequest& request) { request.headers.emplace_back("Content-Length", "1"); }, 413},
        Refused{"AChunkedBody",
                [](HttpRequest& request) { request.headers.emplace_back("Transfer-Encoding", "chunked"); }, 413},
        Refused{"ThePostMethod", [](HttpRequest& request) { request.method = "POST"; }, 405},
        Refused{"TheHeadMethod", [](HttpRequest& request) { request.method = "HEAD"; }, 405},
        Refused{"AnOldVersion", [](HttpRequest& request) { request.version = "HTTP/1.0"; }, 505},
        Refused{"AnUnknownPath", [](HttpRequest& request) { request.path = "/../setup.json"; }, 404}),
    [](const auto& refused) { return refused.param.name; });

}  // namespace
