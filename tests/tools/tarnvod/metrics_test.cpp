// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "http/http_site.h"
#include "metrics/delay_histogram.h"
#include "metrics/liveness.h"
#include "metrics/metrics_server.h"
#include "metrics/metrics_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

using namespace tarn::command;
using testing::HasSubstr;

namespace {

HttpAnswer answerTo(const HttpSite& site, const std::string& path) {
  return site.answerTo({"GET", path, "HTTP/1.1", {{"Host", "127.0.0.1:9464"}}, {}});
}

TEST(AMetric, HasItsHelpItsTypeAndItsSamples) {
  MetricsText text;

  text.beginCounter("frames_total", "Frames.");
  text.add(std::uint64_t{18446744073709551615U}, {{"camera", "1"}, {"state", "Silent"}});
  text.gauge("bytes", "Bytes.", 7);

  EXPECT_EQ(text.text(),
            "# HELP frames_total Frames.\n# TYPE frames_total counter\n"
            "frames_total{camera=\"1\",state=\"Silent\"} 18446744073709551615\n"
            "# HELP bytes Bytes.\n# TYPE bytes gauge\nbytes 7\n");
}

TEST(ALabel, IsEscaped) {
  MetricsText text;
  text.beginGauge("a", "A.");

  text.add(0.5, {{"b", "\"\\\n"}});

  EXPECT_THAT(text.text(), HasSubstr("a{b=\"\\\"\\\\\\n\"} 0.5\n"));
}

TEST(AHistogram, CountsWhatIsUpToEachBound) {
  DelayHistogram histogram;
  histogram.add(0.5);
  histogram.add(0.75);
  histogram.add(5000);
  MetricsText text;

  histogram.write(text, "delay", "Delay.");

  EXPECT_THAT(text.text(), HasSubstr("delay_bucket{le=\"0.25\"} 0\n"));
  EXPECT_THAT(text.text(), HasSubstr("delay_bucket{le=\"0.5\"} 1\n"));
  EXPECT_THAT(text.text(), HasSubstr("delay_bucket{le=\"1\"} 2\n"));
  EXPECT_THAT(text.text(), HasSubstr("delay_bucket{le=\"3600\"} 2\n"));
  EXPECT_THAT(text.text(), HasSubstr("delay_bucket{le=\"+Inf\"} 3\ndelay_sum 5001.25\ndelay_count 3\n"));
}

TEST(ASumOfHistograms, HasTheCountsOfBoth) {
  DelayHistogram one;
  one.add(0.5);
  DelayHistogram other;
  other.add(20);
  other.add(one);
  MetricsText text;

  other.write(text, "delay", "Delay.");

  EXPECT_THAT(text.text(), HasSubstr("delay_bucket{le=\"0.5\"} 1\n"));
  EXPECT_THAT(text.text(), HasSubstr("delay_sum 20.5\ndelay_count 2\n"));
}

class ASiteWithMetrics : public testing::Test {
 protected:
  ASiteWithMetrics() {
    addMetrics(
        site, [] { return "metric 1\n"; }, liveness);
  }

  Liveness liveness;
  HttpSite site{"127.0.0.1", 9464};
};

TEST_F(ASiteWithMetrics, AnswersInTheFormatOfPrometheus) {
  const HttpAnswer answer = answerTo(site, "/metrics");

  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.type, "text/plain; version=0.0.4; charset=utf-8");
  EXPECT_EQ(*answer.body, "metric 1\n");
}

TEST_F(ASiteWithMetrics, IsHealthyWhileTheLoopRuns) {
  EXPECT_EQ(answerTo(site, "/healthz").status, 200);
  EXPECT_EQ(*answerTo(site, "/healthz").body, "ok\n");
}

TEST_F(ASiteWithMetrics, IsNotHealthyOnceTheLoopHasStalled) {
  liveness.note(Clock::now() - Liveness::limit - std::chrono::seconds(1));

  EXPECT_EQ(answerTo(site, "/healthz").status, 503);
  EXPECT_EQ(*answerTo(site, "/healthz").body, "stalled\n");
}

TEST(AServerAddress, IsOnThisMachineUnlessItNamesAnother) {
  const auto address = parseServerAddress("9464");

  ASSERT_TRUE(address);
  EXPECT_EQ(address->host, "127.0.0.1");
  EXPECT_EQ(address->port, 9464);
}

TEST(AServerAddress, MayHaveAHost) {
  EXPECT_EQ(parseServerAddress("gate.example:1")->host, "gate.example");
  EXPECT_EQ(parseServerAddress("[::1]:1")->host, "::1");
}

TEST(AServerAddress, IsRefusedWithoutAPort) {
  for (const char* text : {"", "gate", "gate:", ":1", "::1", "1:65536", "-1", "1:2:3", "80x", "[]:1"}) {
    EXPECT_FALSE(parseServerAddress(text)) << text;
  }
}

}  // namespace
