// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "a_fleet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <tools/tarnvod/schema_check.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <set>
#include <string>
#include <vector>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::vector<int> numbersTo(int last) {
  std::vector<int> numbers(static_cast<std::size_t>(last));
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

using test::AFleet;

class APublisher : public AFleet {
 protected:
  APublisher() { broker.start(); }
};

TEST_F(APublisher, SendsEachFrameOfEachCameraInOrder) {
  test::Listener listener(broker.port());

  const test::Outcome outcome = publish({"--frames", "20"});

  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  listener.waitForState("stopped");
  for (const int camera : {1, 2}) {
    auto sequences = listener.sequences(camera);
    ASSERT_GE(sequences.size(), 20U);
    EXPECT_EQ(sequences, numbersTo(static_cast<int>(sequences.size())));
  }
}

TEST_F(APublisher, SendsMessagesOfItsSchemas) {
  test::Listener listener(broker.port());

  publish({"1", "--frames", "20"});

  listener.waitForState("stopped");
  EXPECT_TRUE(test::matchSchemas(listener.lines()));
}

TEST_F(APublisher, SendsWhatTheServiceSees) {
  test::Listener listener(broker.port());

  publish({"1", "--frames", "1"});

  listener.waitForState("stopped");
  const auto frame = std::find_if(listener.messages().begin(), listener.messages().end(),
                                  [](const auto& message) { return message.json["schema"] == "tarnvod.frame/1"; });
  ASSERT_NE(frame, listener.messages().end());
  EXPECT_EQ(frame->topic, "tarnvod/north/gate/camera/1/frames");
  EXPECT_EQ(frame->json["site"], "north");
  EXPECT_EQ(frame->json["camera"], 1);
  EXPECT_EQ(frame->json["detections"][0]["className"], "human");
  EXPECT_GT(frame->json["arrival"], 1'600'000'000'000'000);
}

TEST_F(APublisher, ReportsItsCamerasAndTheirDetector) {
  test::Listener listener(broker.port());

  publish({"--frames", "5"});

  listener.waitForState("stopped");
  const json status = listener.messages().back().json;
  ASSERT_EQ(status["cameras"].size(), 2U);
  EXPECT_EQ(status["cameras"][1]["state"], "Receiving");
  EXPECT_GE(status["cameras"][1]["numbered"], 5);
  EXPECT_EQ(status["cameras"][1]["detector"]["classes"]["human"], 0);
  EXPECT_EQ(status["spool"]["waiting"], 0);
}

TEST_F(APublisher, IsReportedAsGoneWhenItIsKilled) {
  test::Process process(test::command(), publishing({"1"}), playing());
  test::Listener listener(broker.port());
  listener.waitForState("running");

  process.signal(SIGKILL);

  listener.waitForState("gone");
}

TEST_F(APublisher, EndsWhileFramesComeFasterThanItKeepsThem) {
  test::Listener listener(broker.port());
  test::Process process(test::command(), publishing({"1", "--spool-size", "64K"}), playing("max"));
  listener.waitUntil([&] { return !listener.sequences().empty(); });

  process.signal(SIGTERM);

  EXPECT_EQ(process.wait().exitCode, 0);
}

TEST_F(APublisher, OfAServiceThatIsDownSaysSo) {
  test::Process process(test::command(), publishing({"1"}), test::serviceDown());
  test::Listener listener(broker.port());

  listener.waitForState("running");

  const json camera = listener.messages().back().json["cameras"][0];
  EXPECT_EQ(camera["state"], "Waiting");
  EXPECT_EQ(camera["reason"], "the service does not answer");
}

TEST_F(APublisher, SendsOneOfSoManyFrames) {
  test::Listener listener(broker.port());

  publish({"1", "--frames", "5", "--every", "4"});

  listener.waitForState("stopped");
  std::vector<int> times;
  for (const auto& message : listener.messages()) {
    if (message.json["schema"] == "tarnvod.frame/1") {
      times.push_back(message.json["timestamp"].get<int>() / 100'000);
    }
  }
  ASSERT_GE(times.size(), 5U);
  times.resize(5);
  EXPECT_THAT(times, ElementsAre(0, 4, 8, 12, 16));
}

TEST_F(APublisher, OfCountsSendsOneMessageForEachSecond) {
  test::Listener listener(broker.port());

  publish({"1", "--frames", "2", "--counts"});

  listener.waitForState("stopped");
  EXPECT_TRUE(test::matchSchemas(listener.lines()));
  std::vector<json> counts;
  for (const auto& message : listener.messages()) {
    EXPECT_NE(message.json["schema"], "tarnvod.frame/1");
    if (message.json["schema"] == "tarnvod.counts/1") {
      counts.push_back(message.json);
    }
  }
  ASSERT_GE(counts.size(), 2U);
  EXPECT_EQ(counts[0]["sequence"], 1);
  EXPECT_LT(counts[0]["second"], counts[1]["second"]);
  EXPECT_EQ(counts[1]["classes"], (json{{{"className", "car"}, {"objects", 1}, {"most", 1}},
                                        {{"className", "human"}, {"objects", 1}, {"most", 1}}}));
}

TEST_F(APublisher, KeepsFramesUntilACollectorHasStoredThem) {
  publish({"1", "--frames", "5", "--until-stored"});
  test::Listener listener(broker.port());

  test::Process process(test::command(), publishing({"1", "--until-stored"}), playing());

  std::set<std::string> starts;
  listener.waitUntil([&] {
    for (const auto& message : listener.messages()) {
      if (message.json["schema"] == "tarnvod.frame/1") {
        starts.insert(message.json["start"]);
      }
    }
    return starts.size() == 2;
  });
  const auto sequences = listener.sequences();
  EXPECT_EQ(std::vector<int>(sequences.begin(), sequences.begin() + 5), numbersTo(5));
}

TEST_F(APublisher, DoesNotSendAgainWhatItsBrokerHasNotConfirmed) {
  test::Listener listener(broker.port());
  test::Process process(test::command(), publishing({"1", "--frames", "100", "--until-stored"}), playing("1"));
  listener.waitUntil([&] { return !listener.sequences().empty(); });

  broker.pause();
  process.wait();
  broker.goOn();

  listener.waitForState("gone");
  const auto sequences = listener.sequences();
  EXPECT_EQ(sequences, numbersTo(static_cast<int>(sequences.size())));
}

TEST_F(APublisher, OutlivesItsBroker) {
  test::Process process(test::command(), publishing({"1"}), playing("5"));
  process.waitForErrors(": connected\n");
  broker.kill();
  process.waitForErrors(": Connection refused\n");
  broker.start();
  test::Listener listener(broker.port());

  listener.waitUntil([&] { return listener.sequences().size() > 50; });

  const auto sequences = listener.sequences();
  const std::set<int> distinct(sequences.begin(), sequences.end());
  EXPECT_EQ(*distinct.rbegin() - *distinct.begin() + 1, static_cast<int>(distinct.size()));
}

TEST_F(AFleet, WithoutABrokerKeepsFramesForTheNextStart) {
  const test::Outcome outcome = publish({"1", "--frames", "20"});
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("broker 127.0.0.1:"));
  broker.start();
  test::Listener listener(broker.port());

  publish({"1", "--frames", "1"});

  listener.waitForState("stopped");
  const auto sequences = listener.sequences();
  ASSERT_GT(sequences.size(), 20U);
  EXPECT_EQ(std::vector<int>(sequences.begin(), sequences.begin() + 20), numbersTo(20));
}

TEST_F(AFleet, RefusesANameThatTopicsCannotHave) {
  const test::Outcome outcome =
      test::run({"publish", "--site", "a/b", "--device", "gate", "--spool", folder / "spool"});

  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_THAT(outcome.errors, HasSubstr("'a/b' is not a name of 1 to 64 letters, digits, '.', '_' or '-'"));
}

TEST_F(APublisher, ThatTheBrokerRefusesReportsIt) {
  test::BrokerProcess closed(folder / "", "allow_anonymous false\n");
  closed.start();
  std::vector<std::string> arguments = publishing({"1", "--port", std::to_string(closed.port())});
  arguments.erase(arguments.begin() + 1, arguments.begin() + 3);

  test::Process process(test::command(), arguments, playing());

  process.waitForErrors("Connection Refused: not authorised.");
}

using ACollector = APublisher;

TEST_F(ACollector, StoresEachFrameOnce) {
  const auto process = collector();
  const test::Outcome published = publish({"--frames", "20", "--until-stored"});
  EXPECT_EQ(published.exitCode, 0);

  process->signal(SIGTERM);
  const test::Outcome outcome = process->wait();

  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("0 conflicting; 0 messages refused\n"));
  const json accounts = audit();
  ASSERT_EQ(accounts["cameras"].size(), 2U);
  for (const json& camera : accounts["cameras"]) {
    EXPECT_GE(camera["stored"], 20);
    EXPECT_EQ(camera["numbered"], camera["stored"]);
    EXPECT_EQ(camera["missing"], 0);
  }
}

TEST_F(ACollector, EmptiesTheSpoolOfAPublisherThatWaitsForIt) {
  const auto process = collector();
  test::Listener listener(broker.port());

  publish({"1", "--frames", "20", "--until-stored"});

  listener.waitForState("stopped");
  EXPECT_EQ(listener.messages().back().json["spool"]["waiting"], 0);
  EXPECT_TRUE(test::matchSchemas(listener.lines()));
}

TEST_F(ACollector, ThatIsKilledMissesNothing) {
  auto process = collector();
  test::Process publisher(test::command(), publishing({"1", "--until-stored"}), playing("5"));
  waitUntilStored(10);

  process->signal(SIGKILL);
  process->wait();
  process = collector();
  publisher.signal(SIGTERM);
  publisher.wait();
  const test::Outcome rest = publish({"1", "--frames", "1", "--until-stored"});

  EXPECT_EQ(rest.exitCode, 0);
  const json camera = audit()["cameras"][0];
  EXPECT_EQ(camera["missing"], 0);
  EXPECT_EQ(camera["numbered"], camera["stored"]);
}

TEST_F(ACollector, ReportsWhatStrangersSendAndStoresNoneOfIt) {
  const auto process = collector();
  test::Listener stranger(broker.port());
  const std::string topic = "tarnvod/north/gate/camera/1/frames";
  stranger.publish(topic, "garbage");
  stranger.publish(topic, R"({"schema":"weather/3"})");
  stranger.publish(topic, std::string(200'000, '['));
  stranger.publish(topic, std::string(2'000'000, ' '));
  stranger.publish("tarnvod/north/gate/status", "\xFF\xFE");
  stranger.waitUntil([&] { return stranger.messages().size() == 5; });
  process->waitForErrors("not a JSON object\n");

  publish({"1", "--frames", "3", "--until-stored"});

  process->signal(SIGTERM);
  EXPECT_THAT(process->wait().errors, HasSubstr("5 messages refused\n"));
  const json accounts = audit();
  EXPECT_EQ(
      accounts["refused"],
      (json{{"not a JSON object", 2}, {"another schema", 1}, {"nested too deeply", 1}, {"larger than a mebibyte", 1}}));
  ASSERT_EQ(accounts["cameras"].size(), 1U);
  EXPECT_EQ(accounts["cameras"][0]["missing"], 0);
}

TEST_F(AFleet, WithoutFramesFailsItsAudit) {
  const test::Outcome outcome = test::run({"audit", folder / "none.db"});

  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("none.db: unable to open database file"));
}

}  // namespace
