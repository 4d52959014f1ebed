// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "a_fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

using nlohmann::json;
using testing::HasSubstr;

namespace {

constexpr const char* topic = "tarnvod/north/gate/camera/1/frames";
constexpr std::size_t mebibyte = 1U << 20U;

/** The most that a process has had in memory. */
std::size_t peakMemory(const test::Process& process) {
  std::ifstream status("/proc/" + std::to_string(process.id()) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) {
      return std::stoul(line.substr(line.find_first_of("0123456789"))) * 1024;
    }
  }
  throw std::runtime_error("the process has ended");
}

/** A client of the broker that publishes in the name of a device. */
class AHostileClient : public test::AFleet {
 protected:
  /** Publishes five frames and waits until they are stored; returns the last of them. */
  json storedFrame() {
    test::Listener listener(broker.port());
    publish({"1", "--frames", "5", "--until-stored"});
    listener.waitForState("stopped");
    json last;
    for (const auto& message : listener.messages()) {
      last = message.topic == topic ? message.json : last;
    }
    return last;
  }

  /** Waits until the collector has read all that was sent to it. */
  void waitForCollector(test::Listener& client) const {
    client.publish(topic, R"({"schema":"the last one"})");
    const auto hasRead = [this] {
      const json accounts = audit();
      return !accounts.is_null() && accounts["refused"].contains("another schema");
    };
    while (!hasRead()) {
    }
  }
};

TEST_F(AHostileClient, StoresNothingWithForgedNumbers) {
  broker.start();
  const auto process = collector();
  json frame = storedFrame();
  const json before = audit()["cameras"][0];
  test::Listener client(broker.port());

  frame["sequence"] = 1'000'000'000'000;
  client.publish(topic, frame.dump());
  frame["sequence"] = 0;
  client.publish(topic, frame.dump());
  frame["sequence"] = -1;
  client.publish(topic, frame.dump());
  waitForCollector(client);

  json after = audit();
  EXPECT_EQ(after["cameras"][0], before);
  EXPECT_EQ(after["refused"]["a number that cannot be the camera's"], 1);
  EXPECT_EQ(after["refused"]["a field is missing or invalid"], 2);
}

TEST_F(AHostileClient, ReplacesNoFrame) {
  broker.start();
  const auto process = collector();
  json frame = storedFrame();
  const json before = audit()["cameras"][0];
  test::Listener client(broker.port());

  frame["timestamp"] = 12345;
  client.publish(topic, frame.dump());
  waitForCollector(client);

  const json after = audit()["cameras"][0];
  EXPECT_EQ(after["stored"], before["stored"]);
  EXPECT_EQ(after["conflicting"], 1);
}

TEST_F(AHostileClient, DoesNotMakeTheCollectorHoldWhatItNests) {
  broker.start();
  const auto process = collector();
  test::Listener client(broker.port());
  const std::size_t before = peakMemory(*process);

  for (const char* bracket : {"[", "{\"a\":", "[[],"}) {
    std::string nested;
    while (nested.size() < mebibyte - 16) {
      nested += bracket;
    }
    client.publish(topic, nested);
  }
  waitForCollector(client);

  EXPECT_EQ(audit()["refused"]["nested too deeply"], 3);
  EXPECT_LT(peakMemory(*process), before + 32 * mebibyte);
}

TEST_F(AHostileClient, DoesNotReachTheCollectorWithMoreThanTheBrokerAllows) {
  test::BrokerProcess limited(folder / "", "allow_anonymous true\nmax_packet_size 1100000\n");
  limited.start();
  test::Process process(test::command(), {"collect", database(), "--port", std::to_string(limited.port())});
  process.waitForErrors(": connected\n");
  const std::size_t before = peakMemory(process);
  test::Listener hostile(limited.port());

  const auto publishTooMuch = [&] {
    hostile.publish(topic, std::string(200 * mebibyte, ' '));
    hostile.waitUntil([] { return false; });
  };
  EXPECT_THROW(publishTooMuch(), std::runtime_error) << "the broker ends the connection";

  test::Listener client(limited.port());
  waitForCollector(client);
  EXPECT_LT(peakMemory(process), before + 32 * mebibyte);
}

}  // namespace
