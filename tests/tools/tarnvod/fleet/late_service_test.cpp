// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// A publisher for which no cameras were named, and whose service is down when it starts.

#include "fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <tools/tarnvod/late_service.h>
#include <tools/tarnvod/schema_check.h>

#include <string>
#include <vector>

using nlohmann::json;
using testing::HasSubstr;

namespace {

class APublisherOfALateService : public test::ALateService {
 protected:
  APublisherOfALateService() : broker_(folder / "") { broker_.start(); }

  std::vector<std::string> publishing() const {
    std::vector<std::string> words{"publish", "--site", "north", "--device", "gate", "--spool", folder / "spool"};
    const auto options = broker_.options();
    words.insert(words.end(), options.begin(), options.end());
    return words;
  }

  test::BrokerProcess broker_;
};

TEST_F(APublisherOfALateService, RunsWithoutCameras) {
  test::Process process(test::command(), publishing(), lateBy("1h"));
  process.waitForErrors("tarnvod: the service does not report its cameras; waiting until it does\n");
  test::Listener listener(broker_.port());

  listener.waitForState("running");

  EXPECT_EQ(listener.messages().back().json["cameras"], json::array());
  EXPECT_TRUE(test::matchSchemas(listener.lines()));
  process.signal(SIGTERM);
  EXPECT_EQ(process.wait().exitCode, 0);
}

TEST_F(APublisherOfALateService, PublishesAllCamerasOnceItIsUp) {
  test::Process process(test::command(), publishing(), lateBy("100ms"));
  test::Listener listener(broker_.port());

  listener.waitUntil([&] { return !listener.sequences(1).empty() && !listener.sequences(2).empty(); });

  process.signal(SIGTERM);
  EXPECT_THAT(process.wait().errors, HasSubstr("waiting until it does\n"));
}

}  // namespace
