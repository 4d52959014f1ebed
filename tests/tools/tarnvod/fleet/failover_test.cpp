// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using testing::HasSubstr;

namespace {

using Addresses = std::vector<std::pair<std::string, int>>;

Addresses addressesOf(const std::vector<std::string>& hosts) {
  tarn::command::BrokerOptions options;
  options.hosts = hosts;
  options.port = 9;
  Addresses addresses;
  for (const auto& address : options.addresses()) {
    addresses.emplace_back(address.host, address.port);
  }
  return addresses;
}

TEST(ABrokersName, MayHaveAPortOfItsOwn) {
  EXPECT_EQ(addressesOf({"one", "two:2"}), (Addresses{{"one", 9}, {"two", 2}}));
}

TEST(ABrokersAddress, OfVersionSixHasItsPortBehindBrackets) {
  EXPECT_EQ(addressesOf({"::1", "[::1]", "[::1]:7"}), (Addresses{{"::1", 9}, {"::1", 9}, {"::1", 7}}));
}

class InvalidBroker : public testing::TestWithParam<const char*> {};

TEST_P(InvalidBroker, IsAnErrorOfUsage) {
  const test::Outcome outcome = test::run({"collect", "fleet.db", "--host", GetParam()});

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("is not HOST or HOST:PORT"));
}

INSTANTIATE_TEST_SUITE_P(Hosts, InvalidBroker, testing::Values("one:", ":1", "one:0", "one:65536", "a,two:x"));

/** Two brokers, which publishers and collectors are to try in this order. */
class TwoBrokers : public test::TwoCameras {
 protected:
  TwoBrokers() : first(folder / ""), second(makeSubfolder()) {
    first.start();
    second.start();
  }

  std::vector<std::string> with(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"--host", addressOf(first) + "," + addressOf(second)});
    return arguments;
  }

  static std::string addressOf(const test::BrokerProcess& broker) {
    return "127.0.0.1:" + std::to_string(broker.port());
  }

  static std::string connectedTo(const test::BrokerProcess& broker) {
    return "broker " + addressOf(broker) + ": connected\n";
  }

  std::vector<std::string> publishing(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"publish", "--site",         "north", "--device",      "gate",
                                       "--spool", folder / "spool", "1",     "--until-stored"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return with(arguments);
  }

  test::BrokerProcess first;
  test::BrokerProcess second;

 private:
  std::filesystem::path makeSubfolder() const {
    std::filesystem::create_directory(folder / "second");
    return folder / "second";
  }
};

TEST_F(TwoBrokers, OfWhichTheFirstIsKilledLoseNothing) {
  test::Process collector(test::command(), with({"collect", folder / "fleet.db"}));
  collector.waitForErrors(connectedTo(first));
  test::Process publisher(test::command(), publishing(), playing("5"));
  publisher.waitForErrors(connectedTo(first));

  first.kill();
  collector.waitForErrors(connectedTo(second));
  publisher.waitForErrors(connectedTo(second));
  test::Listener listener(second.port());
  listener.waitUntil([&] { return listener.sequences().size() > 20; });
  publisher.signal(SIGTERM);
  publisher.wait();
  test::run(publishing({"--frames", "1"}), playing("5"));  // sends what the first one has left
  collector.signal(SIGTERM);
  collector.wait();

  const test::Outcome audit = test::run({"audit", folder / "fleet.db", "--json"});
  const auto camera = nlohmann::json::parse(audit.output)["cameras"][0];
  EXPECT_EQ(camera["missing"], 0) << camera;
  EXPECT_GT(camera["stored"], 20);
}

TEST_F(TwoBrokers, OfWhichTheFirstIsDownAreReachedAtTheSecond) {
  first.kill();

  test::Process publisher(test::command(), publishing(), playing());

  publisher.waitForErrors(connectedTo(second));
}

}  // namespace
