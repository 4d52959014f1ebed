// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <schedule/schedule.h>

#include <string>

using namespace std::chrono_literals;
using vod::schedule::Kind;
using vod::schedule::parse;
using vod::schedule::Schedule;
using vod::schedule::ScheduleError;
using vod::schedule::sentence;
using vod::schedule::toText;

namespace {

constexpr auto everyForm = R"(length 60s
rounds 3
at 0s down for 3s
at 1500ms drop
at 2s drop camera 2
at 3s refuse get_information for 4s
at 3s refuse subscribe call 2 for 4s
at 4s hang subscribe for 5s
at 5s silence for 1s
at 6s burst camera 1 of 200
at 7s damage camera 1 for 2s
at 8s empty for 2s
at 9s repeat for 2s
at 10s jump by -3600s
at 11s lose class 2 for 250ms
at 12s renumber camera 3 for 2s
at 13s change classes
at 14s change classes camera 2
)";

/** The text of the error. */
std::string errorOf(const std::string& text) {
  try {
    static_cast<void>(parse(text, "day"));
  } catch (const ScheduleError& error) {
    return error.what();
  }
  return "none";
}

}  // namespace

TEST(ASchedule, IsPrintedAsItIsRead) {
  EXPECT_EQ(toText(parse(everyForm, "day")), everyForm);
}

TEST(ASchedule, HasOneRoundOfHalfAMinuteByDefault) {
  const Schedule schedule = parse("", "day");

  EXPECT_EQ(schedule.rounds, 1);
  EXPECT_EQ(schedule.length, 30s);
  EXPECT_TRUE(schedule.faults.empty());
}

TEST(ASchedule, MayHaveCommentsBlanksAndEmptyLines) {
  const Schedule schedule = parse("# a day\n\n  at 1s \t drop # all\r\n", "day");

  ASSERT_EQ(schedule.faults.size(), 1U);
  EXPECT_EQ(schedule.faults[0].kind, Kind::Drop);
}

TEST(ASchedule, ReadsTimesInFourUnits) {
  const Schedule schedule = parse("length 2h\nat 200ms drop\nat 1.5s drop\nat 2m drop\nat 1h drop\n", "day");

  ASSERT_EQ(schedule.faults.size(), 4U);
  EXPECT_EQ(schedule.faults[0].at, 200ms);
  EXPECT_EQ(schedule.faults[1].at, 1500ms);
  EXPECT_EQ(schedule.faults[2].at, 2min);
  EXPECT_EQ(schedule.faults[3].at, 1h);
}

TEST(ASchedule, HoldsItsFaultsInTheOrderOfTheirTimes) {
  const Schedule schedule = parse("at 5s drop\nat 1s down for 1s\nat 5s burst of 3\n", "day");

  ASSERT_EQ(schedule.faults.size(), 3U);
  EXPECT_EQ(schedule.faults[0].kind, Kind::Down);
  EXPECT_EQ(schedule.faults[1].kind, Kind::Drop);
  EXPECT_EQ(schedule.faults[2].kind, Kind::Burst);
}

TEST(AMistakeInASchedule, IsReportedWithItsPlace) {
  EXPECT_EQ(errorOf("at 1s drop\nat 2s vanish\n"),
            "day:2:7: expected one of down, drop, refuse, hang, silence, burst, damage, empty, repeat, jump, lose, "
            "renumber, change, got \"vanish\"");
  EXPECT_EQ(errorOf("after 1s drop"), R"(day:1:1: expected "at", "length" or "rounds", got "after")");
  EXPECT_EQ(errorOf("at 1s down"), R"(day:1:11: expected "for", got the end of the line)");
  EXPECT_EQ(errorOf("at 1s drop camera 0"), R"(day:1:19: expected a number from 1 to 1000, got "0")");
  EXPECT_EQ(errorOf("at 1s change"), R"(day:1:13: expected "classes", got the end of the line)");
  EXPECT_EQ(errorOf("at 1s drop twice"), R"(day:1:12: expected the end of the line, got "twice")");
  EXPECT_EQ(
      errorOf("at 1s refuse everything for 1s"),
      R"(day:1:14: expected a function of the platform, such as "subscribe" or "get_information", got "everything")");
}

TEST(AMistakeInASchedule, MayBeATime) {
  const std::string expected =
      R"(day:1:4: expected a time from 0s to 86400s, such as "1.5s", "200ms", "2m" or "1h", got )";
  for (const char* const time : {"1", "s", "-1s", "25h", "nans", "infs", "1sec", "1e9s"}) {
    EXPECT_EQ(errorOf("at " + std::string(time) + " drop"), expected + '"' + time + '"');
  }
}

TEST(AMistakeInASchedule, MayBeAFaultThatDoesNotEndInTime) {
  EXPECT_EQ(errorOf("length 10s\nat 8s down for 3s\n"),
            "day:2:1: the fault ends at 11s, after the schedule's length of 10s");
}

TEST(AFault, IsASentenceForPeople) {
  const Schedule schedule = parse(everyForm, "day");

  EXPECT_EQ(sentence(schedule.faults[0]), "the service is down for 3 s");
  EXPECT_EQ(sentence(schedule.faults[2]), "the service ends the subscriptions of camera 2");
  EXPECT_EQ(sentence(schedule.faults[11]), "the time stamps of all cameras jump by -3600 s");
  EXPECT_EQ(sentence(schedule.faults[12]), "the detector of all cameras restarts without class 2 for 0.25 s");
}
