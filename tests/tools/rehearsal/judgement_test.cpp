// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

// What is found in the observations of a run.

#include "rehearsal/findings.h"
#include "rehearsal/generated_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <string>
#include <utility>
#include <vector>

using namespace std::chrono_literals;
using namespace tarn::command;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using vod::schedule::Fault;
using vod::schedule::Kind;
using vod::schedule::Observation;
using vod::schedule::Schedule;
using Fields = std::map<std::string, std::string>;

namespace {

constexpr int application = 4711;

Observation observed(vod::schedule::Time at, const std::string& event, Fields fields = {}) {
  return {application, at, event, std::move(fields)};
}

Fields marked(int round, const std::string& resource = "heap", int value = 1'000'000) {
  Fields fields{{"round", std::to_string(round)},
                {"heap", "1000000"},
                {"threads", "5"},
                {"descriptors", "9"},
                {"calls_per_second", "12"}};
  fields[resource] = std::to_string(value);
  return fields;
}

/** An application that sets camera 1 up, receives people and cars, and ends after SIGTERM. */
class ARun : public testing::Test {
 protected:
  ARun() {
    run_.hasBegun = true;
    run_.isComplete = true;
    expectation_.cameras = {{1, {"car", "human"}}};
    add(0s, "subscribed", {{"camera", "1"}, {"subscriber", "1"}});
    receive(1s);
  }

  void add(vod::schedule::Time at, const std::string& event, Fields fields = {}) {
    run_.observations.push_back(observed(at, event, std::move(fields)));
  }
  void receive(vod::schedule::Time at) {
    add(at, "received", {{"camera", "1"}, {"class", "car"}});
    add(at, "received", {{"camera", "1"}, {"class", "human"}});
  }
  void end() { add(30s, "mark", marked(1)); }

  /** Ten rounds, after each of which there is more of the resource. */
  void grow(const std::string& resource, int perRound) {
    for (int round = 1; round <= 10; ++round) {
      add(30s * round, "mark", marked(round, resource, 1'000'000 + perRound * round));
    }
  }

  Judgement judged() const { return judge(run_, schedule_, expectation_, limits_); }
  std::vector<FindingKind> found() const {
    std::vector<FindingKind> kinds;
    for (const Finding& finding : judged().findings) {
      kinds.push_back(finding.kind);
    }
    return kinds;
  }

  ApplicationRun run_;
  Schedule schedule_;
  Expectation expectation_;
  AcceptedLimits limits_;
};

/** The detector restarts with other ids for its classes after 5 s. */
class ARunWithOtherClasses : public ARun {
 protected:
  ARunWithOtherClasses() {
    Fault change;
    change.kind = Kind::Change;
    change.at = 5s;
    schedule_.faults = {change};
    add(5s, "fault", {{"number", "0"}});
  }
};

/** The service ends the subscription after 5 s. */
class ARunWithADrop : public ARun {
 protected:
  ARunWithADrop() {
    Fault drop;
    drop.kind = Kind::Drop;
    drop.at = 5s;
    schedule_.faults = {drop};
    add(5s, "fault", {{"number", "0"}});
  }
};

}  // namespace

TEST_F(ARun, WithoutFaultsHasNoFindings) {
  end();

  EXPECT_THAT(found(), IsEmpty());
}

TEST_F(ARun, ThatASignalEndsIsACrash) {
  run_.isComplete = false;
  run_.exitCode = -SIGSEGV;

  EXPECT_THAT(found(), ElementsAre(FindingKind::Crash));
  EXPECT_EQ(judged().findings[0].text, "it is ended by SIGSEGV");
}

TEST_F(ARun, ThatEndsBeforeTheScheduleEndsByItself) {
  run_.isComplete = false;
  run_.exitCode = 3;

  EXPECT_THAT(found(), ElementsAre(FindingKind::Ends));
}

TEST_F(ARun, ThatHasToBeKilledDoesNotEnd) {
  end();
  run_.wasKilled = true;
  run_.exitCode = -SIGKILL;

  EXPECT_THAT(found(), ElementsAre(FindingKind::DoesNotEnd));
}

TEST_F(ARun, ThatDoesNotComeToItsEndIsNotSaidToIgnoreASignal) {
  run_.isComplete = false;
  run_.wasKilled = true;
  run_.exitCode = -SIGKILL;

  EXPECT_THAT(found(), ElementsAre(FindingKind::DoesNotEnd));
  EXPECT_EQ(judged().findings[0].text, "it keeps the day from coming to its end");
}

TEST_F(ARun, WithoutACallOfTheServiceIsFoundWithTheLastLineThatItPrinted) {
  run_.hasBegun = false;
  run_.isComplete = false;
  run_.output = "starting\nlibapplication.so.2: not found\n";

  EXPECT_EQ(judged().findings.at(0).text,
            "it does not call the service, and prints last \"libapplication.so.2: not found\",");
  run_.output = "ready";
  EXPECT_EQ(judged().findings.at(0).text, "it does not call the service, and prints last \"ready\",");
  run_.output = "\n";
  EXPECT_EQ(judged().findings.at(0).text, "it does not call the service");
}

TEST_F(ARun, WithAnotherExitCodeThanOnAQuietDayIsFound) {
  end();
  run_.exitCode = 1;

  EXPECT_THAT(found(), ElementsAre(FindingKind::ExitCode));
}

TEST_F(ARun, WithALongCallbackBlocks) {
  add(10s, "blocked", {{"camera", "1"}, {"for", "2500"}, {"returned", "1"}});
  end();

  EXPECT_THAT(found(), ElementsAre(FindingKind::Blocks));
}

TEST_F(ARun, WithACallbackThatHasNotReturnedBlocks) {
  add(10s, "blocked", {{"camera", "1"}, {"for", "9000"}, {"returned", "0"}});
  end();

  EXPECT_EQ(judged().findings.at(0).text, "a callback of camera 1 has not returned after 9.0 s");
}

TEST_F(ARun, WithManyCallsInASecondIsAStorm) {
  add(30s, "mark", marked(1, "calls_per_second", 201));

  EXPECT_THAT(found(), ElementsAre(FindingKind::Storm));
}

TEST_F(ARun, WithMoreThreadsAfterEachRoundLeavesThreadsBehind) {
  grow("threads", 1);

  EXPECT_THAT(found(), ElementsAre(FindingKind::Threads));
}

TEST_F(ARun, WithMoreDescriptorsAfterEachRoundLeavesDescriptorsBehind) {
  grow("descriptors", 2);

  EXPECT_THAT(found(), ElementsAre(FindingKind::Descriptors));
}

TEST_F(ARun, WithMoreMemoryAfterEachRoundLeavesMemoryBehind) {
  grow("heap", 4096);

  EXPECT_THAT(found(), ElementsAre(FindingKind::Memory));
}

TEST_F(ARun, WithALittleMoreMemoryAfterEachRoundIsAccepted) {
  grow("heap", 1000);

  EXPECT_THAT(found(), IsEmpty());
}

TEST_F(ARunWithOtherClasses, IsBlindWithoutANewSubscription) {
  end();

  EXPECT_THAT(found(), ElementsAre(FindingKind::Blind));
}

TEST_F(ARunWithOtherClasses, RecoversWithTheLastOfItsClasses) {
  add(7s, "subscribed", {{"camera", "1"}, {"subscriber", "2"}});
  receive(8s);
  end();

  EXPECT_THAT(found(), IsEmpty());
  EXPECT_EQ(judged().recoveries.at(0).time, 3s);
}

TEST_F(ARunWithADrop, IsBlindWithoutANewSubscription) {
  end();

  EXPECT_THAT(found(), ElementsAre(FindingKind::Blind));
  EXPECT_EQ(judged().findings[0].text, "camera 1 is not set up again");
}

TEST_F(ARunWithADrop, HasLostAClassThatNoLongerArrives) {
  add(7s, "subscribed", {{"camera", "1"}, {"subscriber", "2"}});
  add(8s, "received", {{"camera", "1"}, {"class", "human"}});
  end();

  EXPECT_THAT(found(), ElementsAre(FindingKind::ClassLost));
  EXPECT_THAT(judged().findings[0].text, HasSubstr("car"));
}

TEST_F(ARunWithADrop, RecoversWithTheLastOfItsClasses) {
  add(7s, "subscribed", {{"camera", "1"}, {"subscriber", "2"}});
  receive(8s);
  end();

  EXPECT_THAT(found(), IsEmpty());
  ASSERT_EQ(judged().recoveries.size(), 1U);
  EXPECT_EQ(judged().recoveries[0].time, 3s);
}

TEST(AFailureOfTheOutput, HasNoTest) {
  const RehearsalSettings settings;
  ApplicationFailure failure;
  failure.finding = {FindingKind::Missing, "it did not print what it must print"};

  EXPECT_EQ(generatedTest(settings, failure), std::nullopt);
}

TEST(ALostClass, HasATestThatCountsWhatIsReceived) {
  const RehearsalSettings settings;
  ApplicationFailure failure;
  failure.finding = {FindingKind::ClassLost, "camera 1 no longer receives a class"};
  failure.expectation.cameras = {{1, {"a \"b\"\n"}}};

  const auto test = generatedTest(settings, failure);

  ASSERT_TRUE(test);
  EXPECT_THAT(*test, HasSubstr("std::uint64_t received(int camera, const std::string& className);"));
  EXPECT_THAT(*test, HasSubstr(R"(expectReceived(1, "a \042b\042\012");)"));
}
