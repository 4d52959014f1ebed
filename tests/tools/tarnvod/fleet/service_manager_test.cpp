// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "a_fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using testing::Each;
using testing::ElementsAre;

namespace {

/** The socket of a service manager, at which services report. */
class Reports {
 public:
  /** @param name  a path, or one in the abstract namespace: "@NAME" */
  explicit Reports(const std::string& name) : name_(name), socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, name.data(), name.size());
    if (address.sun_path[0] == '@') {
      address.sun_path[0] = '\0';
    }
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
    if (::bind(socket_, reinterpret_cast<const sockaddr*>(&address), size) != 0) {
      throw std::runtime_error("cannot listen at " + name);
    }
  }
  ~Reports() { ::close(socket_); }
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;

  test::Environment with(test::Environment environment) const {
    environment.push_back("NOTIFY_SOCKET=" + name_);
    return environment;
  }

  /** Waits for the next one. Throws after a long time. */
  std::string next() const {
    pollfd end{socket_, POLLIN, 0};
    if (::poll(&end, 1, 60'000) != 1) {
      throw std::runtime_error("timed out waiting for a report");
    }
    std::array<char, 256> text{};
    const auto size = ::recv(socket_, text.data(), text.size(), 0);
    return {text.data(), static_cast<std::size_t>(size)};
  }

  /** Those that have come. */
  std::vector<std::string> rest() const {
    std::vector<std::string> reports;
    for (pollfd end{socket_, POLLIN, 0}; ::poll(&end, 1, 0) == 1;) {
      reports.push_back(next());
    }
    return reports;
  }

 private:
  const std::string name_;
  const int socket_;
};

class AUnit : public test::AFleet {
 protected:
  static constexpr const char* watchdog = "WATCHDOG_USEC=300000";

  const Reports reports{folder / "notify"};
};

TEST_F(AUnit, OfAPublisherReportsThatItIsReadyAndThenSignsOfLife) {
  test::Environment environment = reports.with(playing());
  environment.emplace_back(watchdog);

  const test::Process process(test::command(), publishing({"1"}), environment);

  EXPECT_EQ(reports.next(), "READY=1");
  EXPECT_EQ(reports.next(), "WATCHDOG=1");
  EXPECT_EQ(reports.next(), "WATCHDOG=1");
}

TEST_F(AUnit, OfAPublisherWhoseServiceIsDownIsReadyToo) {
  const test::Process process(test::command(), publishing({"1"}), reports.with(test::serviceDown()));

  EXPECT_EQ(reports.next(), "READY=1");
}

TEST_F(AUnit, OfACollectorReportsSignsOfLifeWithoutABroker) {
  test::Environment environment = reports.with({});
  environment.emplace_back(watchdog);

  const test::Process process(test::command(), with("collect", {database()}), environment);

  EXPECT_EQ(reports.next(), "READY=1");
  EXPECT_EQ(reports.next(), "WATCHDOG=1");
  EXPECT_EQ(reports.next(), "WATCHDOG=1");
}

TEST_F(AUnit, OfACollectorReportsSignsOfLifeWithABroker) {
  broker.start();
  test::Environment environment = reports.with({});
  environment.emplace_back(watchdog);

  test::Process process(test::command(), with("collect", {database()}), environment);
  process.waitForErrors(": connected\n");
  reports.rest();

  EXPECT_EQ(reports.next(), "WATCHDOG=1");
}

TEST_F(AUnit, WithoutAWatchdogIsReadyOnly) {
  const test::Outcome outcome = test::run(publishing({"1", "--frames", "3"}), reports.with(playing("20")));

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(reports.rest(), ElementsAre("READY=1"));
}

TEST_F(AUnit, ThatIsStoppedGivesNoMoreSignsOfLife) {
  test::Environment environment = reports.with(playing());
  environment.emplace_back(watchdog);
  test::Process process(test::command(), publishing({"1"}), environment);
  reports.next();

  process.signal(SIGTERM);
  process.wait();

  EXPECT_THAT(reports.rest(), Each("WATCHDOG=1"));
  EXPECT_TRUE(reports.rest().empty());
}

TEST_F(AUnit, MayReportInTheAbstractNamespace) {
  const Reports abstract("@tarnvod-test-" + std::to_string(::getpid()));

  const test::Process process(test::command(), publishing({"1"}), abstract.with(playing()));

  EXPECT_EQ(abstract.next(), "READY=1");
}

TEST_F(AUnit, OfAManagerThatDoesNotListenRunsAllTheSame) {
  test::Environment environment = playing("20");
  environment.push_back("NOTIFY_SOCKET=" + (folder / "nobody").string());

  EXPECT_EQ(test::run(publishing({"1", "--frames", "3"}), environment).exitCode, 0);
}

}  // namespace
