// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "a_fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tools/tarnvod/http_client.h>
#include <tools/tarnvod/promtool.h>

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using testing::HasSubstr;

namespace {

/** What a process serves at a port of 127.0.0.1. */
class Served {
 public:
  Served(test::Process& process, int port) : port_(port) {
    process.waitForErrors("metrics at http://127.0.0.1:" + std::to_string(port) + "/metrics\n");
  }

  test::Answer get(const std::string& path) const { return test::answerTo(port_, test::requestFor(path, port_)); }

  std::string metrics() const { return get("/metrics").body; }

  /** Asks again until the condition holds. */
  std::string metricsOnce(const std::function<bool(const std::string&)>& condition) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (std::string text = metrics();; text = metrics()) {
      if (condition(text)) {
        return text;
      }
      if (std::chrono::steady_clock::now() > deadline) {
        throw std::runtime_error("timed out waiting for metrics; the last were\n" + text);
      }
    }
  }

  std::string metricsOnceAtLeast(const std::string& sample, double value) const {
    return metricsOnce([&](const std::string& text) { return test::sampleOf(text, sample) >= value; });
  }

 private:
  const int port_;
};

class AFleetWithMetrics : public test::AFleet {
 protected:
  std::unique_ptr<test::Process> publisher(const test::Environment& environment) const {
    return std::make_unique<test::Process>(test::command(), publishing({"--metrics", std::to_string(port)}),
                                           environment);
  }

  std::unique_ptr<test::Process> collectorWithMetrics() const {
    auto process = std::make_unique<test::Process>(test::command(),
                                                   with("collect", {database(), "--metrics", std::to_string(port)}));
    process->waitForErrors(": connected\n");
    return process;
  }

  const int port = test::freePort();
};

TEST_F(AFleetWithMetrics, ReportsWhatItsCamerasReceive) {
  const auto process = publisher(playing("5"));

  const std::string metrics =
      Served(*process, port).metricsOnceAtLeast("tarnvod_publish_frames_numbered_total{camera=\"2\"}", 5);

  EXPECT_EQ(test::sampleOf(metrics, R"(tarnvod_camera_state{camera="1",state="Receiving"})"), 1);
  EXPECT_EQ(test::sampleOf(metrics, R"(tarnvod_camera_state{camera="1",state="Silent"})"), 0);
  EXPECT_GE(test::sampleOf(metrics, R"(tarnvod_camera_frames_received_total{camera="2"})"), 1);
  EXPECT_GT(test::sampleOf(metrics, R"(tarnvod_camera_last_frame_timestamp_seconds{camera="2"})"), 1.6e9);
  EXPECT_THAT(metrics, HasSubstr(R"(tarnvod_publish_info{site="north",device="gate",start=")"));
}

TEST_F(AFleetWithMetrics, ReportsItsSpoolWhileThereIsNoBroker) {
  const auto process = publisher(playing("5"));

  const std::string metrics = Served(*process, port).metricsOnceAtLeast("tarnvod_spool_waiting_entries", 10);

  EXPECT_GT(test::sampleOf(metrics, "tarnvod_spool_bytes"), 1000);
  EXPECT_EQ(test::sampleOf(metrics, "tarnvod_spool_limit_bytes"), 64 << 20);
  EXPECT_EQ(test::sampleOf(metrics, "tarnvod_spool_frames_dropped_total"), 0);
  EXPECT_EQ(test::sampleOf(metrics, "tarnvod_publish_broker_connected"), 0);
}

TEST_F(AFleetWithMetrics, ReportsWhatTheBrokerHasTaken) {
  broker.start();
  const auto process = publisher(playing("5"));

  const std::string metrics = Served(*process, port).metricsOnceAtLeast("tarnvod_publish_entries_settled_total", 5);

  EXPECT_GE(test::sampleOf(metrics, "tarnvod_publish_entries_sent_total"), 5);
  EXPECT_EQ(test::sampleOf(metrics, "tarnvod_publish_broker_connected"), 1);
  EXPECT_EQ(test::sampleOf(metrics, "tarnvod_publish_broker_connections_total"), 1);
}

TEST_F(AFleetWithMetrics, ReportsCamerasWhoseServiceIsDown) {
  test::Process process(test::command(), publishing({"1", "--metrics", std::to_string(port)}), test::serviceDown());

  const std::string metrics = Served(process, port).metrics();

  EXPECT_EQ(test::sampleOf(metrics, R"(tarnvod_camera_state{camera="1",state="Waiting"})"), 1);
  EXPECT_EQ(test::sampleOf(metrics, R"(tarnvod_camera_state{camera="1",state="Receiving"})"), 0);
}

TEST_F(AFleetWithMetrics, ReportsWhichCameraIsSilent) {
  test::writeTo(folder / "day.schedule", "length 10m\nat 0s silence camera 2 for 9m\n");
  test::Environment environment = playing();
  environment.push_back("TARNVOD_HOST_SCHEDULE=" + (folder / "day.schedule").string());
  const auto process = publisher(environment);

  const std::string metrics =
      Served(*process, port).metricsOnceAtLeast(R"(tarnvod_camera_state{camera="2",state="Silent"})", 1);

  EXPECT_EQ(test::sampleOf(metrics, R"(tarnvod_camera_frames_received_total{camera="2"})"), 0);
}

TEST_F(AFleetWithMetrics, ReportsWhatIsStored) {
  broker.start();
  const auto process = collectorWithMetrics();
  publish({"1", "--frames", "20", "--until-stored"});

  const std::string metrics = Served(*process, port).metricsOnceAtLeast("tarnvod_collect_frames_stored_total", 20);

  EXPECT_EQ(test::sampleOf(metrics, "tarnvod_collect_broker_connected"), 1);
  EXPECT_EQ(test::sampleOf(metrics, "tarnvod_collect_frames_conflicting_total"), 0);
  EXPECT_GE(test::sampleOf(metrics, "tarnvod_collect_commits_total"), 1);
  EXPECT_GT(test::sampleOf(metrics, "tarnvod_collect_latest_commit_timestamp_seconds"), 1.6e9);
}

TEST_F(AFleetWithMetrics, ReportsRefusedMessagesByReason) {
  broker.start();
  const auto process = collectorWithMetrics();
  test::Listener stranger(broker.port());

  stranger.publish("tarnvod/north/gate/camera/1/frames", "garbage");

  Served(*process, port).metricsOnceAtLeast(R"(tarnvod_collect_messages_refused_total{reason="not a JSON object"})", 1);
}

TEST_F(AFleetWithMetrics, IsHealthy) {
  const auto process = publisher(playing());

  EXPECT_EQ(Served(*process, port).get("/healthz").body, "ok\n");
}

TEST_F(AFleetWithMetrics, PublishesMetricsThatPrometheusAccepts) {
  if (!test::hasPromtool()) {
    GTEST_SKIP() << "promtool is not installed (Debian: prometheus)";
  }
  const auto process = publisher(playing("5"));

  EXPECT_TRUE(test::isAcceptedByPromtool(Served(*process, port).metrics()));
}

TEST_F(AFleetWithMetrics, CollectsMetricsThatPrometheusAccepts) {
  if (!test::hasPromtool()) {
    GTEST_SKIP() << "promtool is not installed (Debian: prometheus)";
  }
  broker.start();
  const auto process = collectorWithMetrics();
  test::Listener stranger(broker.port());
  stranger.publish("tarnvod/north/gate/status", "garbage");

  const std::string refused = R"(tarnvod_collect_messages_refused_total{reason="not a JSON object"})";
  EXPECT_TRUE(test::isAcceptedByPromtool(Served(*process, port).metricsOnceAtLeast(refused, 1)));
}

TEST_F(AFleetWithMetrics, IsNotStartedAtAnAddressThatIsTaken) {
  broker.start();

  const test::Outcome outcome = test::run(publishing({"--metrics", std::to_string(broker.port())}), playing());

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("cannot listen at 127.0.0.1:"));
}

TEST_F(AFleetWithMetrics, NeedsAPort) {
  const test::Outcome outcome = test::run(publishing({"--metrics", "gate"}), playing());

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("'gate' is not a port or ADDRESS:PORT"));
}

}  // namespace
