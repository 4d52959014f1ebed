// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "a_fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <string>

using nlohmann::json;
using testing::HasSubstr;

namespace {

class ALiveAuditOfABroker : public test::AFleet {
 protected:
  ALiveAuditOfABroker() { broker.start(); }
};

TEST_F(ALiveAuditOfABroker, AccountsForEachFrameThatComes) {
  test::Process process(test::command(), with("audit", {"--live", "--json"}));
  process.waitForErrors(": connected\n");
  test::Listener listener(broker.port());
  publish({"1", "--frames", "20"});
  listener.waitForState("stopped");
  listener.publish("tarnvod/north/gate/status", "the last message");
  process.waitForErrors("not a JSON object\n");

  process.signal(SIGTERM);
  const test::Outcome outcome = process.wait();

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  const json camera = json::parse(outcome.output.substr(outcome.output.rfind("{\"cameras\"")))["cameras"][0];
  EXPECT_GE(camera["stored"], 20);
  EXPECT_EQ(camera["numbered"], camera["stored"]);
  EXPECT_EQ(camera["missing"], 0);
}

TEST_F(ALiveAuditOfABroker, FailsWhenFramesAreMissing) {
  test::Process process(test::command(), with("audit", {"--live"}));
  process.waitForErrors(": connected\n");
  test::Listener listener(broker.port());
  const json frame = {{"schema", "tarnvod.frame/1"}, {"site", "north"},        {"device", "gate"},  {"camera", 1},
                      {"start", "0123456789abcdef"}, {"arrival", 1},           {"clockSet", false}, {"timestamp", 1},
                      {"detections", json::array()}, {"events", json::array()}};
  for (const int sequence : {1, 4}) {
    json numbered = frame;
    numbered["sequence"] = sequence;
    listener.publish("tarnvod/north/gate/camera/1/frames", numbered.dump());
  }
  listener.publish("tarnvod/north/gate/status", "the last message");
  listener.waitUntil([&] { return listener.messages().size() == 3; });
  process.waitForErrors("not a JSON object\n");

  process.signal(SIGTERM);
  const test::Outcome outcome = process.wait();

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.output, HasSubstr("north/gate/1"));
}

TEST_F(ALiveAuditOfABroker, FailsWhenTheBrokerIsGone) {
  test::Process process(test::command(), with("audit", {"--live"}));
  process.waitForErrors(": connected\n");

  broker.kill();

  const test::Outcome outcome = process.wait();
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("what came since is not in the accounts"));
}

TEST_F(ALiveAuditOfABroker, EndsAfterItsTime) {
  const test::Outcome outcome = test::run(with("audit", {"--live", "--for", "100ms"}));

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("no frames came"));
}

TEST(AnAuditOfNothing, IsAMisuse) {
  EXPECT_EQ(test::run({"audit"}).exitCode, 2);
  EXPECT_EQ(test::run({"audit", "x.db", "--live"}).exitCode, 2);
  EXPECT_EQ(test::run({"audit", "x.db", "--for", "1s"}).exitCode, 2);
}

}  // namespace
